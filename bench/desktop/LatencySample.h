// Times of one measure over a benchmark's trials, told as median and 90th percentile, and the
// milliseconds of a duration.
#pragma once

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <string>
#include <vector>

namespace orvane::bench {

struct LatencySample {
    std::vector<double> values;

    // "median p90", or dashes when nothing was measured.
    std::string summary() const {
        if (values.empty()) {
            return "      -      -";
        }
        auto sorted = values;
        std::sort(sorted.begin(), sorted.end());
        char text[64];
        std::snprintf(text, sizeof text, "%7.2f %6.2f", sorted[sorted.size() / 2],
                      sorted[std::min(sorted.size() - 1, sorted.size() * 9 / 10)]);
        return text;
    }
    double median() const {
        auto sorted = values;
        std::sort(sorted.begin(), sorted.end());
        return sorted[sorted.size() / 2];
    }
};

inline double milliseconds(std::chrono::steady_clock::duration duration) {
    return std::chrono::duration<double, std::milli>(duration).count();
}

}  // namespace orvane::bench
