#include "platform/simulated/SimulatedScreenCapture.h"

#include <string>
#include <utility>

#include "platform/simulated/SimulatedDesktop.h"

namespace orvane {

namespace {

// Captured images get identifiers of their own, clear of those of application icons.
constexpr std::uint64_t firstImageIdentifier = 0x5C000000;

}  // namespace

SimulatedScreenCapture::SimulatedScreenCapture(std::shared_ptr<SimulatedDesktop> desktop)
    : desktop_(std::move(desktop)), lastImageIdentifier_(firstImageIdentifier) {}

void SimulatedScreenCapture::deliverLater(double delay, std::function<void()> answer) {
    if (delay > 0) {
        desktop_->runLoop().scheduleTimer(delay, false, 0, std::move(answer));
    } else {
        desktop_->runLoop().post(std::move(answer));
    }
}

void SimulatedScreenCapture::getShareableContent(bool excludingDesktopWindows,
                                                 bool onScreenWindowsOnly,
                                                 ShareableContentCompletion completion) {
    ++listingsRequested_;
    // Knobs are read when asked, so that a test can change them for the next request.
    const bool fails = listingFails;
    // The answer lives in the desktop's run loop, so the desktop outlives it; this object may not.
    deliverLater(listingDelay, [desktop = desktop_.get(), fails, excludingDesktopWindows,
                                onScreenWindowsOnly, completion = std::move(completion)] {
        if (fails) {
            completion(std::nullopt);
            return;
        }
        ShareableContent content;
        for (auto identifier : desktop->windowsFrontToBack()) {
            const auto& window = *desktop->window(identifier);
            if (window.isMinimized || (onScreenWindowsOnly && window.isOffScreen) ||
                (excludingDesktopWindows && window.layer < 0)) {
                continue;
            }
            content.windows.push_back({window.windowIdentifier, window.bounds});
        }
        completion(std::move(content));
    });
}

void SimulatedScreenCapture::captureImage(const ContentFilter& filter,
                                          const StreamConfiguration& configuration,
                                          ImageCompletion completion) {
    const WindowIdentifier identifier = filter.desktopIndependentWindow;
    ++capturesRequested_;
    ++capturesRequestedByWindow_[identifier];
    lastConfiguration_ = configuration;
    const bool fails = allCapturesFail || failingCaptureWindows.contains(identifier);
    const std::uint64_t imageIdentifier = ++lastImageIdentifier_;
    deliverLater(captureDelay, [desktop = desktop_.get(), fails, identifier, imageIdentifier,
                                configuration, completion = std::move(completion)] {
        const auto* window = desktop->window(identifier);
        if (fails || window == nullptr || window->isMinimized) {
            completion(std::nullopt);
            return;
        }
        ImageHandle image;
        image.identifier = imageIdentifier;
        image.pixelWidth = static_cast<double>(configuration.width);
        image.pixelHeight = static_cast<double>(configuration.height);
        image.description = "window " + std::to_string(identifier) + " capture " +
                            std::to_string(imageIdentifier - firstImageIdentifier);
        completion(std::move(image));
    });
}

std::optional<double> SimulatedScreenCapture::mainScreenBackingScaleFactor() const {
    const auto screen = desktop_->screens().mainScreen();
    return screen ? std::optional(screen->backingScaleFactor) : std::nullopt;
}

std::size_t SimulatedScreenCapture::capturesRequested(WindowIdentifier window) const {
    auto found = capturesRequestedByWindow_.find(window);
    return found == capturesRequestedByWindow_.end() ? 0 : found->second;
}

}  // namespace orvane
