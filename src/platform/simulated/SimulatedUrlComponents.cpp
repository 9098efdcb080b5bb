#include "platform/simulated/SimulatedUrlComponents.h"

#include <string_view>

namespace orvane {

namespace {

constexpr std::string_view unreservedPunctuation = "-._~";
constexpr std::string_view pathAllowedPunctuation = "!$&'()*+,;=:@/";
// The query's allowed set without "&", "=" and "+", which would otherwise split or alter an item.
constexpr std::string_view queryItemAllowedPunctuation = "!$'()*,;:@/?";

bool isAsciiAlphanumeric(char character) {
    return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z') ||
           (character >= '0' && character <= '9');
}

bool isAllowed(char character, std::string_view punctuation) {
    return isAsciiAlphanumeric(character) ||
           unreservedPunctuation.find(character) != std::string_view::npos ||
           punctuation.find(character) != std::string_view::npos;
}

std::string percentEncoded(std::string_view text, std::string_view punctuation) {
    constexpr std::string_view hexDigits = "0123456789ABCDEF";
    std::string encoded;
    for (const char character : text) {
        if (isAllowed(character, punctuation)) {
            encoded += character;
            continue;
        }
        const auto byte = static_cast<unsigned char>(character);
        encoded += '%';
        encoded += hexDigits[byte >> 4];
        encoded += hexDigits[byte & 0x0F];
    }
    return encoded;
}

int hexValue(char digit) {
    if (digit >= '0' && digit <= '9') {
        return digit - '0';
    }
    if (digit >= 'a' && digit <= 'f') {
        return digit - 'a' + 10;
    }
    if (digit >= 'A' && digit <= 'F') {
        return digit - 'A' + 10;
    }
    return -1;
}

// A "%" without two hexadecimal digits after it stays as it is.
std::string percentDecoded(std::string_view text) {
    std::string decoded;
    for (std::size_t index = 0; index < text.size(); ++index) {
        if (text[index] == '%' && index + 2 < text.size() && hexValue(text[index + 1]) >= 0 &&
            hexValue(text[index + 2]) >= 0) {
            decoded +=
                static_cast<char>(hexValue(text[index + 1]) * 16 + hexValue(text[index + 2]));
            index += 2;
        } else {
            decoded += text[index];
        }
    }
    return decoded;
}

bool isValidScheme(std::string_view scheme) {
    if (scheme.empty() || !isAsciiAlphanumeric(scheme.front()) ||
        (scheme.front() >= '0' && scheme.front() <= '9')) {
        return false;
    }
    for (const char character : scheme) {
        if (!isAsciiAlphanumeric(character) && character != '+' && character != '-' &&
            character != '.') {
            return false;
        }
    }
    return true;
}

}  // namespace

std::optional<std::string> SimulatedUrlComponents::url(
    const std::string& scheme, const std::string& path,
    const std::vector<UrlQueryItem>& queryItems) const {
    if (!isValidScheme(scheme) || path.starts_with("//")) {
        return std::nullopt;
    }
    std::string result = scheme + ":" + percentEncoded(path, pathAllowedPunctuation);
    for (std::size_t index = 0; index < queryItems.size(); ++index) {
        const auto& item = queryItems[index];
        result += index == 0 ? '?' : '&';
        result += percentEncoded(item.name, queryItemAllowedPunctuation);
        if (item.value) {
            result += '=' + percentEncoded(*item.value, queryItemAllowedPunctuation);
        }
    }
    return result;
}

std::vector<UrlQueryItem> SimulatedUrlComponents::queryItems(const std::string& url) {
    std::vector<UrlQueryItem> items;
    const auto queryStart = url.find('?');
    if (queryStart == std::string::npos) {
        return items;
    }
    std::string_view query = std::string_view(url).substr(queryStart + 1);
    while (true) {
        const auto end = query.find('&');
        const auto item = query.substr(0, end);
        const auto equals = item.find('=');
        if (equals == std::string_view::npos) {
            items.push_back({percentDecoded(item), std::nullopt});
        } else {
            items.push_back(
                {percentDecoded(item.substr(0, equals)), percentDecoded(item.substr(equals + 1))});
        }
        if (end == std::string_view::npos) {
            return items;
        }
        query.remove_prefix(end + 1);
    }
}

}  // namespace orvane
