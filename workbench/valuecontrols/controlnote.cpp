#include "valuecontrols/controlnote.h"

#include <QAccessible>
#include <QEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QToolTip>

#include "valuecontrols/controllook.h"

namespace {

const int readingTimeMs = 6000;
const int readingTimePerCharacterMs = 60;
const int lookAgainMs = 2000;
const int widestNote = 280;
const int distance = 2;  // between control and note, and to the window's edge

}  // namespace

// A control in a window has its note in the same window, so that the note never covers another
// program; a control that is a window itself gets a tool tip window.
ControlNote::ControlNote(QWidget* control, Kind kind, const QString& text)
    : QLabel(control->isWindow() ? control : control->window()), m_Control(control), m_Kind(kind)
{
    if (control->isWindow()) {
        setWindowFlags(Qt::ToolTip | Qt::FramelessWindowHint);
        setAttribute(Qt::WA_ShowWithoutActivating);
    }
    setObjectName(QStringLiteral("controlNote"));
    setFocusPolicy(Qt::NoFocus);
    setTextFormat(Qt::PlainText);
    QPalette paper = QToolTip::palette();
    paper.setColor(QPalette::Window, paper.color(QPalette::ToolTipBase));  // what the colours go by
    setPalette(paper);
    setBackgroundRole(QPalette::ToolTipBase);
    setForegroundRole(QPalette::ToolTipText);
    setContentsMargins(10, 4, 8, 4);
    setCursor(Qt::ArrowCursor);
    setText(text);

    for (QWidget* widget = control; widget; widget = widget->parentWidget()) {
        widget->installEventFilter(this);
        if (widget->isWindow())
            break;
    }
    m_ReadingTime.setSingleShot(true);
    connect(&m_ReadingTime, &QTimer::timeout, this, [this]() { GoWhenRead(); });
    m_ReadingTime.start(readingTimeMs + readingTimePerCharacterMs * int(text.size()));
    Place();
    setVisible(control->isVisible());
    raise();

    QAccessibleEvent alert(control, QAccessible::Alert);
    QAccessible::updateAccessibility(&alert);
}

ControlNote::~ControlNote() {}

void ControlNote::Place()
{
    if (!m_Control)
        return;
    const bool apart = isWindow();
    QWidget* const around = m_Control->window();
    const int room = apart ? widestNote : qMin(widestNote, around->width() - 2 * distance);
    setWordWrap(false);
    const bool wraps = sizeHint().width() > room;
    setWordWrap(wraps);
    const int width = wraps ? qMax(room, 40) : sizeHint().width();
    const int height = wraps ? heightForWidth(width) : sizeHint().height();
    QPoint corner = apart ? m_Control->mapToGlobal(QPoint(0, m_Control->height() + distance))
                          : m_Control->mapTo(around, QPoint(0, m_Control->height() + distance));
    if (!apart) {
        if (corner.y() + height > around->height() - distance)
            corner.setY(m_Control->mapTo(around, QPoint(0, 0)).y() - height - distance);
        corner.setX(qMax(distance, qMin(corner.x(), around->width() - width - distance)));
        corner.setY(qMax(distance, corner.y()));
    }
    setGeometry(QRect(corner, QSize(width, height)));
}

void ControlNote::GoWhenRead()
{
    const bool seen = m_Control && m_Control->isVisible() && m_Control->window()->isActiveWindow();
    if (m_Control && (underMouse() || !seen))
        m_ReadingTime.start(lookAgainMs);
    else
        close(), deleteLater();
}

bool ControlNote::eventFilter(QObject* watched, QEvent* event)
{
    switch (event->type()) {
        case QEvent::Move:
        case QEvent::Resize:
        case QEvent::LayoutRequest:
            Place();
            break;
        case QEvent::Show:
        case QEvent::Hide:
            if (m_Control) {
                setVisible(m_Control->isVisible());
                raise();
            }
            break;
        default:
            break;
    }
    return QLabel::eventFilter(watched, event);
}

void ControlNote::mousePressEvent(QMouseEvent* event)
{
    event->accept();
    hide();
    deleteLater();
}

void ControlNote::paintEvent(QPaintEvent* event)
{
    QPainter painter(this);
    const QColor color =
        m_Kind == Refused ? ControlLook::RefusedColor(palette()) : ControlLook::PendingColor(palette());
    painter.fillRect(rect(), palette().color(QPalette::ToolTipBase));
    painter.setPen(color);
    painter.drawRect(rect().adjusted(0, 0, -1, -1));
    painter.fillRect(QRect(0, 0, 4, height()), color);
    painter.end();
    QLabel::paintEvent(event);
}
