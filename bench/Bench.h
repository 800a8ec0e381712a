// What the benches share: a work is timed at 1, 2 and 4 times its size, beside a yardstick that does the same
// with the library's means, and shown as one row of a table.
#pragma once

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <functional>

// Does the whole work at a scale and gives the number of operations in it.
using BenchWork = std::function<long(int scale)>;

inline double BenchOnce(const BenchWork &work, int scale) {
    auto start = std::chrono::steady_clock::now();
    long count = work(scale);
    std::chrono::duration<double, std::nano> spent = std::chrono::steady_clock::now() - start;
    return spent.count() / static_cast<double>(std::max(count, 1L));
}

// Nanoseconds an operation takes at a scale, measured in its own way.
using BenchMeasure = std::function<double(int scale)>;

// The best of the rounds, which take turns so that both sides see the same machine.
inline void BenchBoth(const BenchMeasure &ours, const BenchMeasure &yardstick, int scale, double best[2]) {
    best[0] = best[1] = 1e18;
    for (int round = 0; round < 7; round++) {
        best[0] = std::min(best[0], ours(scale));
        best[1] = std::min(best[1], yardstick(scale));
    }
}

inline void BenchHead() {
    printf("%-44s %12s %12s %7s   %s\n", "what", "ours", "yardstick", "ratio",
           "an operation at 1x, 2x, 4x (ours | yardstick)");
}

inline void BenchMeasuredRow(const char *what, const BenchMeasure &ours, const BenchMeasure &yardstick) {
    double best[3][2];
    for (int i = 0; i < 3; i++) BenchBoth(ours, yardstick, 1 << i, best[i]);
    printf("%-44s %9.1f ns %9.1f ns %7.2f  ", what, best[0][0], best[0][1], best[0][0] / best[0][1]);
    for (int side = 0; side < 2; side++) {
        for (auto &figures : best) printf(" %.1f", figures[side]);
        printf(side ? " ns\n" : " |");
    }
    fflush(stdout);
}

inline void BenchRow(const char *what, const BenchWork &ours, const BenchWork &yardstick) {
    BenchMeasuredRow(
        what, [&](int scale) { return BenchOnce(ours, scale); },
        [&](int scale) { return BenchOnce(yardstick, scale); });
}
