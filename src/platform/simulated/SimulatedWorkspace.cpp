#include "platform/simulated/SimulatedWorkspace.h"

#include "platform/simulated/SimulatedDesktop.h"

namespace orvane {

std::vector<RunningApplication> SimulatedWorkspace::runningApplications() const {
    std::vector<RunningApplication> applications;
    for (auto process : desktop_.applicationsInLaunchOrder()) {
        applications.push_back(desktop_.application(process)->runningApplication);
    }
    return applications;
}

std::optional<RunningApplication> SimulatedWorkspace::runningApplication(
    ProcessIdentifier processIdentifier) const {
    const auto* application = desktop_.application(processIdentifier);
    if (application == nullptr) {
        return std::nullopt;
    }
    return application->runningApplication;
}

std::optional<RunningApplication> SimulatedWorkspace::frontmostApplication() const {
    auto frontmost = desktop_.frontmostProcessIdentifier();
    if (!frontmost) {
        return std::nullopt;
    }
    return runningApplication(*frontmost);
}

bool SimulatedWorkspace::activateApplication(ProcessIdentifier processIdentifier, unsigned) {
    activationRequests_.push_back(processIdentifier);
    if (refusesActivation) {
        return false;
    }
    return desktop_.activateApplication(processIdentifier);
}

}  // namespace orvane
