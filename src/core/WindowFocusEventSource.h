// Watches the desktop for focus, activation and window events and reports them to one observer.
#pragma once

#include <memory>

#include "core/WindowFocusEventObserving.h"

namespace orvane {

class WindowFocusEventSource {
  public:
    virtual ~WindowFocusEventSource() = default;

    // Held weakly: the source never keeps its observer alive.
    virtual std::weak_ptr<WindowFocusEventObserving> observer() const = 0;
    virtual void setObserver(std::weak_ptr<WindowFocusEventObserving> observer) = 0;
    // Idempotent.
    virtual void startObserving() = 0;
    // Idempotent; removes every observer the source installed.
    virtual void stopObserving() = 0;
};

}  // namespace orvane
