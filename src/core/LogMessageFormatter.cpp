#include "core/LogMessageFormatter.h"

#include <cmath>
#include <cstdio>
#include <optional>

namespace orvane {

namespace {

enum class LengthModifier { characterWidth, shortWidth, plain, longWidth };

// The integer an argument stands for; nothing for a number no 64-bit integer holds (NaN, an
// infinity, a magnitude of 2^63 or more), whose conversion would be undefined.
std::optional<std::int64_t> asSigned(const LogArgument::Storage& value) {
    if (const auto* integer = std::get_if<std::int64_t>(&value)) {
        return *integer;
    }
    if (const auto* integer = std::get_if<std::uint64_t>(&value)) {
        return static_cast<std::int64_t>(*integer);
    }
    if (const auto* number = std::get_if<double>(&value)) {
        constexpr double limit = 9223372036854775808.0;  // 2^63
        if (!std::isfinite(*number) || *number >= limit || *number < -limit) {
            return std::nullopt;
        }
        return static_cast<std::int64_t>(*number);
    }
    if (const auto* flag = std::get_if<bool>(&value)) {
        return *flag ? 1 : 0;
    }
    return 0;
}

// Narrowing to the width the conversion names reproduces what the platform's printf would show.
std::string renderSigned(std::int64_t value, LengthModifier length) {
    switch (length) {
        case LengthModifier::characterWidth:
            return std::to_string(static_cast<signed char>(value));
        case LengthModifier::shortWidth:
            return std::to_string(static_cast<short>(value));
        case LengthModifier::plain:
            return std::to_string(static_cast<int>(value));
        case LengthModifier::longWidth:
            return std::to_string(value);
    }
    return std::to_string(value);
}

std::string renderUnsigned(std::uint64_t value, LengthModifier length) {
    switch (length) {
        case LengthModifier::characterWidth:
            return std::to_string(static_cast<unsigned char>(value));
        case LengthModifier::shortWidth:
            return std::to_string(static_cast<unsigned short>(value));
        case LengthModifier::plain:
            return std::to_string(static_cast<unsigned int>(value));
        case LengthModifier::longWidth:
            return std::to_string(value);
    }
    return std::to_string(value);
}

std::string renderNumber(double value) {
    char buffer[64];
    std::snprintf(buffer, sizeof buffer, "%g", value);
    return buffer;
}

std::string renderText(const LogArgument::Storage& value) {
    if (const auto* text = std::get_if<std::string>(&value)) {
        return *text;
    }
    if (const auto* flag = std::get_if<bool>(&value)) {
        return *flag ? "true" : "false";
    }
    if (const auto* number = std::get_if<double>(&value)) {
        return renderNumber(*number);
    }
    if (const auto* integer = std::get_if<std::uint64_t>(&value)) {
        return std::to_string(*integer);
    }
    return std::to_string(asSigned(value).value_or(0));
}

bool annotationHasBool(std::string_view annotation) {
    std::size_t start = 0;
    while (start <= annotation.size()) {
        auto end = annotation.find(',', start);
        if (end == std::string_view::npos) {
            end = annotation.size();
        }
        auto word = annotation.substr(start, end - start);
        while (!word.empty() && word.front() == ' ') {
            word.remove_prefix(1);
        }
        while (!word.empty() && word.back() == ' ') {
            word.remove_suffix(1);
        }
        if (word == "bool") {
            return true;
        }
        start = end + 1;
    }
    return false;
}

}  // namespace

std::string LogMessageFormatter::format(std::string_view formatString,
                                        std::span<const LogArgument> arguments) {
    std::string result;
    result.reserve(formatString.size() + 16);
    std::size_t nextArgument = 0;
    std::size_t position = 0;
    while (position < formatString.size()) {
        char character = formatString[position];
        if (character != '%') {
            result.push_back(character);
            ++position;
            continue;
        }
        const std::size_t specifierStart = position;
        ++position;
        if (position < formatString.size() && formatString[position] == '%') {
            result.push_back('%');
            ++position;
            continue;
        }
        std::string_view annotation;
        if (position < formatString.size() && formatString[position] == '{') {
            auto close = formatString.find('}', position);
            if (close == std::string_view::npos) {
                result.append(formatString.substr(specifierStart));
                break;
            }
            annotation = formatString.substr(position + 1, close - position - 1);
            position = close + 1;
        }
        LengthModifier length = LengthModifier::plain;
        if (formatString.substr(position, 2) == "hh") {
            length = LengthModifier::characterWidth;
            position += 2;
        } else if (formatString.substr(position, 2) == "ll") {
            length = LengthModifier::longWidth;
            position += 2;
        } else if (position < formatString.size() &&
                   (formatString[position] == 'h' || formatString[position] == 'l' ||
                    formatString[position] == 'z')) {
            length = formatString[position] == 'h' ? LengthModifier::shortWidth
                                                   : LengthModifier::longWidth;
            ++position;
        }
        if (position >= formatString.size()) {
            result.append(formatString.substr(specifierStart));
            break;
        }
        const char conversion = formatString[position++];
        const bool known = conversion == 'd' || conversion == 'i' || conversion == 'u' ||
                           conversion == 's' || conversion == 'f' || conversion == 'g' ||
                           conversion == '@' || conversion == 'x';
        if (!known) {
            result.append(formatString.substr(specifierStart, position - specifierStart));
            continue;
        }
        if (nextArgument >= arguments.size()) {
            result.append("<missing>");
            continue;
        }
        const auto& value = arguments[nextArgument++].storage();
        const bool integral =
            conversion == 'd' || conversion == 'i' || conversion == 'u' || conversion == 'x';
        std::int64_t integer = 0;
        if (integral) {
            const auto converted = asSigned(value);
            if (!converted) {
                result.append(renderText(value));
                continue;
            }
            integer = *converted;
        }
        switch (conversion) {
            case 'd':
            case 'i':
                if (annotationHasBool(annotation)) {
                    result.append(integer != 0 ? "true" : "false");
                } else {
                    result.append(renderSigned(integer, length));
                }
                break;
            case 'u':
                result.append(renderUnsigned(static_cast<std::uint64_t>(integer), length));
                break;
            case 'x': {
                char buffer[32];
                std::snprintf(buffer, sizeof buffer, "%llx",
                              static_cast<unsigned long long>(integer));
                result.append(buffer);
                break;
            }
            case 'f':
            case 'g':
                if (const auto* number = std::get_if<double>(&value)) {
                    result.append(renderNumber(*number));
                } else {
                    result.append(renderText(value));
                }
                break;
            default:
                result.append(renderText(value));
                break;
        }
    }
    return result;
}

}  // namespace orvane
