// Launches or activates an installed application, with the platform's default open
// configuration, and reports the outcome later.
#pragma once

#include <functional>
#include <optional>
#include <string>

namespace orvane {

// Nothing on success, else the error's textual description. It may run on any thread, so it must
// touch only thread-safe things and hand the rest to the main run loop.
using ApplicationLaunchCompletion =
    std::function<void(std::optional<std::string> errorDescription)>;

class ApplicationLauncherPort {
  public:
    virtual ~ApplicationLauncherPort() = default;

    // Opens the application bundle at `applicationPath`; returns at once. `completion` is called
    // exactly once, later, never inside this call.
    virtual void openApplication(const std::string& applicationPath,
                                 ApplicationLaunchCompletion completion) = 0;
};

}  // namespace orvane
