#include "app/shots.h"

#include <QApplication>
#include <QDir>
#include <QEvent>
#include <QLoggingCategory>
#include <QPixmap>
#include <QPointer>
#include <QRegularExpression>
#include <QTimer>
#include <QWidget>

namespace {

Q_LOGGING_CATEGORY(lcShots, "rx.app.shots")

constexpr int settleMs = 400;  // after the last layout and the first values

bool isPictured(const QWidget* window)
{
    switch (window->windowType()) {
        case Qt::Window:
        case Qt::Dialog:
        case Qt::SplashScreen:
        case Qt::Sheet:
        case Qt::Tool:
            return window->isWindow();
        default:
            return false;  // tool tips, menus, opened lists
    }
}

QString nameOf(const QWidget* window)
{
    QString name = window->windowTitle();
    if (name.isEmpty()) {
        name = window->objectName();
    }
    if (name.isEmpty() || name.startsWith(QLatin1String("qt_"))) {
        name = window->metaObject()->className();
    }
    static const QRegularExpression strange("[^A-Za-z0-9]+");
    name = name.replace(strange, "-").toLower();
    while (name.startsWith('-')) {
        name.remove(0, 1);
    }
    while (name.endsWith('-')) {
        name.chop(1);
    }
    return name.isEmpty() ? QString("window") : name.left(60);
}

}  // namespace

bool Shots::open(const QString& folder, QString* error)
{
    if (!QDir().mkpath(folder) || !QFileInfo(folder).isWritable()) {
        *error = QString("%1: pictures cannot be saved there; choose a folder that can be written")
                     .arg(QDir::toNativeSeparators(folder));
        return false;
    }
    m_folder = QDir(folder).absolutePath();
    qApp->installEventFilter(this);
    return true;
}

bool Shots::eventFilter(QObject* watched, QEvent* event)
{
    if (!watched->isWidgetType()) {
        return false;
    }
    auto* widget = static_cast<QWidget*>(watched);
    if (event->type() == QEvent::Show && !event->spontaneous() && isPictured(widget)) {
        appeared(widget);
        return false;
    }
    const auto seen = m_seen.find(widget);
    if (seen == m_seen.end() || !isPictured(widget)) {
        return false;
    }
    if (event->type() == QEvent::Paint) {
        seen->painted = true;
    } else if (event->type() == QEvent::Hide && !event->spontaneous() && seen->painted && !seen->saved) {
        // A splash screen may live shorter than it takes to settle. What was never painted was on no
        // screen: a widget on its way into another one.
        save(widget, QString());
    }
    return false;
}

void Shots::appeared(QWidget* window)
{
    if (!m_seen.contains(window)) {
        connect(window, &QObject::destroyed, this, [this](QObject* gone) { m_seen.remove(gone); });
    }
    Seen& seen = m_seen[window];
    seen.painted = false;
    seen.saved = false;
    const QPointer<QWidget> guarded(window);
    QTimer::singleShot(settleMs, this, [this, guarded] {
        if (guarded && guarded->isVisible() && isPictured(guarded) && !m_seen[guarded].saved) {
            save(guarded, QString());
        }
    });
}

void Shots::save(QWidget* window, const QString& suffix)
{
    // Drawing the picture paints the window, which comes back here through the filter.
    Seen& seen = m_seen[window];
    if (seen.name.isEmpty()) {
        seen.name = QString("%1-%2").arg(++m_count, 2, 10, QLatin1Char('0')).arg(nameOf(window));
    }
    seen.saved = true;
    const QString file = QString("%1/%2%3.png").arg(m_folder, seen.name, suffix);
    if (window->grab().save(file)) {
        qCInfo(lcShots).noquote() << "saved" << file;
    } else {
        qCWarning(lcShots).noquote() << file << "could not be saved; is the disk full?";
    }
}

void Shots::saveAll()
{
    const QWidgetList windows = QApplication::topLevelWidgets();
    for (QWidget* window : windows) {
        if (window->isVisible() && isPictured(window)) {
            save(window, "-end");
        }
    }
}
