// Opens an application by starting its executable, detached and without a shell; the completion
// comes later through the run loop.
#pragma once

#include <memory>

#include "platform/ApplicationLauncherPort.h"
#include "platform/RunLoopPort.h"

namespace orvane {

class QtApplicationLauncher final : public ApplicationLauncherPort {
  public:
    explicit QtApplicationLauncher(std::shared_ptr<RunLoopPort> runLoop)
        : runLoop_(std::move(runLoop)) {}

    void openApplication(const std::string& applicationPath,
                         ApplicationLaunchCompletion completion) override;

  private:
    std::shared_ptr<RunLoopPort> runLoop_;
};

}  // namespace orvane
