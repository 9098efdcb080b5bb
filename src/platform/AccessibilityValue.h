// A loosely typed attribute value as the Accessibility API answers it: a geometry value, a string,
// a number, a boolean, an element or an array of values.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "core/Geometry.h"
#include "platform/AccessibilityElementObject.h"

namespace orvane {

// Error codes of the Accessibility API; 0 is success.
using AccessibilityError = std::int32_t;
namespace accessibility_error {
inline constexpr AccessibilityError success = 0;
inline constexpr AccessibilityError failure = -25200;
inline constexpr AccessibilityError illegalArgument = -25201;
inline constexpr AccessibilityError invalidElement = -25202;
inline constexpr AccessibilityError invalidObserver = -25203;
inline constexpr AccessibilityError cannotComplete = -25204;
inline constexpr AccessibilityError attributeUnsupported = -25205;
inline constexpr AccessibilityError actionUnsupported = -25206;
inline constexpr AccessibilityError notificationUnsupported = -25207;
inline constexpr AccessibilityError notImplemented = -25208;
inline constexpr AccessibilityError notificationAlreadyRegistered = -25209;
inline constexpr AccessibilityError notificationNotRegistered = -25210;
inline constexpr AccessibilityError apiDisabled = -25211;
inline constexpr AccessibilityError noValue = -25212;
}  // namespace accessibility_error

// The kinds of geometry value (`AXValueType`).
enum class AccessibilityGeometryType : std::uint32_t {
    illegal = 0,
    point = 1,
    size = 2,
    rect = 3,
    range = 4,
};

// A boxed geometry value: its kind and up to four numbers (x, y, width, height).
struct AccessibilityGeometryValue {
    AccessibilityGeometryType type = AccessibilityGeometryType::illegal;
    Rect storage;

    static AccessibilityGeometryValue ofPoint(Point point) {
        return {AccessibilityGeometryType::point, Rect{point, {}}};
    }
    static AccessibilityGeometryValue ofSize(Size size) {
        return {AccessibilityGeometryType::size, Rect{{}, size}};
    }

    // The point inside, when this is a point value (`AXValueGetValue` with the point type).
    std::optional<Point> pointValue() const {
        if (type != AccessibilityGeometryType::point) {
            return std::nullopt;
        }
        return storage.origin;
    }
    // The size inside, when this is a size value.
    std::optional<Size> sizeValue() const {
        if (type != AccessibilityGeometryType::size) {
            return std::nullopt;
        }
        return storage.size;
    }
};

struct AccessibilityValue {
    using Array = std::vector<AccessibilityValue>;
    std::variant<AccessibilityGeometryValue, std::string, double, bool, AccessibilityElementHandle,
                 Array>
        storage;
};

}  // namespace orvane
