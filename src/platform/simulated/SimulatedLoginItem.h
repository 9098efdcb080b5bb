// The simulated login item of the application: its status, and a knob that makes registering and
// unregistering fail the way the system refuses them.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <utility>

#include "platform/LoginItemPort.h"

namespace orvane {

class SimulatedLoginItem final : public LoginItemPort {
  public:
    std::optional<std::string> registerLoginItem() override;
    std::optional<std::string> unregisterLoginItem() override;
    LoginItemStatus status() const override { return status_; }

    // The user's own changes in the system settings, such as an approval still missing.
    void setStatus(LoginItemStatus status) { status_ = status; }
    // With a description, every change fails with it and leaves the status alone.
    void setFailure(std::optional<std::string> errorDescription) {
        failure_ = std::move(errorDescription);
    }
    std::size_t changeRequestCount() const { return changeRequestCount_; }

  private:
    LoginItemStatus status_ = LoginItemStatus::notRegistered;
    std::optional<std::string> failure_;
    std::size_t changeRequestCount_ = 0;
};

}  // namespace orvane
