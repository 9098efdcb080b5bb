// A loosely typed value as the platform's collections hold them (numbers, texts, Booleans, arrays,
// dictionaries), so that parsing rules for missing keys and wrong types are real code.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "core/Geometry.h"

namespace orvane {

struct PropertyListValue {
    using Array = std::vector<PropertyListValue>;
    // Keys are values too: a dictionary need not have text keys.
    using Dictionary = std::vector<std::pair<PropertyListValue, PropertyListValue>>;

    std::variant<std::int64_t, double, bool, std::string, Array, Dictionary> storage;

    PropertyListValue() : storage(std::int64_t{0}) {}
    PropertyListValue(std::int64_t value) : storage(value) {}
    PropertyListValue(int value) : storage(std::int64_t{value}) {}
    PropertyListValue(std::uint32_t value) : storage(std::int64_t{value}) {}
    PropertyListValue(double value) : storage(value) {}
    PropertyListValue(bool value) : storage(value) {}
    PropertyListValue(std::string value) : storage(std::move(value)) {}
    PropertyListValue(const char* value) : storage(std::string(value)) {}
    PropertyListValue(Array value) : storage(std::move(value)) {}
    PropertyListValue(Dictionary value) : storage(std::move(value)) {}

    bool isNumber() const {
        return std::holds_alternative<std::int64_t>(storage) ||
               std::holds_alternative<double>(storage);
    }
    const std::string* text() const { return std::get_if<std::string>(&storage); }
    const Array* array() const { return std::get_if<Array>(&storage); }
    const Dictionary* dictionary() const { return std::get_if<Dictionary>(&storage); }

    // A number whose value the integer type holds exactly; nothing for other values.
    template <typename Integer>
    std::optional<Integer> exactInteger() const {
        if (const auto* integer = std::get_if<std::int64_t>(&storage)) {
            if (std::in_range<Integer>(*integer)) {
                return static_cast<Integer>(*integer);
            }
            return std::nullopt;
        }
        if (const auto* number = std::get_if<double>(&storage)) {
            const auto truncated = static_cast<long double>(static_cast<std::int64_t>(*number));
            if (static_cast<long double>(*number) == truncated &&
                std::in_range<Integer>(static_cast<std::int64_t>(*number))) {
                return static_cast<Integer>(*number);
            }
        }
        return std::nullopt;
    }
    // Any number as a 64-bit float.
    std::optional<double> floatingPoint() const {
        if (const auto* integer = std::get_if<std::int64_t>(&storage)) {
            return static_cast<double>(*integer);
        }
        if (const auto* number = std::get_if<double>(&storage)) {
            return *number;
        }
        return std::nullopt;
    }

    // The value under a text key of a dictionary; nothing when this is no dictionary or lacks it.
    const PropertyListValue* find(std::string_view key) const {
        const auto* entries = dictionary();
        if (entries == nullptr) {
            return nullptr;
        }
        for (const auto& [entryKey, value] : *entries) {
            if (const auto* name = entryKey.text(); name != nullptr && *name == key) {
                return &value;
            }
        }
        return nullptr;
    }
};

// The inverse of a rectangle's dictionary representation (keys "X", "Y", "Width", "Height");
// nothing when any of them is missing or no number.
inline std::optional<Rect> rectFromDictionaryRepresentation(const PropertyListValue& value) {
    const auto* x = value.find("X");
    const auto* y = value.find("Y");
    const auto* width = value.find("Width");
    const auto* height = value.find("Height");
    if (x == nullptr || y == nullptr || width == nullptr || height == nullptr) {
        return std::nullopt;
    }
    auto xValue = x->floatingPoint();
    auto yValue = y->floatingPoint();
    auto widthValue = width->floatingPoint();
    auto heightValue = height->floatingPoint();
    if (!xValue || !yValue || !widthValue || !heightValue) {
        return std::nullopt;
    }
    return Rect{{*xValue, *yValue}, {*widthValue, *heightValue}};
}

inline PropertyListValue dictionaryRepresentation(const Rect& rect) {
    return PropertyListValue::Dictionary{{"X", rect.origin.x},
                                         {"Y", rect.origin.y},
                                         {"Width", rect.size.width},
                                         {"Height", rect.size.height}};
}

}  // namespace orvane
