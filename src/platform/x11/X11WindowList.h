// The window list over the window manager's client list: one dictionary per client window, front
// to back, under the keys the window list always had. Minimized windows and windows of other
// desktops are left out of the on-screen list.
#pragma once

#include "platform/WindowListPort.h"
#include "platform/x11/X11WindowModel.h"

namespace orvane {

class X11WindowList final : public WindowListPort {
  public:
    explicit X11WindowList(X11WindowModel& model) : model_(model) {}

    std::optional<PropertyListValue> copyWindowInfo(std::uint32_t options,
                                                    WindowIdentifier relativeToWindow) override;
    std::optional<std::uint64_t> revision() const override { return model_.revision(); }

  private:
    X11WindowModel& model_;
};

}  // namespace orvane
