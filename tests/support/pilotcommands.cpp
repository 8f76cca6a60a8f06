#include "pilotcommands.h"

#include <QAbstractButton>
#include <QApplication>
#include <QComboBox>
#include <QCoreApplication>
#include <QFile>
#include <QJsonArray>
#include <QKeyEvent>
#include <QKeySequence>
#include <QMessageBox>
#include <QMouseEvent>
#include <QPixmap>
#include <QPointer>
#include <QTimer>
#include <QWheelEvent>
#include <QWidget>
#include <functional>

#include "pilotscan.h"
#include "valuecontrols/operatorjournal.h"
#include "valueframework/tree.h"
#include "valueframework/valuebase.h"
#include "valueframework/valuehost.h"

namespace {

QJsonObject refusal(const QString& why)
{
    return {{"ok", false}, {"error", why}};
}

QString plain(QString text)
{
    return text.remove(QLatin1Char('&')).trimmed();
}

QString textOf(const QWidget* widget)
{
    if (const auto* box = qobject_cast<const QMessageBox*>(widget)) {
        return box->text();
    }
    for (const char* property : {"text", "currentText", "title", "plainText", "value"}) {
        const QVariant content = widget->property(property);
        if (content.isValid()) {
            return content.toString();
        }
    }
    return QString();
}

bool isA(const QWidget* widget, const QString& className)
{
    return className.isEmpty() || widget->inherits(className.toLatin1().constData());
}

bool windowFits(const QWidget* window, const QString& part)
{
    return part.isEmpty() || window->windowTitle().contains(part) || window->objectName().contains(part) ||
           QString(window->metaObject()->className()).contains(part);
}

QJsonObject describe(const QWidget* widget)
{
    const QRect rect(widget->mapTo(widget->window(), QPoint(0, 0)), widget->size());
    QJsonObject facts{
        {"class", widget->metaObject()->className()},
        {"name", widget->objectName()},
        {"text", textOf(widget)},
        {"visible", widget->isVisible()},
        {"enabled", widget->isEnabled()},
        {"focus", widget->hasFocus()},
        {"toolTip", widget->toolTip()},
        {"accessibleName", widget->accessibleName()},
        {"rect", QJsonArray{rect.x(), rect.y(), rect.width(), rect.height()}},
        {"isWindow", widget->isWindow()},
        {"title", widget->window()->windowTitle()},
    };
    if (const auto* button = qobject_cast<const QAbstractButton*>(widget)) {
        facts["checked"] = button->isChecked();
    }
    if (const auto* box = qobject_cast<const QMessageBox*>(widget)) {
        facts["informativeText"] = box->informativeText();
        QJsonArray buttons;
        for (const QAbstractButton* button : box->buttons()) {
            buttons.append(button->text());
        }
        facts["buttons"] = buttons;
    }
    if (const auto* list = qobject_cast<const QComboBox*>(widget)) {
        QJsonArray items;
        for (int i = 0; i < list->count(); ++i) {
            items.append(list->itemText(i));
        }
        facts["items"] = items;
    }
    return facts;
}

QList<QWidget*> chosen(const QJsonObject& command)
{
    const QString window = command["window"].toString();
    const QString name = command["name"].toString();
    const QString className = command["class"].toString();
    const QString text = command["text"].toString();
    QList<QWidget*> found;
    for (QWidget* top : QApplication::topLevelWidgets()) {
        if (!windowFits(top, window)) {
            continue;
        }
        QList<QWidget*> candidates{top};
        candidates += top->findChildren<QWidget*>();
        for (QWidget* widget : candidates) {
            if (widget->window() != top || (!name.isEmpty() && widget->objectName() != name) ||
                !isA(widget, className) || (!text.isEmpty() && plain(textOf(widget)) != plain(text)) ||
                found.contains(widget)) {
                continue;
            }
            found.append(widget);
        }
    }
    return found;
}

QWidget* chosenOne(const QJsonObject& command)
{
    return chosen(command).value(command["index"].toInt(0));
}

// Why an operator could not get at the widget; empty when he could.
QString obstacle(const QWidget* widget)
{
    if (widget == nullptr) {
        return "there is no such widget";
    }
    if (!widget->isVisible()) {
        return "the widget is not visible";
    }
    if (!widget->isEnabled()) {
        return "the widget is disabled";
    }
    const QWidget* modal = QApplication::activeModalWidget();
    if (modal != nullptr && modal != widget->window()) {
        return "a box stands in front of it: " + modal->windowTitle();
    }
    return QString();
}

// Once the answer is on its way.
QJsonObject later(std::function<void()> action)
{
    QTimer::singleShot(0, qApp, std::move(action));
    return {{"ok", true}};
}

void clickAt(QWidget* widget, const QPoint& point)
{
    const QPointer<QWidget> guarded(widget);
    const QPointF local(point);
    const QPointF global(widget->mapToGlobal(point));
    if (widget->focusPolicy() & Qt::ClickFocus) {
        widget->window()->activateWindow();
        widget->setFocus(Qt::MouseFocusReason);
    }
    QMouseEvent press(QEvent::MouseButtonPress, local, global, Qt::LeftButton, Qt::LeftButton,
                      Qt::NoModifier);
    QCoreApplication::sendEvent(widget, &press);
    if (guarded) {
        QMouseEvent release(QEvent::MouseButtonRelease, local, global, Qt::LeftButton, Qt::NoButton,
                            Qt::NoModifier);
        QCoreApplication::sendEvent(guarded, &release);
    }
}

// Where a click on the widget means the widget itself: on the text of a button, not beside it.
QPoint spotOf(const QWidget* widget)
{
    return widget->inherits("QCheckBox") || widget->inherits("QRadioButton")
               ? QPoint(10, widget->height() / 2)
               : widget->rect().center();
}

QJsonObject windows(const QJsonObject&)
{
    QJsonArray list;
    for (const QWidget* window : QApplication::topLevelWidgets()) {
        QJsonObject facts = describe(window);
        facts["minimized"] = window->isMinimized();
        facts["modal"] = window == QApplication::activeModalWidget();
        list.append(facts);
    }
    return {{"ok", true}, {"windows", list}};
}

QJsonObject find(const QJsonObject& command)
{
    QJsonArray list;
    for (const QWidget* widget : chosen(command)) {
        list.append(describe(widget));
    }
    return {{"ok", true}, {"widgets", list}};
}

QJsonObject click(const QJsonObject& command)
{
    const QPointer<QWidget> widget(chosenOne(command));
    const QString why = obstacle(widget);
    if (!why.isEmpty()) {
        return refusal(why);
    }
    return later([widget] {
        if (widget) {
            clickAt(widget, spotOf(widget));
        }
    });
}

// A button of the box or dialog in front, by its text.
QJsonObject press(const QJsonObject& command)
{
    const QWidget* box = QApplication::activeModalWidget();
    if (box == nullptr) {
        return refusal("no box is open");
    }
    const QString text = plain(command["text"].toString());
    for (QAbstractButton* button : box->findChildren<QAbstractButton*>()) {
        if (plain(button->text()) == text && button->isVisible()) {
            const QPointer<QWidget> guarded(button);
            return later([guarded] {
                if (guarded) {
                    clickAt(guarded, spotOf(guarded));
                }
            });
        }
    }
    return refusal("the box has no button " + text);
}

QJsonObject focus(const QJsonObject& command)
{
    QWidget* widget = chosenOne(command);
    const QString why = obstacle(widget);
    if (!why.isEmpty()) {
        return refusal(why);
    }
    widget->window()->activateWindow();
    widget->setFocus(Qt::TabFocusReason);
    return {{"ok", true}};
}

void sendKey(int key, Qt::KeyboardModifiers modifiers, const QString& text)
{
    for (const QEvent::Type type : {QEvent::KeyPress, QEvent::KeyRelease}) {
        QWidget* target = QApplication::focusWidget();
        if (target == nullptr) {
            target = QApplication::activeModalWidget();
        }
        if (target == nullptr) {
            return;
        }
        QKeyEvent event(type, key, modifiers, text);
        QCoreApplication::sendEvent(target, &event);
    }
}

// "text": typed character by character; "keys": names as in "Return", "Ctrl+A", in order.
QJsonObject type(const QJsonObject& command)
{
    const QString text = command["text"].toString();
    const QJsonArray keys = command["keys"].toArray();
    return later([text, keys] {
        for (const QChar character : text) {
            sendKey(character.toUpper().unicode(), Qt::NoModifier, QString(character));
        }
        for (const QJsonValue& name : keys) {
            const QKeySequence sequence(name.toString());
            const int combined = sequence.isEmpty() ? 0 : sequence[0].toCombined();
            sendKey(combined & ~static_cast<int>(Qt::KeyboardModifierMask),
                    Qt::KeyboardModifiers(combined & static_cast<int>(Qt::KeyboardModifierMask)), QString());
        }
    });
}

QJsonObject wheel(const QJsonObject& command)
{
    const QPointer<QWidget> widget(chosenOne(command));
    const QString why = obstacle(widget);
    if (!why.isEmpty()) {
        return refusal(why);
    }
    const int notches = command["notches"].toInt(1);
    return later([widget, notches] {
        if (!widget) {
            return;
        }
        constexpr int notchAngle = 120;
        const QPointF centre = widget->rect().center();
        QWheelEvent event(centre, widget->mapToGlobal(centre), QPoint(), QPoint(0, notches * notchAngle),
                          Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(widget, &event);
    });
}

// "steps": ["press"|"move"|"release", x, y] each, in the widget's pixels, with the left button.
QJsonObject mouse(const QJsonObject& command)
{
    const QPointer<QWidget> widget(chosenOne(command));
    const QString why = obstacle(widget);
    if (!why.isEmpty()) {
        return refusal(why);
    }
    const QJsonArray steps = command["steps"].toArray();
    return later([widget, steps] {
        Qt::MouseButtons held;
        for (const QJsonValue& entry : steps) {
            if (!widget) {
                return;
            }
            const QJsonArray step = entry.toArray();
            const QString what = step.at(0).toString();
            const QPointF local(step.at(1).toDouble(), step.at(2).toDouble());
            const QEvent::Type type = what == "press"     ? QEvent::MouseButtonPress
                                      : what == "release" ? QEvent::MouseButtonRelease
                                                          : QEvent::MouseMove;
            held.setFlag(Qt::LeftButton, what == "press" || (what != "release" && held));
            QMouseEvent event(type, local, widget->mapToGlobal(local),
                              type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton, held,
                              Qt::NoModifier);
            QCoreApplication::sendEvent(widget, &event);
        }
    });
}

QJsonObject choose(const QJsonObject& command)
{
    const QPointer<QComboBox> list(qobject_cast<QComboBox*>(chosenOne(command)));
    const QString why = obstacle(list);
    if (!why.isEmpty()) {
        return refusal(why);
    }
    const int index = list->findText(command["item"].toString());
    if (index < 0) {
        return refusal("the list has no such item");
    }
    return later([list, index] {
        if (list) {
            list->setFocus();
            list->setCurrentIndex(index);
            Q_EMIT list->activated(index);
        }
    });
}

QJsonObject value(const QJsonObject& command)
{
    Tree* tree = Tree::Instance();
    const ValueBase* found = tree == nullptr ? nullptr : tree->FindValue(command["path"].toString());
    if (found == nullptr) {
        return {{"ok", true}, {"exists", false}};
    }
    const WriteStatus& status = ValueHost::Status(*found);
    return {{"ok", true},
            {"exists", true},
            {"text", found->GetText()},
            {"state", static_cast<int>(found->GetState())},
            {"pending", status.pending},
            {"answer", static_cast<int>(status.answer)},
            {"reason", status.reason},
            {"number", QJsonValue::fromVariant(ValueHost::Content(*found))}};
}

QJsonObject write(const QJsonObject& command)
{
    Tree* tree = Tree::Instance();
    ValueBase* found = tree == nullptr ? nullptr : tree->FindValue(command["path"].toString());
    if (found == nullptr) {
        return refusal("there is no such value");
    }
    const QString text = command["text"].toString();
    const QString path = command["path"].toString();
    // Looked up again: the value may have gone when its turn comes.
    return later([path, text] {
        Tree* now = Tree::Instance();
        ValueBase* target = now == nullptr ? nullptr : now->FindValue(path);
        if (target != nullptr) {
            OperatorJournal::WriteText(*target, text, nullptr);
        }
    });
}

QJsonObject grab(const QJsonObject& command)
{
    QWidget* widget = chosenOne(command);
    if (widget == nullptr) {
        return refusal("there is no such widget");
    }
    const QString file = command["file"].toString();
    return widget->grab().save(file) ? QJsonObject{{"ok", true}} : refusal("cannot write " + file);
}

QJsonObject close(const QJsonObject& command)
{
    const QPointer<QWidget> widget(chosenOne(command));
    if (!widget) {
        return refusal("there is no such widget");
    }
    return later([widget] {
        if (widget) {
            widget->window()->close();
        }
    });
}

// "how": hidden, shown, minimized, of the widget's window; widgetHidden, of the widget alone
QJsonObject show(const QJsonObject& command)
{
    QWidget* widget = chosenOne(command);
    if (widget == nullptr) {
        return refusal("there is no such widget");
    }
    const QString how = command["how"].toString();
    if (how == "widgetHidden") {
        widget->hide();
    } else if (how == "hidden") {
        widget->window()->hide();
    } else if (how == "minimized") {
        widget->window()->showMinimized();
    } else {
        widget->window()->showNormal();
    }
    return {{"ok", true}};
}

// "size": [width, height], of the widget's window
QJsonObject resize(const QJsonObject& command)
{
    QWidget* widget = chosenOne(command);
    if (widget == nullptr) {
        return refusal("there is no such widget");
    }
    const QJsonArray size = command["size"].toArray();
    widget->window()->resize(size.at(0).toInt(), size.at(1).toInt());
    return {{"ok", true}};
}

QJsonObject ping(const QJsonObject&)
{
    return {{"ok", true}, {"pid", QCoreApplication::applicationPid()}};
}

struct Command
{
    const char* name;
    QJsonObject (*run)(const QJsonObject&);
};

const Command commands[] = {
    {"ping", ping},
    {"windows", windows},
    {"find", find},
    {"click", click},
    {"press", press},
    {"focus", focus},
    {"type", type},
    {"wheel", wheel},
    {"choose", choose},
    {"value", value},
    {"write", write},
    {"grab", grab},
    {"close", close},
    {"show", show},
    {"mouse", mouse},
    {"resize", resize},
    {"scan", PilotScan::facts},
    {"paintages", PilotScan::paintAges},
};

}  // namespace

QJsonObject PilotCommands::run(const QJsonObject& command)
{
    const QString name = command["cmd"].toString();
    for (const Command& known : commands) {
        if (name == QLatin1String(known.name)) {
            return known.run(command);
        }
    }
    return refusal("unknown command " + name);
}
