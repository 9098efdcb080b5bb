// Passes the recency ordering through to the real tracker and writes the order it gave.
#pragma once

#include <memory>

#include "Transcript.h"
#include "core/MostRecentlyUsedWindowOrdering.h"

namespace orvane::simulator {

class TranscriptRecencyOrdering final : public MostRecentlyUsedWindowOrdering {
  public:
    TranscriptRecencyOrdering(std::shared_ptr<MostRecentlyUsedWindowOrdering> ordering,
                              Transcript& transcript)
        : ordering_(std::move(ordering)), transcript_(transcript) {}

    void startTracking() override { ordering_->startTracking(); }
    void stopTracking() override { ordering_->stopTracking(); }
    std::vector<SwitchableWindow> orderedByRecency(std::vector<SwitchableWindow> windows) override;
    void recordImmediateFocus(const SwitchableWindow& window) override {
        ordering_->recordImmediateFocus(window);
    }

  private:
    std::shared_ptr<MostRecentlyUsedWindowOrdering> ordering_;
    Transcript& transcript_;
};

}  // namespace orvane::simulator
