#include "valuecontrols/vccomboboxclassic.h"

#include <QAbstractItemView>
#include <QCoreApplication>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QSignalBlocker>
#include <QStyleHints>
#include <QStyleOptionComboBox>
#include <QStylePainter>
#include <QWheelEvent>

#include "valuecontrols/controllook.h"
#include "valuecontrols/valuebinding.h"

class VCComboBoxClassicPrivate : public ValueBinding
{
public:
    explicit VCComboBoxClassicPrivate(VCComboBoxClassic* box) : ValueBinding(box), m_Box(box)
    {
        m_TypingPause.setSingleShot(true);
        connect(&m_TypingPause, &QTimer::timeout, this, [this]() { WriteFound(); });
        connect(box, &QComboBox::activated, this, [this](int index) { Chosen(index); });
    }

    // After construction: making the list sends events through the box.
    void WatchList() { m_Box->view()->installEventFilter(this); }

    // Letters look for an item. Several may be needed ("15" on the way to "150"), so the write waits
    // for the pause after the last one.
    void TypingStarts() { m_Typing = true; }

    void TypingEnded()
    {
        m_Typing = false;
        if (m_FoundByTyping)
            m_TypingPause.start(QGuiApplication::styleHints()->keyboardInputInterval());
    }

    // A blank within a text being looked for; alone it opens the list.
    void SearchBlank()
    {
        QAbstractItemView* const list = m_Box->view();
        list->setCurrentIndex(m_Box->model()->index(m_Box->currentIndex(), m_Box->modelColumn()));
        list->keyboardSearch(QStringLiteral(" "));
        if (list->currentIndex().isValid())
            m_Box->setCurrentIndex(list->currentIndex().row());
        TypingEnded();
    }

    bool HasFound() const { return m_FoundByTyping; }

    void WriteFound()
    {
        m_TypingPause.stop();
        if (m_FoundByTyping) {
            m_FoundByTyping = false;
            WriteIndex(m_Box->currentIndex());
        }
    }

    void DropFound()
    {
        m_TypingPause.stop();
        if (m_FoundByTyping) {
            m_FoundByTyping = false;
            ShowContent();
        }
    }

    QString Elided() const
    {
        QStyleOptionComboBox option;
        m_Box->initStyleOption(&option);
        const QRect room =
            m_Box->style()->subControlRect(QStyle::CC_ComboBox, &option, QStyle::SC_ComboBoxEditField, m_Box);
        return m_Box->fontMetrics().elidedText(m_Box->currentText(), Qt::ElideRight, room.width() - 2);
    }

    bool NeedsWholeText() const override { return Elided() != m_Box->currentText(); }

protected:
    bool Accepts(ValueType type) const override { return type == ValueType::Selection; }
    bool HasEntry() const override { return m_FoundByTyping; }
    QString WholeText() const override { return m_Box->currentText(); }

    void ShowContent() override
    {
        if (Path().isEmpty())
            return;
        const QSignalBlocker quiet(m_Box);
        FillItems();
        if (m_FoundByTyping || m_Box->view()->isVisible())
            return;  // the operator is choosing
        const auto* const selection = dynamic_cast<ValueSelection*>(BoundValue());
        const int index = selection ? selection->GetCurrentIndex() : m_Box->currentIndex();
        if (m_Box->currentIndex() != index)
            m_Box->setCurrentIndex(index);
    }

    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() == QEvent::Hide)
            QTimer::singleShot(0, this, [this]() { ShowContent(); });
        return ValueBinding::eventFilter(watched, event);
    }

