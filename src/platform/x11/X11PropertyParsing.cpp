#include "platform/x11/X11PropertyParsing.h"

#include <algorithm>

#include "core/Utf8Cut.h"

namespace orvane {

std::string X11PropertyParsing::boundedText(const std::vector<std::uint8_t>& bytes) {
    return cutToBytes(std::string(bytes.begin(), std::find(bytes.begin(), bytes.end(), 0)),
                      longestText);
}

std::string X11PropertyParsing::windowClass(const std::vector<std::uint8_t>& bytes) {
    const auto split = std::find(bytes.begin(), bytes.end(), 0);
    if (split == bytes.end()) {
        return {};
    }
    return boundedText(std::vector<std::uint8_t>(split + 1, bytes.end()));
}

std::optional<X11PropertyParsing::Icon> X11PropertyParsing::bestIcon(
    const std::vector<std::uint32_t>& values, std::uint32_t preferredSide) {
    auto score = [preferredSide](std::uint32_t side) -> std::int64_t {
        return side >= preferredSide ? 100000 - static_cast<std::int64_t>(side)
                                     : static_cast<std::int64_t>(side);
    };
    std::optional<std::size_t> best;
    std::uint32_t bestSide = 0;
    for (std::size_t index = 0; index + 2 <= values.size();) {
        const auto width = values[index];
        const auto height = values[index + 1];
        if (width == 0 || height == 0 || width > largestIconSide || height > largestIconSide ||
            static_cast<std::uint64_t>(width) * height > values.size() - index - 2) {
            break;
        }
        const auto side = std::max(width, height);
        if (!best || score(side) > score(bestSide)) {
            best = index;
            bestSide = side;
        }
        index += 2 + static_cast<std::size_t>(width) * height;
    }
    if (!best) {
        return std::nullopt;
    }
    Icon icon;
    icon.width = values[*best];
    icon.height = values[*best + 1];
    const auto first = values.begin() + static_cast<std::ptrdiff_t>(*best + 2);
    icon.pixels.assign(first, first + static_cast<std::ptrdiff_t>(icon.width) * icon.height);
    return icon;
}

}  // namespace orvane
