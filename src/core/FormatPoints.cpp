#include "core/FormatPoints.h"

#include <cmath>
#include <cstdio>

namespace orvane {

std::string formatPoints(double value) {
    const double tenths = std::round(value * 10);
    if (tenths == 0) {
        return "0";  // never "-0"
    }
    char buffer[32];
    if (std::fmod(tenths, 10) == 0) {
        std::snprintf(buffer, sizeof buffer, "%.0f", tenths / 10);
    } else {
        std::snprintf(buffer, sizeof buffer, "%.1f", tenths / 10);
    }
    return buffer;
}

}  // namespace orvane
