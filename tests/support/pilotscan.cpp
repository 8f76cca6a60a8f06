#include "pilotscan.h"

#include <QApplication>
#include <QDateTime>
#include <QEvent>
#include <QJsonArray>
#include <QPointer>
#include <chrono>
#include <cmath>
#include <memory>

#include "spectrum/scancanvas.h"
#include "spectrum/vcscanwidget_p.h"

namespace {

QJsonObject refusal(const QString& why)
{
    return {{"ok", false}, {"error", why}};
}

VCScanWidgetPrivate* findScan()
{
    for (QWidget* top : QApplication::topLevelWidgets()) {
        if (VCScanWidget* const scan = top->findChild<VCScanWidget*>()) {
            return VCScanWidgetPrivate::of(scan);
        }
    }
    return nullptr;
}

// The strongest bin, and between its neighbours where a parabola through the three has its top.
QJsonObject peakOf(const ScanFrame& frame, double from, double to)
{
    qsizetype best = -1;
    for (qsizetype i = 0; i < frame.levels.size(); ++i) {
        const double frequency = frame.start + frame.step * double(i);
        if (frequency >= from && frequency <= to && std::isfinite(frame.levels[i]) &&
            (best < 0 || frame.levels[i] > frame.levels[best])) {
            best = i;
        }
    }
    if (best < 0) {
        return {};
    }
    double shift = 0;
    double level = double(frame.levels[best]);
    if (best > 0 && best + 1 < frame.levels.size()) {
        const double left = double(frame.levels[best - 1]);
        const double right = double(frame.levels[best + 1]);
        const double bend = left - 2 * level + right;
        if (bend < 0) {
            shift = 0.5 * (left - right) / bend;
            level -= 0.25 * (left - right) * shift;
        }
    }
    return {{"frequency", frame.start + frame.step * (double(best) + shift)}, {"level", level}};
}

QJsonObject traceOf(const ScanFrame& frame)
{
    return {{"start", frame.start},
            {"step", frame.step},
            {"count", double(frame.levels.size())},
            {"sequence", double(frame.sequence)},
            {"time", double(frame.time)},
            {"resolutionBandwidth", frame.resolutionBandwidth}};
}

QJsonObject channelOf(const ScanChannel& channel)
{
    return {{"visible", channel.visible},
            {"frequency", channel.frequency},
            {"center", channel.center},
            {"bandwidth", channel.bandwidth},
            {"color", channel.color.name()},
            {"text", channel.text},
            {"hasThreshold", channel.hasThreshold},
            {"threshold", channel.thresholdLevel},
            {"thresholdLine", channel.thresholdLine}};
}

QJsonObject placesOf(const SpectrumCanvas& canvas)
{
    const ScanMapping mapping = canvas.mapping();
    if (!mapping.isValid()) {
        return {};
    }
    const ScanChannel& channel = canvas.scene.channel;
    return {{"width", canvas.width()},
            {"height", canvas.height()},
            {"frequency", mapping.x(channel.frequency)},
            {"lowerEdge", mapping.x(channel.center - channel.bandwidth / 2)},
            {"upperEdge", mapping.x(channel.center + channel.bandwidth / 2)},
            {"threshold", mapping.y(channel.thresholdLine)}};
}

// Paints in place of the canvas's own delivery, so that the clock is read right after the picture
// is made.
class PaintClock : public QObject
{
public:
    explicit PaintClock(SpectrumCanvas* canvas) : m_canvas(canvas) { canvas->installEventFilter(this); }

    QJsonArray ages;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() != QEvent::Paint) {
            return false;
        }
        watched->event(event);
        using namespace std::chrono;
        const qint64 now = duration_cast<microseconds>(system_clock::now().time_since_epoch()).count();
        const ScanFrame* const trace = m_canvas->scene.trace;
        if (trace != nullptr && trace->sequence != m_sequence) {
            m_sequence = trace->sequence;
            ages.append(double(now - trace->time) / 1000.0);
        }
        return true;
    }

private:
    SpectrumCanvas* m_canvas;
    quint64 m_sequence = 0;
};

QPointer<PaintClock> clockOfPaints;

}  // namespace

QJsonObject PilotScan::facts(const QJsonObject& command)
{
    const VCScanWidgetPrivate* const scan = findScan();
    if (scan == nullptr) {
        return refusal("there is no scan");
    }
    const ScanScene& scene = scan->spectrum->scene;
    QJsonObject answer{
        {"ok", true},
        {"visible", scan->widget->isVisible()},
        {"view", QJsonArray{scene.view.start, scene.view.stop}},
        {"levels", QJsonArray{double(scene.levelMinimum), double(scene.levelMaximum)}},
        {"channel", channelOf(scene.channel)},
        {"places", placesOf(*scan->spectrum)},
        {"stale", scene.stale},
        {"message", scene.message},
        {"stream", int(scan->stream.state())},
        {"received", double(scan->stream.received())},
        {"skipped", double(scan->stream.skipped())},
        {"dropped", double(scan->stream.dropped())},
        {"paints", scan->spectrum->paints()},
        {"status", scan->widget->findChild<QWidget*>("scanStatus")->property("text").toString()},
        {"accessible", scan->widget->accessibleDescription()}};
    if (scene.trace != nullptr) {
        answer["trace"] = traceOf(*scene.trace);
        answer["peak"] =
            peakOf(*scene.trace, command["from"].toDouble(-HUGE_VAL), command["to"].toDouble(HUGE_VAL));
    }
    return answer;
}

QJsonObject PilotScan::paintAges(const QJsonObject& command)
{
    const VCScanWidgetPrivate* const scan = findScan();
    if (scan == nullptr) {
        return refusal("there is no scan");
    }
    QJsonArray ages;
    if (clockOfPaints) {
        ages = clockOfPaints->ages;
        delete clockOfPaints;
    }
    if (command["how"].toString() == "begin") {
        clockOfPaints = new PaintClock(scan->spectrum);
        clockOfPaints->setParent(scan->spectrum);
    }
    return {{"ok", true}, {"ages", ages}};
}
