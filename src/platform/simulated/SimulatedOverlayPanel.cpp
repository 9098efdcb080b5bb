#include "platform/simulated/SimulatedOverlayPanel.h"

#include <sstream>

namespace orvane {

void SimulatedOverlayPanel::setFrame(const Rect& frame, bool display) {
    frame_ = frame;
    std::ostringstream call;
    call << "setFrame " << frame.origin.x << "," << frame.origin.y << " " << frame.size.width << "x"
         << frame.size.height << (display ? "" : " without display");
    calls_.push_back(call.str());
}

void SimulatedOverlayPanel::orderFrontRegardless() {
    isOrderedFront_ = true;
    calls_.emplace_back("orderFrontRegardless");
}

void SimulatedOverlayPanel::orderOut() {
    isOrderedFront_ = false;
    calls_.emplace_back("orderOut");
}

}  // namespace orvane
