// Receives the desktop's focus-related events, on the main thread.
#pragma once

#include "core/WindowFocusEvent.h"

namespace orvane {

class WindowFocusEventObserving {
  public:
    virtual ~WindowFocusEventObserving() = default;
    virtual void windowFocusEventDidOccur(const WindowFocusEvent& event) = 0;
};

}  // namespace orvane
