// The overlay panel on the simulated desktop: remembers its frame and whether it is on screen, and
// can never become the key window, so it never takes the keyboard from the focused application.
#pragma once

#include <string>
#include <vector>

#include "platform/OverlayPanelPort.h"

namespace orvane {

class SimulatedOverlayPanel final : public OverlayPanelPort {
  public:
    void setFrame(const Rect& frame, bool display) override;
    void orderFrontRegardless() override;
    void orderOut() override;

    static constexpr bool canBecomeKeyWindow() { return false; }
    static constexpr bool canBecomeMainWindow() { return false; }

    const Rect& frame() const { return frame_; }
    bool isOrderedFront() const { return isOrderedFront_; }
    // Every call, in order, as text: "setFrame 400,247.5 640x160", "orderFrontRegardless".
    const std::vector<std::string>& calls() const { return calls_; }

  private:
    Rect frame_;
    bool isOrderedFront_ = false;
    std::vector<std::string> calls_;
};

}  // namespace orvane
