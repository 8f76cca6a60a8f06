#include "receiver/sources/modulators.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string>
#include <utility>
#include <vector>

#include "receiver/dsp/fourier.h"
#include "receiver/sources/noisetable.h"
#include "receiver/sources/scene.h"

namespace Receiver {

namespace {

constexpr double pi = 3.14159265358979323846;
constexpr std::size_t ssbLength = 1U << 15;  // samples until the voice repeats

// A turn is 2^32: adding wraps by itself.
quint32 turnStep(double hertz, double rate)
{
    return static_cast<quint32>(static_cast<qint64>(std::llround(hertz / rate * 4294967296.0)));
}

// The unit circle in 8192 steps: the phase error lies 75 dB below the signal.
class Circle
{
public:
    static const Circle& instance()
    {
        static const Circle circle;
        return circle;
    }
    Sample at(quint32 turn) const { return m_points[turn >> 19]; }

private:
    Circle()
    {
        for (std::size_t i = 0; i < m_points.size(); ++i) {
            const double angle = 2 * pi * (double(i) + 0.5) / double(m_points.size());
            m_points[i] = Sample(float(std::cos(angle)), float(std::sin(angle)));
        }
    }
    std::array<Sample, 8192> m_points;
};

void normalise(std::vector<Sample>& samples)
{
    double power = 0;
    for (const Sample& sample : samples)
        power += double(std::norm(sample));
    const auto factor = float(std::sqrt(double(samples.size()) / power));
    for (Sample& sample : samples)
        sample *= factor;
}

// What somebody says or plays: a sum of many tones under 4 kHz, louder and quieter with the
// syllables. Repeats after its length, all of it fits whole times.
std::vector<float> programme(std::size_t length, double seconds, Random& random)
{
    Fourier inverse(int(length), Fourier::Backward);
    for (int bin = int(80 * seconds); bin < int(4000 * seconds); ++bin) {
        const double hertz = bin / seconds;
        const double slope = 1.0 / (1.0 + std::pow(hertz / 700.0, 2.0));
        inverse.input()[bin] = float(slope) * random.gaussian();
    }
    inverse.run();
    std::vector<float> audio(length);
    float peak = 0;
    for (std::size_t i = 0; i < length; ++i) {
        const double part = double(i) / double(length);
        const double syllables = 0.55 + 0.45 * std::sin(2 * pi * std::round(3.1 * seconds) * part) *
                                            std::sin(2 * pi * std::round(0.6 * seconds) * part);
        audio[i] = inverse.output()[i].real() * float(syllables);
        peak = std::max(peak, std::abs(audio[i]));
    }
    for (float& value : audio)
        value /= peak;
    return audio;
}

// Plays a table over and over.
class TableModulator : public Modulator
{
public:
    explicit TableModulator(std::vector<Sample> table) : m_table(std::move(table)) {}

    void render(qint64 first, int count, Sample* samples) override
    {
        const auto length = qint64(m_table.size());
        qint64 at = ((first % length) + length) % length;
        while (count > 0) {
            const int step = int(std::min<qint64>(count, length - at));
            std::copy_n(m_table.data() + at, step, samples);
            samples += step;
            count -= step;
            at = 0;
        }
    }

private:
    std::vector<Sample> m_table;
};

class FmModulator : public Modulator
{
public:
    // `pilot` in Hz, 0: none; it takes a tenth of the deviation.
    FmModulator(double rate, double deviation, double pilot, quint64 seed)
        : m_step(float(deviation / rate * 4294967296.0)),
          m_pilotStep(turnStep(pilot, rate)),
          m_pilot(pilot > 0 ? 0.1F : 0.0F),
          m_audioStep(audioRate / rate)
    {
        Random random(seed);
        m_audio = programme(audioLength, audioLength / audioRate, random);
    }

    void restart() override
    {
        m_turn = 0;
        m_pilotTurn = 0;
    }

