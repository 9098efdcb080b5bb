// Reading the window properties that clients set themselves, and so may set to anything: titles,
// window classes and icons. Pure functions over the property's bytes, safe for any input.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace orvane {

class X11PropertyParsing {
  public:
    static constexpr std::size_t longestText = 1024;
    static constexpr std::uint32_t largestIconSide = 1024;

    // Text up to its first zero byte, cut to `longestText` bytes without splitting a UTF-8
    // sequence.
    static std::string boundedText(const std::vector<std::uint8_t>& bytes);
    // The class part of WM_CLASS ("instance\0Class\0"); empty when there is none.
    static std::string windowClass(const std::vector<std::uint8_t>& bytes);

    struct Icon {
        std::uint32_t width = 0;
        std::uint32_t height = 0;
        // ARGB, row by row.
        std::vector<std::uint32_t> pixels;
    };
    // The best icon of a _NET_WM_ICON list (width, height, pixels, repeated) for cards of about
    // `preferredSide` pixels: the smallest at least that large, else the largest. Entries after a
    // malformed one are ignored; nothing when the first is malformed.
    static std::optional<Icon> bestIcon(const std::vector<std::uint32_t>& values,
                                        std::uint32_t preferredSide);
};

}  // namespace orvane
