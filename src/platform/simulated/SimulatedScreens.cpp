#include "platform/simulated/SimulatedScreens.h"

#include <utility>

namespace orvane {

SimulatedScreens::SimulatedScreens() {
    // A 25-point menu bar on top and a 70-point Dock below.
    setScreens({ScreenDescription{Rect{{0, 0}, {1440, 900}}, Rect{{0, 70}, {1440, 805}}, 2.0}});
    mouseLocation_ = Point{720, 450};
}

std::optional<ScreenDescription> SimulatedScreens::mainScreen() const {
    if (!mainScreenIndex_ || *mainScreenIndex_ >= screens_.size()) {
        return std::nullopt;
    }
    return screens_[*mainScreenIndex_];
}

void SimulatedScreens::setScreens(std::vector<ScreenDescription> screens) {
    screens_ = std::move(screens);
    mainScreenIndex_ = screens_.empty() ? std::nullopt : std::optional<std::size_t>(0);
}

}  // namespace orvane
