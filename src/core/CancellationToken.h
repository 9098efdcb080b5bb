// A caller's cancellation of asynchronous work, shared between the caller and the work. The work
// looks at it at its own checkpoints; cancelling never interrupts anything by force.
#pragma once

#include <atomic>
#include <memory>

namespace orvane {

class CancellationToken {
  public:
    CancellationToken() : state_(std::make_shared<std::atomic<bool>>(false)) {}

    void cancel() const { state_->store(true); }
    bool isCancelled() const { return state_->load(); }

  private:
    std::shared_ptr<std::atomic<bool>> state_;
};

}  // namespace orvane
