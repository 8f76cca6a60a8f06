// The keyboard of a scan, and the other events of its widget.

#include <QContextMenuEvent>
#include <QKeyEvent>

#include "spectrum/levelaxiswidget.h"
#include "spectrum/scanmenu.h"
#include "spectrum/scanpointer.h"
#include "spectrum/vcscanwidget_p.h"

namespace {

constexpr double coarse = 10;  // with Ctrl
constexpr double fine = 0.1;   // with Shift
constexpr double keyNotches = 2;

double factorOf(Qt::KeyboardModifiers modifiers)
{
    if (modifiers & Qt::ControlModifier)
        return coarse;
    return modifiers & Qt::ShiftModifier ? fine : 1;
}

}  // namespace

bool VCScanWidgetPrivate::handleEvent(QEvent* event)
{
    switch (event->type()) {
        case QEvent::KeyPress:
            return handleKey(static_cast<QKeyEvent*>(event));
        case QEvent::ShortcutOverride:
            return keepFromShortcuts(static_cast<QKeyEvent*>(event));
        case QEvent::FocusIn:
        case QEvent::FocusOut:
        case QEvent::PaletteChange:
        case QEvent::LanguageChange:
            changed();
            return false;
        case QEvent::FontChange:
            applyMargins();
            changed();
            return false;
        case QEvent::ContextMenu:
            m_menu->popUp(static_cast<QContextMenuEvent*>(event)->globalPos());
            event->accept();
            return true;
        default:
            return false;
    }
}

// Delete, Home and the like are keys of this widget while it has the focus, whatever a menu says.
bool VCScanWidgetPrivate::keepFromShortcuts(QKeyEvent* event)
{
    const bool wanted = (event->modifiers() & ~(Qt::ShiftModifier | Qt::KeypadModifier)) == 0 &&
                        (event->key() == Qt::Key_Delete || event->key() == Qt::Key_Home ||
                         event->key() == Qt::Key_M || event->key() == Qt::Key_D);
    if (wanted && options.keyboard)
        event->accept();
    return wanted && options.keyboard;
}

bool VCScanWidgetPrivate::handleKey(QKeyEvent* event)
{
    if (!options.keyboard || (event->modifiers() & (Qt::AltModifier | Qt::MetaModifier)))
        return false;
    const bool done = handleMovingKey(event) || handleViewKey(event) || handleMarkerKey(event);
    if (done)
        event->accept();
    return done;
}

bool VCScanWidgetPrivate::handleMovingKey(QKeyEvent* event)
{
    const double factor = factorOf(event->modifiers());
    switch (event->key()) {
        case Qt::Key_Left:
            tuneBy(-factor);
            return true;
        case Qt::Key_Right:
            tuneBy(factor);
            return true;
        case Qt::Key_Up:
            squelchBy(factor);
            return true;
        case Qt::Key_Down:
            squelchBy(-factor);
            return true;
        case Qt::Key_PageUp:
            stepBandwidth(1);
            return true;
        case Qt::Key_PageDown:
            stepBandwidth(-1);
            return true;
        default:
            return false;
    }
}

// Zooming by key goes around the cursor, else around the channel where it is in view.
bool VCScanWidgetPrivate::handleViewKey(QKeyEvent* event)
{
    const double tuned = channel.frequency.number();
    const double around = hasCursor()                    ? m_cursor
                          : view.range().contains(tuned) ? tuned
                                                         : view.range().center();
    switch (event->key()) {
        case Qt::Key_Plus:
        case Qt::Key_Equal:
            zoomByKey(around, keyNotches);
            return true;
        case Qt::Key_Minus:
            zoomByKey(around, -keyNotches);
            return true;
        case Qt::Key_Home:
            fit();
            return true;
        default:
            return false;
    }
}

bool VCScanWidgetPrivate::handleMarkerKey(QKeyEvent* event)
{
    switch (event->key()) {
        case Qt::Key_M:
            addMarker(false);
            return options.markers;
        case Qt::Key_D:
            addMarker(true);
            return options.markers;
        case Qt::Key_Delete:
            removeMarker();
            return options.markers;
        case Qt::Key_Escape:
            return handleEscape();
        default:
            return false;
    }
}

// One thing at a time: a drag, a note, the cursor. Otherwise the key is the window's.
bool VCScanWidgetPrivate::handleEscape()
{
    if (levelAxis->isDragging()) {
        levelAxis->cancelDrag();
        return true;
    }
    if (m_pointer->isDragging()) {
        m_pointer->cancel();
        return true;
    }
    if (dropNotes())
        return true;
    if (!hasCursor())
        return false;
    clearCursor();
    return true;
}
