#include "platform/simulated/SimulatedApplicationLauncher.h"

#include <utility>

namespace orvane {

SimulatedApplicationLauncher::SimulatedApplicationLauncher(std::shared_ptr<RunLoopPort> runLoop)
    : runLoop_(std::move(runLoop)) {}

void SimulatedApplicationLauncher::openApplication(const std::string& applicationPath,
                                                   ApplicationLaunchCompletion completion) {
    launchedPaths_.push_back(applicationPath);
    // The outcome is fixed at the request, as the platform decides it when asked.
    runLoop_->post([completion = std::move(completion), error = failureDescription,
                    effect = launchEffect, applicationPath] {
        if (!error && effect) {
            effect(applicationPath);
        }
        completion(error);
    });
}

}  // namespace orvane
