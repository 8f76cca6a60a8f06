#include "devicecontrol/geometrykeeper.h"

#include <QApplication>
#include <QDir>
#include <QEvent>
#include <QFile>
#include <QFileInfo>
#include <QLayout>
#include <QLoggingCategory>
#include <QMainWindow>
#include <QScreen>
#include <QSettings>
#include <QTimer>
#include <QWidget>

#include "guibase/guibasehost.h"

namespace {

Q_LOGGING_CATEGORY(geometryLog, "rx.geometry", QtInfoMsg)

const int longestEdgePixels = 32767;  // of any window system
const QSize reachablePart(96, 24);    // what of the title must lie on a screen to be dragged
const char normalKey[] = "Normal";
const char maximisedKey[] = "Maximised";

// One section for each kind of main widget.
QString GroupOf(const QWidget* widget)
{
    const QString name = widget->objectName();
    return QStringLiteral("Window/") +
           (name.isEmpty() ? QLatin1String(widget->metaObject()->className()) : name);
}

}  // namespace

void GeometryKeeper::SetApplication(QApplication* application)
{
    if (m_Application)
        m_Application->removeEventFilter(this);
    m_Application = application;
    if (!application)
        return;
    QWidget* const widget = GuiBaseHost::MainWidget();
    if (widget && widget->isVisible()) {
        Follow(widget);
        return;
    }
    application->installEventFilter(this);
}

// The application is only filtered until the main widget is shown; then the widget alone is.
void GeometryKeeper::Follow(QWidget* widget)
{
    if (m_Application)
        m_Application->removeEventFilter(this);
    m_Application = nullptr;
    if (m_Widget)
        m_Widget->removeEventFilter(this);
    m_Widget = widget;
    m_Group = GroupOf(widget);
    widget->installEventFilter(this);
    Remember(widget);
}

bool GeometryKeeper::eventFilter(QObject* object, QEvent* event)
{
    if (m_Application) {
        if (event->type() == QEvent::Show && object == GuiBaseHost::MainWidget()) {
            QWidget* const widget = static_cast<QWidget*>(object);
            MakeRoom(widget);
            const bool restored = Restore(widget);
            Follow(widget);
            // What is inside knows its sizes only once it was laid out for the first time.
            if (!restored)
                QTimer::singleShot(0, widget, [this, widget] { MakeRoom(widget); });
        }
        return false;
    }
    if (object != m_Widget)
        return false;
    switch (event->type()) {
        case QEvent::Move:
        case QEvent::Resize:
        case QEvent::Hide:
        case QEvent::Close:
        case QEvent::WindowStateChange:
            Remember(m_Widget);
            break;
        default:
            break;
    }
    return false;
}

void GeometryKeeper::Remember(QWidget* widget)
{
    m_HasLast = true;
    m_Last.maximised = widget->isMaximized();
    if (!widget->isMaximized() && !widget->isFullScreen() && !widget->isMinimized())
        m_Last.normal = QRect(widget->pos(), widget->size());
    else if (widget->normalGeometry().isValid())
        m_Last.normal = widget->normalGeometry();
}

bool GeometryKeeper::IsUsable(const QWidget* widget, const QRect& normal) const
{
    const QSize least = widget->minimumSize().expandedTo(widget->minimumSizeHint()).expandedTo(QSize(1, 1));
    if (normal.width() < least.width() || normal.height() < least.height() ||
        normal.width() > longestEdgePixels || normal.height() > longestEdgePixels)
        return false;
    const QRect title(normal.topLeft(), QSize(normal.width(), reachablePart.height()));
    for (const QScreen* screen : QGuiApplication::screens()) {
        const QRect seen = screen->availableGeometry().intersected(title);
        if (seen.width() >= qMin(reachablePart.width(), normal.width()) &&
            seen.height() >= reachablePart.height())
            return true;
    }
    return false;
}

// The toolkit opens a window at two thirds of the screen at most, even where its contents need more;
// and a main window does not ask its centre how high it is at a width, as panels that flow into rows
// are.
void GeometryKeeper::MakeRoom(QWidget* widget)
{
    const QScreen* const screen = widget->screen();
    if (!screen)
        return;
    QSize needed = widget->size().expandedTo(widget->minimumSizeHint());
    const QMainWindow* const window = qobject_cast<QMainWindow*>(widget);
    const QWidget* const centre = window ? window->centralWidget() : nullptr;
    if (centre && centre->layout() && centre->layout()->hasHeightForWidth()) {
        const int around = widget->height() - centre->height();
        const int height = centre->layout()->totalMinimumHeightForWidth(needed.width());
        needed = needed.expandedTo(QSize(0, height + around));
    }
    widget->resize(needed.boundedTo(screen->availableSize()).expandedTo(widget->size()));
}

bool GeometryKeeper::Restore(QWidget* widget)
{
    if (m_FileName.isEmpty() || !QFile::exists(m_FileName))
        return false;
    QSettings settings(m_FileName, QSettings::IniFormat);
    settings.beginGroup(GroupOf(widget));
    const QRect normal = settings.value(QLatin1String(normalKey)).toRect();
    if (settings.status() != QSettings::NoError)
        qCWarning(geometryLog).noquote() << m_FileName << "is damaged; the window takes its own size";
    if (!settings.contains(QLatin1String(normalKey)))
        return false;
    if (!IsUsable(widget, normal)) {
        qCInfo(geometryLog).noquote() << m_FileName << "holds a geometry that fits no screen; it is ignored";
        return false;
    }
    widget->resize(normal.size());
    widget->move(normal.topLeft());
    if (settings.value(QLatin1String(maximisedKey)).toBool())
        widget->setWindowState(widget->windowState() | Qt::WindowMaximized);
    return true;
}

void GeometryKeeper::Store()
{
    if (m_FileName.isEmpty() || !m_HasLast)
        return;
    if (m_Widget)
        Remember(m_Widget);
    QDir().mkpath(QFileInfo(m_FileName).absolutePath());
    {
        // What cannot be read is of no use to anybody, and would keep the new geometry from being found.
        QSettings present(m_FileName, QSettings::IniFormat);
        if (present.status() == QSettings::FormatError)
            QFile::remove(m_FileName);
    }
    QSettings settings(m_FileName, QSettings::IniFormat);
    settings.beginGroup(m_Group);
    settings.setValue(QLatin1String(normalKey), m_Last.normal);
    settings.setValue(QLatin1String(maximisedKey), m_Last.maximised);
    settings.sync();
    if (settings.status() != QSettings::NoError)
        qCWarning(geometryLog).noquote() << m_FileName
                                         << "cannot be written; the window's size is not kept. Check the "
                                            "permissions of its folder";
}
