// Brings one chosen window to the front, whatever fails on the way, and tells the recency ordering.
#pragma once

#include "core/SwitchableWindow.h"

namespace orvane {

class WindowActivationService {
  public:
    virtual ~WindowActivationService() = default;
    virtual void activate(const SwitchableWindow& window) = 0;
};

}  // namespace orvane
