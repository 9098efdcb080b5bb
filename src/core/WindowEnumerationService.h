// Lists the windows the switcher can offer at this moment.
#pragma once

#include <vector>

#include "core/SwitchableWindow.h"

namespace orvane {

class WindowEnumerationService {
  public:
    virtual ~WindowEnumerationService() = default;

    // Synchronous; in enumeration order (on-screen list front to back, then the rest); every
    // `lastFocusedTimestamp` is the distant past; empty when nothing can be listed.
    virtual std::vector<SwitchableWindow> enumerateSwitchableWindows() = 0;
};

}  // namespace orvane
