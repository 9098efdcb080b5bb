// An image the platform made (an application icon, a window thumbnail), opaque to the logic.
#pragma once

#include <cstdint>
#include <string>

namespace orvane {

struct ImageHandle {
    // The platform's identity of the image; equal identifiers mean the same pixels.
    std::uint64_t identifier = 0;
    double pixelWidth = 0;
    double pixelHeight = 0;
    // A short description for logs and text renderings.
    std::string description;
    // The size the image is drawn at, in points; zero when the platform gave none.
    double pointWidth = 0;
    double pointHeight = 0;

    friend bool operator==(const ImageHandle&, const ImageHandle&) = default;
};

}  // namespace orvane
