// Opens an installed application from its desktop entry through GIO: the entry's Exec line is
// split into arguments and started directly, never through a shell. The completion comes later
// through the run loop.
#pragma once

#include <memory>

#include "platform/ApplicationLauncherPort.h"
#include "platform/RunLoopPort.h"

namespace orvane {

class GioApplicationLauncher final : public ApplicationLauncherPort {
  public:
    explicit GioApplicationLauncher(std::shared_ptr<RunLoopPort> runLoop)
        : runLoop_(std::move(runLoop)) {}

    void openApplication(const std::string& applicationPath,
                         ApplicationLaunchCompletion completion) override;

  private:
    std::shared_ptr<RunLoopPort> runLoop_;
};

}  // namespace orvane
