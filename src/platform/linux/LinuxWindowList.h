// The window list over the desktop's window model: one dictionary per client window, front to
// back, under the keys the window list always had. Minimized windows and windows of other
// desktops are left out of the on-screen list.
#pragma once

#include "platform/WindowListPort.h"
#include "platform/linux/DesktopWindows.h"

namespace orvane {

class LinuxWindowList final : public WindowListPort {
  public:
    explicit LinuxWindowList(DesktopWindows& model) : model_(model) {}

    std::optional<PropertyListValue> copyWindowInfo(std::uint32_t options,
                                                    WindowIdentifier relativeToWindow) override;
    std::optional<std::uint64_t> revision() const override { return model_.revision(); }

  private:
    DesktopWindows& model_;
};

}  // namespace orvane
