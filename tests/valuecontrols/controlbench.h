#pragma once

#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QFontDatabase>
#include <QHelpEvent>
#include <QMenu>
#include <QTest>
#include <QToolTip>
#include <QVBoxLayout>
#include <QWheelEvent>
#include <QWidget>
#include <memory>

#include "valueframework/iobserver.h"
#include "valueframework/tree.h"
#include "valueframework/value.h"
#include "valueframework/valuehost.h"
#include "valueframework/valueselection.h"

// A tree and a window of its own for each test, and ways to make values as a driver describes them.
class ControlBench
{
public:
    ControlBench()
    {
        ValueHost::CreateTree();
        m_Window->resize(360, 200);
        new QVBoxLayout(m_Window.get());
    }
    ~ControlBench()
    {
        m_Window.reset();
        ValueHost::DestroyTree();
    }

    QWidget& Window() { return *m_Window; }

    // Puts a control into the window and shows it, with the focus elsewhere.
    void Show(QWidget& control)
    {
        if (!m_Elsewhere) {
            m_Elsewhere = new QWidget(m_Window.get());
            m_Elsewhere->setFocusPolicy(Qt::StrongFocus);
            m_Window->layout()->addWidget(m_Elsewhere);
        }
        m_Window->layout()->addWidget(&control);
        m_Window->show();
        m_Window->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(m_Window.get()));
        m_Elsewhere->setFocus();
    }
    void FocusElsewhere() { m_Elsewhere->setFocus(); }

    static ValueBase& Float(const QString& path, double content, double minimum, double maximum,
                            const QString& unit)
    {
        ValueDescription description;
        description.type = ValueType::Float;
        description.unit = unit;
        description.hasLimits = minimum < maximum;
        description.minimum = minimum;
        description.maximum = maximum;
        return *ValueHost::Create(path, description, content);
    }
    static ValueBase& Frequency(double content = 98500000)
    {
        return Float(QStringLiteral("/RX1/DDC/DDC1/Frequency"), content, 100000, 6e9, QStringLiteral("Hz"));
    }
    static ValueBase& Bool(const QString& path, bool content)
    {
        ValueDescription description;
        description.type = ValueType::Bool;
        return *ValueHost::Create(path, description, content);
    }
    static ValueBase& PlainText(const QString& path, const QString& content)
    {
        return *ValueHost::Create(path, ValueDescription(), content);
    }
    static ValueSelection& Selection(const QString& path, const QVector<SelectionItem>& items, int key)
    {
        ValueDescription description;
        description.type = ValueType::Selection;
        description.items = items;
        return *dynamic_cast<ValueSelection*>(ValueHost::Create(path, description, key));
    }
    static ValueSelection& Demodulation(int key = 1)
    {
        return Selection(QStringLiteral("/RX1/DDC/DDC1/Demodulation"),
                         {{0, QStringLiteral("AM"), 0},
                          {1, QStringLiteral("FM"), 0},
                          {2, QStringLiteral("USB"), 0},
                          {3, QStringLiteral("LSB"), 0},
                          {4, QStringLiteral("CW"), 0}},
                         key);
    }

    static double NumberOf(const ValueBase& value) { return ValueHost::Content(value).toDouble(); }

private:
    std::unique_ptr<QWidget> m_Window{new QWidget};
    QWidget* m_Elsewhere = nullptr;
};

// The authority behind one mirrored value: notes what is written to it and answers when told to, as
// the link client does.
class Authority : public IObserver
{
public:
    explicit Authority(ValueBase& value) : m_Value(value), m_Stands(ValueHost::Content(value))
    {
        ValueHost::SetMirrored(value, true);
        value.AddObserver(this);
    }

    void Update(Observable*, TChangeCode code) override
    {
        if (code != CC_VALUE || m_Telling)
            return;
        m_Written.append(ValueHost::Content(m_Value));
        WriteStatus status;
        status.pending = true;
        ValueHost::SetStatus(m_Value, status);
    }

    void Accept() { Answer(WriteStatus::Accepted, QString(), ValueHost::Content(m_Value)); }
    void Refuse(const QString& reason) { Answer(WriteStatus::Refused, reason, m_Stands); }
    void Clamp(const QVariant& content, const QString& reason)
    {
        Answer(WriteStatus::Clamped, reason, content);
    }
    void Stay() { Answer(WriteStatus::Unanswered, QString(), m_Stands); }

    // A new value from the driver, not caused by the operator.
    void Tell(const QVariant& content)
    {
        m_Telling = true;
        m_Stands = content;
        ValueHost::SetContent(m_Value, content, this);
        m_Telling = false;
    }

    QVariantList Written() const { return m_Written; }

private:
    void Answer(WriteStatus::Answer answer, const QString& reason, const QVariant& content)
    {
        Tell(content);
        WriteStatus status;
        status.answer = answer;
        status.reason = reason;
        ValueHost::SetStatus(m_Value, status);
    }

    ValueBase& m_Value;
    QVariant m_Stands;
    QVariantList m_Written;
    bool m_Telling = false;
};

// Counts the writes that reach a value, from whomever.
class WriteCount : public IObserver
{
public:
    explicit WriteCount(ValueBase& value) { value.AddObserver(this); }
    void Update(Observable*, TChangeCode code) override { m_Count += code == CC_VALUE; }
    int Count() const { return m_Count; }

private:
    int m_Count = 0;
};

inline void Wheel(QWidget& widget, int notches)
{
    const QPointF middle = widget.rect().center();
    QWheelEvent event(middle, widget.mapToGlobal(middle), QPoint(), QPoint(0, 120 * notches), Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(&widget, &event);
}

// The note beside a control; null when there is none.
inline QWidget* NoteIn(QWidget& window)
{
    return window.findChild<QWidget*>(QStringLiteral("controlNote"));
}

inline QString NoteText(QWidget& window)
{
    QWidget* const note = NoteIn(window);
    return note ? note->property("text").toString() : QString();
}

// Opens the context menu as the menu key does, triggers one of its actions, and closes it.
inline bool TriggerMenu(QWidget& control, const QString& action)
{
    QContextMenuEvent event(QContextMenuEvent::Keyboard, control.rect().center(),
                            control.mapToGlobal(control.rect().center()));
    QApplication::sendEvent(&control, &event);
    QMenu* const menu = control.findChild<QMenu*>(QStringLiteral("valueMenu"));
    QAction* const found = menu ? menu->findChild<QAction*>(action) : nullptr;
    if (found)
        found->trigger();
    if (menu)
        menu->close();
    return found != nullptr;
}

// The text of the tool tip on the screen; empty when there is none.
inline QString ShownToolTip()
{
    return QToolTip::isVisible() ? QToolTip::text() : QString();
}

// Types, or pastes what a key cannot type.
inline void Type(QWidget& control, const QString& text)
{
    bool plain = true;
    for (const QChar character : text)
        plain = plain && character.unicode() < 128;
    if (plain) {
        QTest::keyClicks(&control, text);
    } else {
        QGuiApplication::clipboard()->setText(text);
        QTest::keyClick(&control, Qt::Key_V, Qt::ControlModifier);
    }
}

// The face that the workbench sets: 9 points of Roboto Condensed, at 96 dots per inch.
inline bool UseWorkbenchFace()
{
    if (!QFontDatabase::families().contains(QStringLiteral("Roboto Condensed")))
        return false;
    QApplication::setFont(QFont(QStringLiteral("Roboto Condensed"), 9));
    return true;
}
