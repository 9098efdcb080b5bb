// Focuses a window through the window server's private calls, where the platform has them.
#pragma once

#include "core/Identifiers.h"

namespace orvane {

class PrivateWindowFocusService {
  public:
    virtual ~PrivateWindowFocusService() = default;
    // True when the process was brought to the front with that window.
    virtual bool focusWindow(WindowIdentifier windowIdentifier,
                             ProcessIdentifier processIdentifier) = 0;
};

}  // namespace orvane
