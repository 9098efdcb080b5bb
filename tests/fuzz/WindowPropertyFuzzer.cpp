// Window properties as a hostile client may set them: titles, classes and icon lists of any bytes.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "platform/x11/X11PropertyParsing.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using orvane::X11PropertyParsing;
    const std::vector<std::uint8_t> bytes(data, data + size);
    if (X11PropertyParsing::boundedText(bytes).size() > X11PropertyParsing::longestText ||
        X11PropertyParsing::windowClass(bytes).size() > X11PropertyParsing::longestText) {
        std::abort();
    }
    std::vector<std::uint32_t> values(size / 4);
    if (!values.empty()) {
        std::memcpy(values.data(), data, values.size() * 4);
    }
    if (const auto icon = X11PropertyParsing::bestIcon(values, size > 0 ? data[0] : 64)) {
        if (icon->width == 0 || icon->height == 0 ||
            icon->pixels.size() != static_cast<std::size_t>(icon->width) * icon->height) {
            std::abort();
        }
    }
    return 0;
}
