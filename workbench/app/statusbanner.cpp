#include "app/statusbanner.h"

#include <QEvent>
#include <QGridLayout>
#include <QLabel>
#include <QToolButton>

namespace {

constexpr int tickMs = 1000;
constexpr int errorStandsMs = 30000;
constexpr int errorsAtMost = 3;
const QRgb bannerColour = 0xff8c3b00;
const QRgb bannerTextColour = 0xffffffff;

QString duration(qint64 seconds)
{
    if (seconds < 60) {
        return QObject::tr("%1 s").arg(seconds);
    }
    if (seconds < 3600) {
        return QObject::tr("%1 min %2 s").arg(seconds / 60).arg(seconds % 60);
    }
    return QObject::tr("%1 h %2 min").arg(seconds / 3600).arg(seconds % 3600 / 60);
}

}  // namespace

StatusBanner::StatusBanner() : m_driverLine(new QLabel), m_errorLine(new QLabel), m_dismiss(new QToolButton)
{
    setObjectName("StatusBanner");
    setAutoFillBackground(true);
    QPalette colours = palette();
    colours.setColor(QPalette::Window, QColor::fromRgba(bannerColour));
    colours.setColor(QPalette::WindowText, QColor::fromRgba(bannerTextColour));
    setPalette(colours);

    m_driverLine->setObjectName("DriverLine");
    m_errorLine->setObjectName("ErrorLine");
    for (QLabel* line : {m_driverLine, m_errorLine}) {
        line->setWordWrap(true);
        line->setTextFormat(Qt::PlainText);
        line->hide();
    }
    m_dismiss->setObjectName("DismissErrors");
    m_dismiss->setText(QString(QChar(0x00d7)));
    m_dismiss->setToolTip(tr("Dismiss this message"));
    m_dismiss->setAccessibleName(tr("Dismiss this message"));
    m_dismiss->setAutoRaise(true);
    m_dismiss->hide();
    connect(m_dismiss, &QToolButton::clicked, this, &StatusBanner::dismissErrors);

    auto* layout = new QGridLayout(this);
    layout->setContentsMargins(8, 3, 4, 3);
    layout->setSpacing(2);
    layout->addWidget(m_driverLine, 0, 0, 1, 2);
    layout->addWidget(m_errorLine, 1, 0);
    layout->addWidget(m_dismiss, 1, 1, Qt::AlignTop);
    layout->setColumnStretch(0, 1);

    m_tick.setInterval(tickMs);
    connect(&m_tick, &QTimer::timeout, this, &StatusBanner::refresh);
    m_errorTime.setSingleShot(true);
    m_errorTime.setInterval(errorStandsMs);
    connect(&m_errorTime, &QTimer::timeout, this, &StatusBanner::dismissErrors);
    hide();
}

StatusBanner::~StatusBanner() = default;

void StatusBanner::setMainWidget(QWidget* widget)
{
    if (m_mainWidget == widget) {
        return;
    }
    if (m_mainWidget) {
        m_mainWidget->removeEventFilter(this);
    }
    m_mainWidget = widget;
    setParent(widget);  // hides it
    if (widget != nullptr) {
        widget->installEventFilter(this);
    }
    refresh();
}

void StatusBanner::driverLost(const QString& address)
{
    m_lostAt = QDateTime::currentDateTime();
    m_address = address;
    m_attempt = 1;
    m_tick.start();
    refresh();
}

void StatusBanner::setAttempt(int attempt)
{
    m_attempt = attempt;
    refresh();
}

void StatusBanner::driverBack()
{
    m_lostAt = QDateTime();
    m_awayErrors.clear();
    m_tick.stop();
    refresh();
}

void StatusBanner::showError(const QString& message)
{
    QStringList& errors = m_lostAt.isValid() ? m_awayErrors : m_errors;
    errors.removeAll(message);
    errors.append(message);
    while (errors.size() > errorsAtMost) {
        errors.removeFirst();
    }
    m_errorTime.start();
    refresh();
}

void StatusBanner::dismissErrors()
{
    m_errors.clear();
    m_awayErrors.clear();
    m_errorTime.stop();
    refresh();
}

void StatusBanner::refresh()
{
    const bool away = m_lostAt.isValid();
    if (away) {
        const qint64 seconds = m_lostAt.secsTo(QDateTime::currentDateTime());
        QString what = tr("Driver away since %1 (%2), reconnecting to %3")
                           .arg(m_lostAt.toString("HH:mm:ss"), duration(qMax<qint64>(0, seconds)), m_address);
        if (m_attempt > 0) {
            what += tr(", attempt %1").arg(m_attempt);
        }
        m_driverLine->setText(what);
    }
    m_driverLine->setVisible(away);
    const QStringList errors = m_errors + m_awayErrors;
    m_errorLine->setText(errors.join('\n'));
    m_errorLine->setVisible(!errors.isEmpty());
    m_dismiss->setVisible(!errors.isEmpty());
    setVisible(m_mainWidget && (away || !errors.isEmpty()));
    place();
}

void StatusBanner::place()
{
    if (!m_mainWidget || isHidden()) {
        return;
    }
    const int width = m_mainWidget->width();
    const int height =
        layout()->hasHeightForWidth() ? layout()->totalHeightForWidth(width) : sizeHint().height();
    // At the lower edge: the controls that an operator looks at first are at the upper one.
    setGeometry(0, m_mainWidget->height() - height, width, height);
    raise();
}

bool StatusBanner::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == m_mainWidget &&
        (event->type() == QEvent::Resize || event->type() == QEvent::Show ||
         event->type() == QEvent::LayoutRequest || event->type() == QEvent::ChildAdded)) {
        place();
    }
    return QWidget::eventFilter(watched, event);
}
