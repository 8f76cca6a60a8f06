#include "spectrum/scanstate.h"

#include <QCoreApplication>

#include "spectrum/scantext.h"

namespace {

constexpr double pauseSeconds = 2;        // a live stream may pause that long
constexpr double reconnectSeconds = 0.5;  // a change of the stream is no loss
constexpr double dropShownSeconds = 3;    // long enough to be read

QString text(const char* source)
{
    return QCoreApplication::translate("ScanState", source);
}

// A sentence, whoever wrote it.
QString sentence(const QString& words)
{
    return words.isEmpty() || words.endsWith(QLatin1Char('.')) ? words : words + QLatin1Char('.');
}

QString whyNothing(const ScanState::Facts& facts)
{
    if (facts.stream == ScanStream::State::Live)
        return text("The driver is connected, no spectrum has come yet.");
    if (!facts.failure.isEmpty())
        return text("No spectrum: %1 Trying again.").arg(sentence(facts.failure));
    if (facts.stream == ScanStream::State::Stopped)
        return text("No spectrum.");
    return text("Connecting to %1 ...").arg(facts.address);
}

QString whyOld(const ScanState::Facts& facts)
{
    const QString age = ScanText::age(facts.traceAge);
    if (facts.stream == ScanStream::State::Live)
        return text("No new spectrum for %1.").arg(age);
    if (facts.failure.isEmpty())
        return text("No spectrum for %1. Connecting to %2 ...").arg(age, facts.address);
    return text("No spectrum for %1: %2 Trying again.").arg(age, sentence(facts.failure));
}

}  // namespace

ScanState ScanState::of(const Facts& facts)
{
    ScanState state;
    const bool live = facts.stream == ScanStream::State::Live;
    const QString dropped =
        facts.dropAge >= 0 && facts.dropAge < dropShownSeconds
            ? text("A spectrum was dropped: %1 (%2 so far).").arg(facts.dropReason).arg(facts.dropped)
            : QString();
    if (!facts.hasTrace) {
        state.stale = true;
        state.message = live && !dropped.isEmpty() ? dropped : whyNothing(facts);
    } else if (facts.traceAge > (live && facts.delivered ? pauseSeconds : reconnectSeconds)) {
        state.stale = true;
        state.message = whyOld(facts);
        if (live && !dropped.isEmpty())
            state.message += QLatin1Char(' ') + dropped;
    } else {
        state.message = dropped.isEmpty() ? facts.rangeProblem : dropped;
    }
    return state;
}
