// From frames and values to the picture.

#include <QPainter>
#include <cmath>
#include <limits>

#include "spectrum/axisticks.h"
#include "spectrum/levelaxiswidget.h"
#include "spectrum/peaktable.h"
#include "spectrum/scanpointer.h"
#include "spectrum/scanstatusline.h"
#include "spectrum/scantext.h"
#include "spectrum/vcscanwidget_p.h"
#include "spectrum/xaxiswidget_p.h"

namespace {

constexpr int spokenMs = 1000;  // a screen reader is told no more often
constexpr int finestBins = 8;   // of the narrowest view

}  // namespace

double VCScanWidgetPrivate::resolutionBandwidth() const
{
    return trace() ? trace()->resolutionBandwidth : 0;
}

double VCScanWidgetPrivate::pixelHertz() const
{
    return view.range().isValid() ? view.range().width() / qMax(1, spectrum->width()) : 1;
}

ScanState VCScanWidgetPrivate::currentState() const
{
    ScanState::Facts facts;
    facts.stream = stream.state();
    facts.address = stream.address().text();
    facts.failure = stream.failure();
    facts.delivered = stream.hasDelivered();
    facts.hasTrace = trace() && m_lastFrame.isValid();
    facts.traceAge = m_lastFrame.isValid() ? double(m_lastFrame.elapsed()) / 1000 : 0;
    facts.dropAge = m_lastDrop.isValid() ? double(m_lastDrop.elapsed()) / 1000 : -1;
    facts.dropped = stream.dropped();
    facts.dropReason = stream.dropReason();
    facts.rangeProblem = m_rangeProblem;
    return ScanState::of(facts);
}

void VCScanWidgetPrivate::followState()
{
    if (!(currentState() == state))
        changed();
}

void VCScanWidgetPrivate::placeCursor(ScanScene& scene) const
{
    scene.cursorVisible = hasCursor();
    if (!scene.cursorVisible)
        return;
    scene.cursorFrequency = m_cursor;
    scene.cursorLevel = float(m_cursorLevel);
    const bool inRow = cursorTime != 0;
    const double level = inRow     ? double(cursorRowLevel)
                         : trace() ? double(ScanText::levelNear(*trace(), m_cursor, pixelHertz()))
                                   : std::numeric_limits<double>::quiet_NaN();
    if (!inRow && std::isnan(m_cursorLevel))
        scene.cursorLevel = float(level);  // the cross lies where the read-out says
    scene.cursorText = ScanText::cursor(m_cursor, pixelHertz(), level, inRow ? cursorTime : 0);
}

void VCScanWidgetPrivate::buildScene()
{
    QString problem;
    axes.readLevels(&problem);
    if (trace())
        view.setFinest(trace()->step * finestBins);
    view.setFull(axes.panorama(trace(), &problem));
    m_rangeProblem = problem;
    state = currentState();

    ScanScene& scene = spectrum->scene;
    scene.view = view.range();
    scene.levelMinimum = axes.minimum();
    scene.levelMaximum = axes.maximum();
    scene.levelLabels = options.axes;
    scene.trace = trace();
    scene.maximumHold = hold.maximum();
    scene.minimumHold = hold.minimum();
    scene.channel = channel.drawn(resolutionBandwidth());
    if (scene.channel.visible && scene.view.isValid() && !scene.view.contains(scene.channel.frequency))
        scene.channel.text =
            (view.full().contains(scene.channel.frequency) ? VCScanWidget::tr("%1 out of view")
                                                           : VCScanWidget::tr("%1 outside of the span"))
                .arg(ScanText::frequency(scene.channel.frequency, pixelHertz()));
    scene.markers = markers.drawn(trace(), pixelHertz());
    scene.selectedMarker = markers.selected();
    scene.stale = state.stale;
    scene.message = state.message;
    scene.focused = widget->hasFocus();
    scene.noticeText = m_averaging > 1 ? VCScanWidget::tr("mean of %1").arg(m_averaging) : QString();
    placeCursor(scene);
}

void VCScanWidgetPrivate::show()
{
    followRequest();
    if (!m_shown)
        return;
    buildScene();
    const ScanScene& scene = spectrum->scene;
    spectrum->update();
    levelAxis->setRange(scene.levelMinimum, scene.levelMaximum);
    XAxisWidgetPrivate::of(xAxis)->setRange(scene.view, axes.center.number());
    if (options.waterfall) {
        waterfall->setLook(scene.levelMinimum, scene.levelMaximum, m_palette, scene.stale);
        waterfall->setView(scene.view);
        waterfall->setChannel(scene.channel);
        waterfall->setCursorFrequency(m_cursor);
        if (m_newRows)
            waterfall->update();
        m_newRows = false;
    }
    status->setText(statusText());
    if (!m_spoken.isValid() || m_spoken.elapsed() >= spokenMs) {
        m_spoken.start();
        const QString words = spokenText();
        if (words != widget->accessibleDescription())
            widget->setAccessibleDescription(words);
    }
}

QString VCScanWidgetPrivate::statusText() const
{
    QStringList parts;
    const ScanRange& range = view.range();
    const QString hertz = QStringLiteral("Hz");
    if (range.isValid()) {
        const QString width = siText(range.width(), range.width() / 1000, hertz);
        parts << (view.isFit()
                      ? VCScanWidget::tr("Span %1").arg(width)
                      : VCScanWidget::tr("View %1 of %2")
                            .arg(width, siText(view.full().width(), view.full().width() / 1000, hertz)));
    }
    if (resolutionBandwidth() > 0)
        parts << VCScanWidget::tr("RBW %1").arg(
            siText(resolutionBandwidth(), resolutionBandwidth() / 100, hertz));
    if (hasCursor())
        parts << spectrum->scene.cursorText;
    else if (stream.skipped() > 0)
        parts << VCScanWidget::tr("%1 skipped").arg(stream.skipped());
    return parts.join(QStringLiteral("   "));
}

QString VCScanWidgetPrivate::spokenText() const
{
    QStringList parts;
    if (!state.message.isEmpty())
        parts << state.message;
    const ScanRange& range = view.range();
    if (range.isValid())
        parts << VCScanWidget::tr("View from %1 to %2.")
                     .arg(ScanText::frequency(range.start, pixelHertz()),
                          ScanText::frequency(range.stop, pixelHertz()));
    const QString channelWords = channel.words();
    if (!channelWords.isEmpty())
        parts << channelWords;
    if (trace() && !state.stale) {
        PeakSearch strongest;
        strongest.count = 1;
        const QVector<ScanPeak> peaks = findPeaks(*trace(), range, strongest);
        if (!peaks.isEmpty())
            parts << VCScanWidget::tr("Strongest signal %1 at %2.")
                         .arg(ScanText::level(double(peaks.first().level)),
                              ScanText::frequency(peaks.first().frequency, trace()->step));
    }
    if (hasCursor())
        parts << VCScanWidget::tr("Cursor: %1.").arg(spectrum->scene.cursorText);
    for (const ScanMarker& marker : spectrum->scene.markers)
        parts << VCScanWidget::tr("Marker %1: %2, %3.")
                     .arg(marker.text, ScanText::frequency(marker.frequency, pixelHertz()),
                          ScanText::level(double(marker.level)));
    return parts.join(QLatin1Char(' '));
}
