// Turns the application's login item on and off. Offers no reading: callers ask the login item's
// status themselves, so that a failed change shows as the truth rather than as the wish.
#pragma once

#include <memory>

#include "platform/LoginItemPort.h"

namespace orvane {

class LaunchAtLoginConfigurator {
  public:
    explicit LaunchAtLoginConfigurator(std::shared_ptr<LoginItemPort> loginItem);

    // Registers or unregisters; a failure is logged and absorbed.
    void setLaunchAtLoginEnabled(bool enabled);

  private:
    std::shared_ptr<LoginItemPort> loginItem_;
};

}  // namespace orvane
