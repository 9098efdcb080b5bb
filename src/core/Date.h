// A moment on the wall clock: seconds since the reference date (2001-01-01 UTC).
#pragma once

#include <compare>

namespace orvane {

struct Date {
    double secondsSinceReferenceDate = 0;

    // The earliest representable moment; windows never focused carry it.
    static constexpr Date distantPast() { return Date{-63114076800.0}; }

    friend auto operator<=>(const Date&, const Date&) = default;
};

}  // namespace orvane
