// The workspace of the simulated desktop: its running applications and the frontmost one.
#pragma once

#include "platform/WorkspacePort.h"

namespace orvane {

class SimulatedDesktop;

class SimulatedWorkspace final : public WorkspacePort {
  public:
    explicit SimulatedWorkspace(SimulatedDesktop& desktop) : desktop_(desktop) {}

    std::vector<RunningApplication> runningApplications() const override;
    std::optional<RunningApplication> runningApplication(
        ProcessIdentifier processIdentifier) const override;
    std::optional<RunningApplication> frontmostApplication() const override;
    bool activateApplication(ProcessIdentifier processIdentifier, unsigned options) override;

    // Fault knob: activation requests answer false and change nothing.
    bool refusesActivation = false;
    // Every activation request, in order.
    const std::vector<ProcessIdentifier>& activationRequests() const { return activationRequests_; }

  private:
    SimulatedDesktop& desktop_;
    std::vector<ProcessIdentifier> activationRequests_;
};

}  // namespace orvane
