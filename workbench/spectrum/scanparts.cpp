// The parts of a scan widget, how they lie, and who hears of whom.

#include <QBoxLayout>
#include <QLabel>
#include <QSplitter>
#include <cmath>
#include <limits>

#include "spectrum/axispainter.h"
#include "spectrum/levelaxiswidget.h"
#include "spectrum/scanmenu.h"
#include "spectrum/scanpointer.h"
#include "spectrum/scanstatusline.h"
#include "spectrum/vcscanwidget_p.h"
#include "spectrum/xaxiswidget_p.h"
#include "valueframework/vtclientcenter.h"

namespace {

constexpr int watchMs = 250;      // how soon an old trace looks old
constexpr int spectrumShare = 3;  // of the height, to the waterfall's two
constexpr int waterfallShare = 2;
constexpr int handlePixels = 7;       // between the pictures; can be hit
constexpr int rightMargin = 10;       // pixels; room for half of the last label
constexpr quint32 mostPoints = 8192;  // more than a picture has pixels, so that zooming shows more
constexpr double frameRate = 30;
constexpr double nothing = std::numeric_limits<double>::quiet_NaN();

// Where the driver offers its streams now; empty: there is no client, or it does not know.
QString clientsAddress()
{
    VtClientCenter* const center = VtClientCenter::Instance();
    IVtClient* const client = center ? center->GetVtClient(QStringLiteral("VTConnectToDRV")) : nullptr;
    return client ? client->GetServerAddress() : QString();
}

QHBoxLayout* bareRow(QWidget* home)
{
    auto* const row = new QHBoxLayout(home);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(0);
    return row;
}

}  // namespace

VCScanWidgetPrivate::VCScanWidgetPrivate(VCScanWidget* scan, const char* name)
    : widget(scan),
      title(new QLabel(scan)),
      levelAxis(new LevelAxisWidget(scan)),
      spectrum(new SpectrumCanvas(scan)),
      waterfall(new WaterfallCanvas(scan)),
      splitter(new QSplitter(Qt::Vertical, scan)),
      xAxis(new XAxisWidget(scan)),
      status(new ScanStatusLine(scan)),
      pacer([this] { show(); }),
      axes(status, [this] { changed(); }),
      channel(status, [this] { changed(); }),
      m_cursor(nothing),
      m_cursorLevel(nothing)
{
    if (name) {
        widget->setObjectName(QString::fromUtf8(name));
        widget->setAccessibleName(QString::fromUtf8(name));
    }
    buildLayout();
    connectParts();
    m_pointer = std::make_unique<ScanPointer>(*this);
    m_menu = std::make_unique<ScanMenu>(*this);
}

VCScanWidgetPrivate::~VCScanWidgetPrivate()
{
    keepSettings();
    stream.disconnect(this);
    pacer.stop();
}

void VCScanWidgetPrivate::configure(const ScanOptions& wanted)
{
    options = wanted;
    // Round steps meet a number of labels from below: one more aims at its middle.
    options.axes = wanted.axes > 0 ? wanted.axes + 1 : 0;
    title->setText(options.title);
    title->setVisible(options.showTitle && !options.title.isEmpty());
    m_waterfallRow->setVisible(options.waterfall);
    levelAxis->setLabels(options.axes);
    widget->setFocusPolicy(options.keyboard ? Qt::StrongFocus : Qt::NoFocus);
    widget->setToolTip(options.keyboard ? ScanMenu::keyboardHelp() : QString());
    restoreSettings();
    changed();
}

ScanSettings VCScanWidgetPrivate::currentSettings() const
{
    ScanSettings settings;
    settings.palette = m_palette;
    settings.averaging = m_averaging;
    settings.splitter = splitter->saveState();
    return settings;
}

void VCScanWidgetPrivate::restoreSettings()
{
    const ScanSettings kept = ScanSettings::read(options.settings);
    setPalette(kept.palette);
    setAveraging(kept.averaging);
    if (!kept.splitter.isEmpty())
        splitter->restoreState(kept.splitter);
    // The state may hold more than the places of handles.
    splitter->setOrientation(Qt::Vertical);
    splitter->setChildrenCollapsible(false);
    splitter->setHandleWidth(handlePixels);
    m_kept = currentSettings();
}

void VCScanWidgetPrivate::keepSettings()
{
    const ScanSettings now = currentSettings();
    if (now == m_kept)
        return;
    now.write(options.settings);
    m_kept = now;
}

