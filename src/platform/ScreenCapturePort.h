// The platform's screen capture: the Screen Recording permission, the list of capturable windows,
// one screenshot of one window, and the pixel density of the main screen.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

#include "core/Geometry.h"
#include "core/Identifiers.h"
#include "platform/ImageHandle.h"

namespace orvane {

// One capturable window: the identifier shared with the window list, and its frame in points.
struct ShareableWindow {
    WindowIdentifier windowID = 0;
    Rect frame;

    friend bool operator==(const ShareableWindow&, const ShareableWindow&) = default;
};

struct ShareableContent {
    std::vector<ShareableWindow> windows;

    friend bool operator==(const ShareableContent&, const ShareableContent&) = default;
};

// What a screenshot shows: one window alone, whatever lies above or below it.
struct ContentFilter {
    WindowIdentifier desktopIndependentWindow = 0;

    friend bool operator==(const ContentFilter&, const ContentFilter&) = default;
};

// The output of a screenshot. The platform's defaults: no size chosen, the cursor shown.
struct StreamConfiguration {
    std::int64_t width = 0;
    std::int64_t height = 0;
    bool showsCursor = true;

    friend bool operator==(const StreamConfiguration&, const StreamConfiguration&) = default;
};

class ScreenCapturePort {
  public:
    using ShareableContentCompletion = std::function<void(std::optional<ShareableContent>)>;
    using ImageCompletion = std::function<void(std::optional<ImageHandle>)>;

    virtual ~ScreenCapturePort() = default;

    // Whether the program holds the Screen Recording permission; never prompts.
    virtual bool preflightScreenCaptureAccess() const = 0;

    // Lists the capturable windows, front to back. `completion` runs once, later, on the main run
    // loop, with nothing when the listing failed.
    virtual void getShareableContent(bool excludingDesktopWindows, bool onScreenWindowsOnly,
                                     ShareableContentCompletion completion) = 0;

    // Takes one screenshot. `completion` runs once, later, on the main run loop, with an image of
    // the configured pixel size (no point size), or nothing when the capture failed.
    virtual void captureImage(const ContentFilter& filter, const StreamConfiguration& configuration,
                              ImageCompletion completion) = 0;

    // Pixels per point of the screen with the keyboard focus; nothing when there is none.
    virtual std::optional<double> mainScreenBackingScaleFactor() const = 0;
};

}  // namespace orvane
