#pragma once

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>

// Levels in dB as powers and back, for means: adding logarithms would show noise 2.5 dB too low.
// Polynomials in place of the library's functions: right within 0.001 dB, without branches, so that
// compilers turn loops over them into vector code. Levels count from -250 to 250 dB.
namespace LevelPower {

constexpr float lowest = -250;
constexpr float highest = 250;

// A level is a number; what is not finite marks an empty bin.
inline bool isLevel(float level)
{
    std::uint32_t bits;
    std::memcpy(&bits, &level, sizeof bits);
    return (bits & 0x7f800000u) != 0x7f800000u;
}

// Power of a level in dB; it must be finite.
inline float power(float level)
{
    const float inside = level < lowest ? lowest : (level > highest ? highest : level);
    const float exponent = inside * 0.33219280948873623f;  // log2(10) / 10
    const int whole = static_cast<int>(exponent + 128.0f) - 128;
    const float part = exponent - static_cast<float>(whole);
    // 2 to the power of part, 0 to 1
    const float mantissa =
        0.99999994f +
        part * (0.69315308f +
                part * (0.24015361f + part * (0.055826318f + part * (0.0089893397f + part * 0.0018775767f))));
    const std::uint32_t bits = static_cast<std::uint32_t>(whole + 127) << 23;
    float scale;
    std::memcpy(&scale, &bits, sizeof scale);
    return mantissa * scale;
}

// Level in dB of a power above 0.
inline float level(float power)
{
    return 10 * std::log10(power);
}

// The same as a polynomial, for whole traces.
inline float fastLevel(float power)
{
    std::uint32_t bits;
    std::memcpy(&bits, &power, sizeof bits);
    const int whole = static_cast<int>(bits >> 23) - 127;
    bits = (bits & 0x007fffffu) | 0x3f800000u;
    float mantissa;
    std::memcpy(&mantissa, &bits, sizeof mantissa);
    // Logarithm from the square root of two around one: (m - s) / (m + s) makes the series short.
    const float ratio = (mantissa - 1.41421356f) / (mantissa + 1.41421356f);
    const float square = ratio * ratio;
    const float logarithm =
        0.5f +
        ratio * (2.8853900818f + square * (0.9617966939f + square * (0.5770780164f + square * 0.41219859f)));
    return 3.0102999566f * (static_cast<float>(whole) + logarithm);
}

constexpr float none = std::numeric_limits<float>::quiet_NaN();

}  // namespace LevelPower