private:
    void Chosen(int index)
    {
        if (Path().isEmpty())
            return;
        if (m_Typing) {
            m_FoundByTyping = true;
            return;
        }
        m_FoundByTyping = false;
        m_TypingPause.stop();
        WriteIndex(index);
    }

    void WriteIndex(int index)
    {
        if (index >= 0 && index < m_Keys.size() && CanWrite() &&
            ValueHost::Content(*BoundValue()).toInt() != m_Keys.at(index))
            Write(m_Keys.at(index));
        ShowContent();
    }

    // Only when the items differ from those shown; the items of a value that is gone stay.
    void FillItems()
    {
        if (!BoundValue())
            return;
        const QVector<SelectionItem> items = ValueHost::Description(*BoundValue()).items;
        const QByteArray context = ValueHost::TranslationContext(*BoundValue());
        QVector<int> keys;
        QStringList texts;
        for (const SelectionItem& item : items) {
            keys << item.GetKey();
            const QByteArray text = item.GetText().toUtf8();
            texts << (context.isEmpty() || text.isEmpty()
                          ? item.GetText()
                          : QCoreApplication::translate(context.constData(), text.constData()));
        }
        if (keys == m_Keys && texts == m_Texts)
            return;
        m_Keys = keys;
        m_Texts = texts;
        m_FoundByTyping = false;
        if (m_Box->view()->isVisible())
            m_Box->hidePopup();
        m_Box->clear();
        m_Box->addItems(texts);
        m_Box->view()->setMinimumWidth(WidestItem());
        m_Box->updateGeometry();
        m_Box->update();
    }

    int WidestItem() const
    {
        int width = 0;
        for (const QString& text : m_Texts)
            width = qMax(width, m_Box->fontMetrics().horizontalAdvance(text));
        return width + 2 * m_Box->style()->pixelMetric(QStyle::PM_ScrollBarExtent);
    }

    VCComboBoxClassic* m_Box;
    QVector<int> m_Keys;  // of the items as shown
    QStringList m_Texts;
    bool m_Typing = false;         // a letter is being looked for right now
    bool m_FoundByTyping = false;  // the index shown was found by letters and is not written yet
    QTimer m_TypingPause;
};

VCComboBoxClassic::VCComboBoxClassic(QWidget* parent, const char* name, int)
    : QComboBox(parent), d(new VCComboBoxClassicPrivate(this))
{
    d->WatchList();
    setFocusPolicy(Qt::StrongFocus);
    setSizeAdjustPolicy(QComboBox::AdjustToContents);
    if (name) {
        setObjectName(QString::fromUtf8(name));
        setAccessibleName(QString::fromUtf8(name));
    }
}

VCComboBoxClassic::~VCComboBoxClassic()
{
    delete d;
}

bool VCComboBoxClassic::SetValueSelection_ValuePath(const QString& path)
{
    return d->Bind(path);
}

bool VCComboBoxClassic::event(QEvent* event)
{
    if (d->HandleEvent(event))
        return true;
    if (event->type() == QEvent::FocusOut &&
        static_cast<QFocusEvent*>(event)->reason() != Qt::PopupFocusReason)
        d->DropFound();
    return QComboBox::event(event);
}

void VCComboBoxClassic::wheelEvent(QWheelEvent* event)
{
    if (hasFocus())
        QComboBox::wheelEvent(event);
    else
        event->ignore();
}

void VCComboBoxClassic::keyPressEvent(QKeyEvent* event)
{
    const int key = event->key();
    if (d->HasFound() && (key == Qt::Key_Return || key == Qt::Key_Enter)) {
        d->WriteFound();
        return event->accept();
    }
    if (d->HasFound() && key == Qt::Key_Escape) {
        d->DropFound();
        return event->accept();
    }
    if (key == Qt::Key_Space && d->HasFound()) {
        d->SearchBlank();
        return event->accept();
    }
    const bool letter = key != Qt::Key_Space && !event->text().isEmpty() && event->text().at(0).isPrint() &&
                        !(event->modifiers() & (Qt::ControlModifier | Qt::AltModifier));
    if (letter)
        d->TypingStarts();
    QComboBox::keyPressEvent(event);
    if (letter)
        d->TypingEnded();
}

void VCComboBoxClassic::paintEvent(QPaintEvent*)
{
    QStylePainter painter(this);
    QStyleOptionComboBox option;
    initStyleOption(&option);
    painter.drawComplexControl(QStyle::CC_ComboBox, option);
    option.currentText = d->Elided();
    painter.drawControl(QStyle::CE_ComboBoxLabel, option);
    d->PaintState(painter);
}

void VCComboBoxClassic::contextMenuEvent(QContextMenuEvent* event)
{
    d->ShowContextMenu(event, nullptr);
}
