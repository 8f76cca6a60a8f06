#pragma once

#include <array>
#include <cmath>

// Levels in dB as powers, for means: adding logarithms would show noise 2.5 dB too low. A table in
// steps of 1/32 dB is right within 0.016 dB and far cheaper than the exponential of every bin.
class LevelPower
{
public:
    static float power(float level)
    {
        const float position = (level - lowest) * perDb;
        if (!(position > 0))
            return table().front();
        const int index = static_cast<int>(position + 0.5f);
        return index < size ? table()[static_cast<std::size_t>(index)] : table().back();
    }

    static float level(float power) { return 10 * std::log10(power); }

private:
    static constexpr float lowest = -250;
    static constexpr float perDb = 32;
    static constexpr int size = 500 * 32 + 1;  // up to 250 dB

    static const std::array<float, size>& table()
    {
        static const std::array<float, size> values = [] {
            std::array<float, size> result{};
            for (int i = 0; i < size; ++i)
                result[static_cast<std::size_t>(i)] =
                    std::pow(10.0f, (lowest + static_cast<float>(i) / perDb) / 10);
            return result;
        }();
        return values;
    }
};
