#pragma once

#include <QString>
#include <cstdio>
#include <cstdlib>

// The figures of the link. Each function checks what it measures and ends the program when that is
// wrong: a figure of a wrong result is worth nothing.
namespace Bench {

enum class Sense
{
    Max,
    Min,
    Info
};

inline void print(const char* name, double value, const char* unit, double bound, Sense sense)
{
    static const char* const words[] = {"max", "min", "info"};
    std::printf("{\"name\": \"%s\", \"value\": %.6g, \"unit\": \"%s\", \"bound\": %g, \"sense\": \"%s\"}\n",
                name, value, unit, bound, words[int(sense)]);
    std::fflush(stdout);
}

inline void require(bool right, const char* what)
{
    if (right)
        return;
    std::fprintf(stderr, "bench_link: wrong result: %s\n", what);
    std::exit(1);
}

void measureCodec();
void measureUpdates();
void measureSnapshots();
void measureStoppedReader(int seconds);

}  // namespace Bench
