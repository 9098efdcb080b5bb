// The workspace: the running applications and which of them is frontmost.
#pragma once

#include <optional>
#include <vector>

#include "platform/RunningApplication.h"

namespace orvane {

class WorkspacePort {
  public:
    virtual ~WorkspacePort() = default;

    virtual std::vector<RunningApplication> runningApplications() const = 0;
    // Nothing when the process has no running application (any more).
    virtual std::optional<RunningApplication> runningApplication(
        ProcessIdentifier processIdentifier) const = 0;
    virtual std::optional<RunningApplication> frontmostApplication() const = 0;
    // `activateWithOptions:` on the process's application; false when it didn't take.
    virtual bool activateApplication(ProcessIdentifier processIdentifier, unsigned options) = 0;
};

}  // namespace orvane
