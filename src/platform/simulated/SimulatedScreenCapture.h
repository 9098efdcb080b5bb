// Screen capture over the simulated desktop: lists its windows and "captures" them after virtual
// delays on its run loop, with knobs for the permission, delays and failures, and counters of what
// was asked.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <set>

#include "platform/ScreenCapturePort.h"

namespace orvane {

class SimulatedDesktop;

class SimulatedScreenCapture final : public ScreenCapturePort {
  public:
    // Keeps the desktop alive; answers through its run loop.
    explicit SimulatedScreenCapture(std::shared_ptr<SimulatedDesktop> desktop);

    bool preflightScreenCaptureAccess() const override { return screenCaptureAccessGranted; }
    // Minimized windows are never listed, as on the real system; off-screen windows only when
    // `onScreenWindowsOnly` is false; desktop windows (negative layers) only when not excluded.
    // The desktop is read when the answer is delivered.
    void getShareableContent(bool excludingDesktopWindows, bool onScreenWindowsOnly,
                             ShareableContentCompletion completion) override;
    // Fails for a window that is gone or minimized by the time the answer is delivered.
    void captureImage(const ContentFilter& filter, const StreamConfiguration& configuration,
                      ImageCompletion completion) override;
    // The scale of the desktop's main screen.
    std::optional<double> mainScreenBackingScaleFactor() const override;

    // Knobs.
    bool screenCaptureAccessGranted = true;
    // Virtual seconds before an answer; zero answers at the run loop's next turn.
    double listingDelay = 0;
    double captureDelay = 0;
    bool listingFails = false;
    bool allCapturesFail = false;
    std::set<WindowIdentifier> failingCaptureWindows;

    // Counters.
    std::size_t listingsRequested() const { return listingsRequested_; }
    std::size_t capturesRequested() const { return capturesRequested_; }
    std::size_t capturesRequested(WindowIdentifier window) const;
    const std::optional<StreamConfiguration>& lastConfiguration() const {
        return lastConfiguration_;
    }

  private:
    void deliverLater(double delay, std::function<void()> answer);

    std::shared_ptr<SimulatedDesktop> desktop_;
    std::size_t listingsRequested_ = 0;
    std::size_t capturesRequested_ = 0;
    std::map<WindowIdentifier, std::size_t> capturesRequestedByWindow_;
    std::optional<StreamConfiguration> lastConfiguration_;
    std::uint64_t lastImageIdentifier_ = 0;
};

}  // namespace orvane
