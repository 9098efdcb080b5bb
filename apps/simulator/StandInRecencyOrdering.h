// Keeps the enumeration's order as the recency order; remembers nothing.
#pragma once

#include "core/MostRecentlyUsedWindowOrdering.h"

namespace orvane::simulator {

class StandInRecencyOrdering final : public MostRecentlyUsedWindowOrdering {
  public:
    void startTracking() override {}
    void stopTracking() override {}
    std::vector<SwitchableWindow> orderedByRecency(std::vector<SwitchableWindow> windows) override {
        return windows;
    }
    void recordImmediateFocus(const SwitchableWindow&) override {}
};

}  // namespace orvane::simulator