    void render(qint64 first, int count, Sample* samples) override
    {
        const Circle& circle = Circle::instance();
        const double whole = double(audioLength);
        double at = std::fmod(double(first) * m_audioStep, whole);
        if (at < 0)
            at += whole;
        for (int i = 0; i < count; ++i) {
            const auto index = std::size_t(at);
            const float part = float(at - double(index));
            const float now = m_audio[index & (audioLength - 1)];
            const float next = m_audio[(index + 1) & (audioLength - 1)];
            float swing = now + part * (next - now);
            swing += m_pilot * circle.at(m_pilotTurn).real();
            m_pilotTurn += m_pilotStep;
            m_turn += static_cast<quint32>(static_cast<qint32>(swing * m_step));
            samples[i] = circle.at(m_turn);
            at += m_audioStep;
            if (at >= whole)
                at -= whole;
        }
    }

private:
    static constexpr std::size_t audioLength = 1U << 16;
    static constexpr double audioRate = 20e3;  // samples/s

    float m_step;  // of a turn's 2^32, at full swing
    quint32 m_pilotStep;
    float m_pilot;
    double m_audioStep;
    quint32 m_turn = 0;
    quint32 m_pilotTurn = 0;
    std::vector<float> m_audio;
};

class DriftModulator : public Modulator
{
public:
    DriftModulator(double rate, double drift) : m_rate(rate), m_swing(drift * seconds) {}

    void render(qint64 first, int count, Sample* samples) override
    {
        // The phase is the integral of drift * sin(2 pi t / seconds).
        for (int i = 0; i < count; ++i) {
            const double turns =
                m_swing * (1 - std::cos(2 * pi * double(first + i) / m_rate / seconds)) / (2 * pi);
            const double angle = 2 * pi * (turns - std::floor(turns));
            samples[i] = Sample(float(std::cos(angle)), float(std::sin(angle)));
        }
    }

private:
    static constexpr double seconds = 30;  // up, down and back
    double m_rate;
    double m_swing;
};

class HopModulator : public Modulator
{
public:
    HopModulator(double rate, quint64 seed) : m_seed(seed), m_dwell(qint64(rate * dwellSeconds))
    {
        for (int i = 0; i < hopChannels; ++i)
            m_steps[std::size_t(i)] = turnStep((i - (hopChannels - 1) / 2.0) * hopSpacing, rate);
    }

    void restart() override { m_turn = 0; }

    void render(qint64 first, int count, Sample* samples) override
    {
        const Circle& circle = Circle::instance();
        const qint64 offset = m_dwell * 1000;  // keeps the division's argument above 0
        for (int i = 0; i < count; ++i) {
            const auto dwell = quint64((first + i + offset) / m_dwell);
            if (dwell != m_now) {
                m_now = dwell;
                m_step = m_steps[Random::hash(m_seed, dwell) % hopChannels];
            }
            m_turn += m_step;
            samples[i] = circle.at(m_turn);
        }
    }

private:
    static constexpr int hopChannels = 8;
    static constexpr double hopSpacing = 25e3;  // Hz
    static constexpr double dwellSeconds = 10.24e-3;

