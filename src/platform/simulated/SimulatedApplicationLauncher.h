// Application launches on the simulated desktop: records each request and answers through the
// run loop, which stands for the platform's completion on another thread. A knob makes launches
// fail.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/ApplicationLauncherPort.h"
#include "platform/RunLoopPort.h"

namespace orvane {

class SimulatedApplicationLauncher final : public ApplicationLauncherPort {
  public:
    explicit SimulatedApplicationLauncher(std::shared_ptr<RunLoopPort> runLoop);

    // The completion runs as posted work on the run loop, never inside this call.
    void openApplication(const std::string& applicationPath,
                         ApplicationLaunchCompletion completion) override;

    // Knob: while set, every launch fails with this description.
    std::optional<std::string> failureDescription;
    // What a successful launch does to the desktop, just before its completion runs.
    std::function<void(const std::string& applicationPath)> launchEffect;

    // Every path asked for, in order.
    const std::vector<std::string>& launchedPaths() const { return launchedPaths_; }
    std::size_t launchCount() const { return launchedPaths_.size(); }

  private:
    std::shared_ptr<RunLoopPort> runLoop_;
    std::vector<std::string> launchedPaths_;
};

}  // namespace orvane
