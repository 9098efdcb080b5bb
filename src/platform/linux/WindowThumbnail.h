// A window's last preview as a desktop backend keeps it: premultiplied ARGB pixels, row by row,
// under the identifier of the image handle it was handed out as.
#pragma once

#include <cstdint>
#include <vector>

namespace orvane {

struct WindowThumbnail {
    std::uint64_t identifier = 0;
    int width = 0, height = 0;
    std::vector<std::uint32_t> pixels;
};

}  // namespace orvane
