#pragma once

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <vector>

// What the measuring programs of this folder share: figures and repeated timing.
namespace Measure {

// One figure, as one line of JSON. `sense` is "max", "min" or "info"; `bound` means nothing for the last.
inline void Print(const char* name, double value, const char* unit, double bound, const char* sense)
{
    std::printf(R"({"name": "%s", "value": %.6g, "unit": "%s", "bound": %.6g, "sense": "%s"})", name, value,
                unit, bound, sense);
    std::printf("\n");
    std::fflush(stdout);
}

// Nanoseconds per call of a loop over `calls`.
template <class Loop>
double NanosecondsPerCall(int calls, Loop loop)
{
    const auto start = std::chrono::steady_clock::now();
    loop();
    const std::chrono::duration<double, std::nano> taken = std::chrono::steady_clock::now() - start;
    return taken.count() / calls;
}

inline double Median(std::vector<double> values)
{
    std::nth_element(values.begin(), values.begin() + std::ptrdiff_t(values.size() / 2), values.end());
    return values[values.size() / 2];
}

inline double Best(const std::vector<double>& values)
{
    return *std::min_element(values.begin(), values.end());
}

}  // namespace Measure
