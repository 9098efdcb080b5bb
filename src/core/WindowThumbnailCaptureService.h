// Captures a live preview of a window, asynchronously on the main run loop.
#pragma once

#include <functional>
#include <optional>

#include "core/CancellationToken.h"
#include "core/SwitchableWindow.h"
#include "platform/ImageHandle.h"

namespace orvane {

class WindowThumbnailCaptureService {
  public:
    using Completion = std::function<void(std::optional<ImageHandle>)>;
    virtual ~WindowThumbnailCaptureService() = default;

    // Calls `completion` exactly once, later, on the main run loop: with an image, or with nothing
    // when there is no permission, the window is minimized, the capture failed or `cancellation`
    // was cancelled.
    virtual void captureThumbnail(const SwitchableWindow& window, CancellationToken cancellation,
                                  Completion completion) = 0;
};

}  // namespace orvane
