// The small status capsule of a permission row: a symbol and a word in green or orange on a tinted
// capsule with an outline.
#pragma once

#include <string_view>

namespace orvane {

enum class BadgeColor { green, orange };

struct PermissionStatusBadge {
    bool isGranted = false;

    // The platform's symbol name, such as "checkmark.circle.fill".
    std::string_view symbol() const;
    std::string_view text() const;
    BadgeColor color() const { return isGranted ? BadgeColor::green : BadgeColor::orange; }

    static constexpr double fillOpacity = 0.18;
    static constexpr double outlineOpacity = 0.45;
    static constexpr double outlineWidth = 1;
    static constexpr double horizontalPadding = 8;
    static constexpr double verticalPadding = 3;
    static constexpr double itemSpacing = 4;

    friend bool operator==(const PermissionStatusBadge&, const PermissionStatusBadge&) = default;
};

}  // namespace orvane
