// The window server's window list over the simulated desktop, front to back.
#pragma once

#include <set>

#include "platform/WindowListPort.h"

namespace orvane {

class SimulatedDesktop;

class SimulatedWindowList final : public WindowListPort {
  public:
    explicit SimulatedWindowList(SimulatedDesktop& desktop) : desktop_(desktop) {}

    std::optional<PropertyListValue> copyWindowInfo(std::uint32_t options,
                                                    WindowIdentifier relativeToWindow) override;

    // Fault knob: reads with these option masks answer nothing.
    std::set<std::uint32_t> failingOptions;
    // Fault knob: reads answer something that is not an array of dictionaries.
    bool answersMalformedList = false;
    std::size_t readCount() const { return readCount_; }

  private:
    SimulatedDesktop& desktop_;
    std::size_t readCount_ = 0;
};

}  // namespace orvane