    quint64 m_seed;
    qint64 m_dwell;  // samples
    std::array<quint32, hopChannels> m_steps{};
    quint64 m_now = 0;
    quint32 m_step = 0;
    quint32 m_turn = 0;
};

// On and off as `units` says ('1' is on), with soft edges, over and over.
std::vector<Sample> keyed(const std::string& units, int unitSamples, int edgeSamples)
{
    std::vector<Sample> table(units.size() * std::size_t(unitSamples));
    const auto length = qint64(table.size());
    const auto isOn = [&](qint64 sample) {
        return units[std::size_t(((sample + length) % length) / unitSamples)] == '1';
    };
    for (qint64 i = 0; i < length; ++i) {
        // A raised cosine falls out of averaging the switch with a sine-shaped weight.
        double on = 0;
        double all = 0;
        for (int k = -edgeSamples; k <= edgeSamples; ++k) {
            const double weight = std::cos(pi * k / (2.0 * edgeSamples + 2.0));
            all += weight;
            on += isOn(i + k) ? weight : 0.0;
        }
        table[std::size_t(i)] = Sample(float(on / all), 0.0F);
    }
    return table;
}

std::string morseUnits(const std::string& marks)
{
    std::string units;
    for (const char mark : marks)
        units += mark == '.' ? "10" : mark == '-' ? "1110" : mark == ' ' ? "00" : "0000";
    return units;
}

std::vector<Sample> cwTable()
{
    constexpr int unitSamples = 938;  // 48 ms: 25 words a minute
    return keyed(morseUnits("...- ...- ...- /"), unitSamples, 60);
}

std::vector<Sample> onOffTable()
{
    constexpr int unitSamples = 20;  // 0.5 ms
    constexpr quint64 code = 7;      // a remote control always sends its own
    Random random(code);
    std::string units;
    for (int bit = 0; bit < 64; ++bit)
        units += random.next() % 2 == 0 ? "100" : "110";
    units.append(300, '0');
    return keyed(units, unitSamples, 4);
}

std::vector<Sample> amTable()
{
    std::vector<Sample> table(1U << 15);
    for (std::size_t i = 0; i < table.size(); ++i) {
        const double turn = 2 * pi * double(i) / double(table.size());
        // 400 and 1000 Hz, to the next whole number of periods in the table.
        table[i] = Sample(float(1 + 0.35 * std::sin(671 * turn) + 0.35 * std::sin(1678 * turn)), 0.0F);
    }
    normalise(table);
    return table;
}

std::vector<Sample> ssbTable(double rate, quint64 seed)
{
    Random random(seed);
    constexpr std::size_t length = ssbLength;
    const double seconds = double(length) / rate;
    // One side of the voice, 300 to 3000 Hz, with its middle at 0.
    const std::vector<float> voice = programme(length, seconds, random);
    Fourier forward(int(length), Fourier::Forward);
    Fourier inverse(int(length), Fourier::Backward);
    for (std::size_t i = 0; i < length; ++i)
        forward.input()[i] = voice[i];
    forward.run();
    const int low = int(300 * seconds);
    const int high = int(3000 * seconds);
    const int middle = (low + high) / 2;
    for (int bin = low; bin < high; ++bin)
        inverse.input()[(bin - middle) & int(length - 1)] = forward.output()[bin];
    inverse.run();
    std::vector<Sample> table(inverse.output(), inverse.output() + length);
    normalise(table);
    return table;
}

std::vector<Sample> fskTable(double rate, quint64 seed)
{
    constexpr int symbols = 4096;
    constexpr double baud = 9600;
    constexpr double deviation = 2400;  // Hz
    Random random(seed);
    std::vector<double> bits(symbols);
    for (int i = 0; i < symbols; ++i)
        bits[std::size_t(i)] = i % 2 == 0 ? 1.0 : -1.0;  // as many of each: the phase closes
    for (std::size_t i = bits.size() - 1; i > 0; --i)
        std::swap(bits[i], bits[random.next() % (i + 1)]);
    const auto length = std::size_t(symbols * rate / baud);
    std::vector<Sample> table(length);
    double angle = 0;
    for (std::size_t i = 0; i < length; ++i) {
        const double at = double(i) * symbols / double(length);
        const auto now = std::size_t(at);
        // The frequency glides over from bit to bit, half way at the boundary.
        const double part = at - double(now);
        const double neighbour = bits[(part < 0.5 ? now + symbols - 1 : now + 1) % symbols];
        const double weight = 0.5 + 0.5 * std::sin(pi * std::min(part, 1 - part));
        const double swing = bits[now] * weight + neighbour * (1 - weight);
        angle += 2 * pi * deviation * swing / rate;
        table[i] = Sample(float(std::cos(angle)), float(std::sin(angle)));
    }
    return table;
}

std::vector<Sample> ofdmTable(quint64 seed)
{
    constexpr int size = 512;   // 1221 Hz between carriers
    constexpr int prefix = 64;  // samples
    constexpr int carriers = 328;
    constexpr int symbols = 200;
    Random random(seed);
    Fourier inverse(size, Fourier::Backward);
    std::vector<Sample> table;
    table.reserve(std::size_t(symbols) * (size + prefix));
    for (int symbol = 0; symbol < symbols; ++symbol) {
        for (int k = -carriers / 2; k <= carriers / 2; ++k) {
            const quint64 bits = random.next();
            const Sample point((bits & 1) != 0 ? 1.0F : -1.0F, (bits & 2) != 0 ? 1.0F : -1.0F);
            inverse.input()[k & (size - 1)] = k == 0 ? Sample() : point;
        }
        inverse.run();
        table.insert(table.end(), inverse.output() + size - prefix, inverse.output() + size);
        table.insert(table.end(), inverse.output(), inverse.output() + size);
    }
    normalise(table);
    return table;
}

// A swept pulse of 64 µs every millisecond.
std::vector<Sample> pulseTable()
{
    constexpr int length = 625;
    constexpr int pulse = 40;
    constexpr double sweep = 200e3 / 625e3;  // of the rate
    std::vector<Sample> table(length);
    for (int i = 0; i < pulse; ++i) {
        const double at = i + 0.5 - pulse / 2.0;
        const double angle = pi * sweep * at * at / pulse;
        const double edge = std::min(1.0, (std::min(i, pulse - 1 - i) + 0.5) / 4.0);
        const double size = std::pow(std::sin(pi / 2 * edge), 2);
        table[std::size_t(i)] = Sample(float(size * std::cos(angle)), float(size * std::sin(angle)));
    }
    return table;
}

// The tables of what is on for a part of the time only, and always the same.
const std::vector<Sample>& keyedTable(EmitterKind kind)
{
    static const std::vector<Sample> cw = cwTable();
    static const std::vector<Sample> onOff = onOffTable();
    static const std::vector<Sample> pulses = pulseTable();
    static const std::vector<Sample> none;
    switch (kind) {
        case EmitterKind::Cw:
            return cw;
        case EmitterKind::OnOffKeyed:
            return onOff;
        case EmitterKind::Pulsed:
            return pulses;
        default:
            return none;
    }
}

}  // namespace

int modulatorBins(EmitterKind kind)
{
    switch (kind) {
        case EmitterKind::Ofdm:
        case EmitterKind::Pulsed:
            return 2048;
        case EmitterKind::FmBroadcast:
        case EmitterKind::Hopping:
            return 1024;
        case EmitterKind::NarrowFm:
        case EmitterKind::OnOffKeyed:
        case EmitterKind::Fsk:
            return 128;
        default:
            return 64;
    }
}

std::unique_ptr<Modulator> makeModulator(const SceneEmitter& emitter, double rate, quint64 seed)
{
    switch (emitter.kind) {
        case EmitterKind::Carrier:
            return std::make_unique<TableModulator>(std::vector<Sample>{Sample(1.0F, 0.0F)});
        case EmitterKind::DriftingCarrier:
            return std::make_unique<DriftModulator>(rate, emitter.drift);
        case EmitterKind::FmBroadcast:
            return std::make_unique<FmModulator>(rate, 60e3, 19e3, seed);
        case EmitterKind::NarrowFm:
            return std::make_unique<FmModulator>(rate, 3.5e3, 0, seed);
        case EmitterKind::Am:
            return std::make_unique<TableModulator>(amTable());
        case EmitterKind::Ssb:
            return std::make_unique<TableModulator>(ssbTable(rate, seed));
        case EmitterKind::Fsk:
            return std::make_unique<TableModulator>(fskTable(rate, seed));
        case EmitterKind::Ofdm:
            return std::make_unique<TableModulator>(ofdmTable(seed));
        case EmitterKind::Hopping:
            return std::make_unique<HopModulator>(rate, seed);
        case EmitterKind::Cw:
        case EmitterKind::OnOffKeyed:
        case EmitterKind::Pulsed:
            return std::make_unique<TableModulator>(keyedTable(emitter.kind));
    }
    return nullptr;
}

void describeModulation(SceneEmitter* emitter)
{
    const double rate = sceneSampleRate * modulatorBins(emitter->kind) / Scene::blockBins;
    const std::vector<Sample>& keyed = keyedTable(emitter->kind);
    if (!keyed.empty()) {
        double power = 0;
        for (const Sample& sample : keyed)
            power += double(std::norm(sample));
        emitter->period = double(keyed.size()) / rate;
        emitter->duty = power / double(keyed.size());
    } else if (emitter->kind == EmitterKind::Ssb) {
        emitter->period = double(ssbLength) / rate;
    }
}

}  // namespace Receiver