void VCScanWidgetPrivate::buildLayout()
{
    auto* const column = new QVBoxLayout(widget);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    title->setAlignment(Qt::AlignHCenter);
    title->hide();
    column->addWidget(title);

    auto* const spectrumRow = new QWidget;
    m_spectrumLayout = bareRow(spectrumRow);
    m_spectrumLayout->addWidget(levelAxis);
    m_spectrumLayout->addWidget(spectrum, 1);
    m_waterfallRow = new QWidget;
    m_waterfallSide = new QWidget;
    m_waterfallLayout = bareRow(m_waterfallRow);
    m_waterfallLayout->addWidget(m_waterfallSide);
    m_waterfallLayout->addWidget(waterfall, 1);

    splitter->setObjectName(QStringLiteral("scanSplitter"));
    splitter->setChildrenCollapsible(false);
    splitter->setHandleWidth(handlePixels);
    splitter->addWidget(spectrumRow);
    splitter->addWidget(m_waterfallRow);
    splitter->setStretchFactor(0, spectrumShare);
    splitter->setStretchFactor(1, waterfallShare);
    column->addWidget(splitter, 1);
    column->addWidget(xAxis);
    column->addWidget(status);
    applyMargins();
}

// Both pictures and the frequency axis share their left and right ends.
void VCScanWidgetPrivate::applyMargins()
{
    XAxisWidgetPrivate* const axis = XAxisWidgetPrivate::of(xAxis);
    const int left = qMax(AxisPainter::levelAxisWidth(widget->font()), axis->buttonWidth());
    const int right = qMax(rightMargin, axis->buttonWidth());
    levelAxis->setFixedWidth(left);
    m_waterfallSide->setFixedWidth(left);
    m_spectrumLayout->setContentsMargins(0, 0, right, 0);
    m_waterfallLayout->setContentsMargins(0, 0, right, 0);
    axis->setMargins(left, right);
}

void VCScanWidgetPrivate::connectParts()
{
    XAxisWidgetPrivate* const axis = XAxisWidgetPrivate::of(xAxis);
    axis->pan = [this](double hertz) { panBy(hertz); };
    axis->zoom = [this](double frequency, double notches) { zoomBy(frequency, notches); };
    axis->fit = [this] { fit(); };
    axis->step = [this](int direction) { panBy(direction * view.range().width() / 2); };
    axis->buttonsChanged = [this] { applyMargins(); };

    levelAxis->dragged = [this](double minimum, double maximum) { axes.writeLevels(minimum, maximum); };
    levelAxis->released = [this] { axes.flushLevels(); };
    levelAxis->fitted = [this] { fitLevels(); };

    stream.setAddressSource(clientsAddress);
    connect(&stream, &ScanStream::frameReceived, this, [this](const ScanFrame& frame) { takeFrame(frame); });
    connect(&stream, &ScanStream::frameDropped, this, [this] {
        m_lastDrop.start();
        changed();
    });
    connect(&stream, &ScanStream::stateChanged, this, [this] { changed(); });
    m_watch.setInterval(watchMs);
    connect(&m_watch, &QTimer::timeout, this, [this] { followState(); });
}

void VCScanWidgetPrivate::shown()
{
    m_shown = true;
    followRequest();
    stream.start();
    m_watch.start();
    pacer.now();
}

void VCScanWidgetPrivate::hidden()
{
    m_shown = false;
    keepSettings();
    m_pointer->cancel();
    levelAxis->cancelDrag();
    stream.stop();
    m_watch.stop();
    pacer.stop();
}

// The device is the one whose centre frequency is bound.
void VCScanWidgetPrivate::followRequest()
{
    Link::StreamRequest request;
    request.version = Link::protocolVersion;
    request.kind = Link::spectrumStream();
    request.path = axes.center.Path().section(QLatin1Char('/'), 0, -2);
    request.points = mostPoints;
    request.frameRate = frameRate;
    request.detector = axes.wantsPeaks() ? Link::StreamDetector::Maximum : Link::StreamDetector::Mean;
    stream.setRequest(request);
}

// The waterfall keeps every frame; the line above shows the newest when its turn comes.
void VCScanWidgetPrivate::takeFrame(const ScanFrame& frame)
{
    m_lastFrame.start();
    hold.add(frame);
    if (options.waterfall) {
        waterfall->history.add(frame);
        m_newRows = true;
    }
    changed();
}
