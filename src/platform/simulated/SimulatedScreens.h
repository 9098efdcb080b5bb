// The screens and the mouse of the simulated desktop: one 1440 x 900 screen with a menu bar and a
// Dock unless a scenario says otherwise.
#pragma once

#include <optional>
#include <vector>

#include "platform/ScreenPort.h"

namespace orvane {

class SimulatedScreens final : public ScreenPort {
  public:
    SimulatedScreens();

    std::vector<ScreenDescription> screens() const override { return screens_; }
    std::optional<ScreenDescription> mainScreen() const override;
    Point mouseLocation() const override { return mouseLocation_; }

    // Replaces the screens; the first is the main one unless `setMainScreen` says otherwise.
    void setScreens(std::vector<ScreenDescription> screens);
    // An index into the screens, or none: no screen has the keyboard focus.
    void setMainScreen(std::optional<std::size_t> index) { mainScreenIndex_ = index; }
    void moveMouse(Point location) { mouseLocation_ = location; }

  private:
    std::vector<ScreenDescription> screens_;
    std::optional<std::size_t> mainScreenIndex_;
    Point mouseLocation_;
};

}  // namespace orvane
