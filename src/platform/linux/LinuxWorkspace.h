// The workspace over the window model: a running application is one of the model's applications
// (a desktop entry or a window class) with client windows, named and drawn as the desktop entry
// that matches its window class says, else by its window class or process name and its windows' own
// icon; the frontmost one owns the active window. Posts the launch, termination and activation
// notices on the workspace notification centre as the window model tells of them; it must be made
// before the Accessibility port, so that it hears first.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string_view>

#include "platform/NotificationCenterPort.h"
#include "platform/WorkspacePort.h"
#include "platform/linux/DesktopEntry.h"
#include "platform/linux/DesktopWindows.h"

namespace orvane {

class LinuxWorkspace final : public WorkspacePort {
  public:
    // The desktop entry a window of this class (instance, class) belongs to; null for none.
    using EntryOfClass =
        std::function<const DesktopEntry*(std::string_view instance, std::string_view windowClass)>;

    // Without `entries`, names and icons come from the windows alone.
    LinuxWorkspace(DesktopWindows& model, std::shared_ptr<NotificationCenterPort> notifications,
                   EntryOfClass entries = {});

    // Ordered by each application's front-most window.
    std::vector<RunningApplication> runningApplications() const override;
    std::optional<RunningApplication> runningApplication(
        ProcessIdentifier processIdentifier) const override;
    std::optional<RunningApplication> frontmostApplication() const override;
    // The window's own activation brings the application forward on this desktop; this answers
    // whether the application still runs.
    bool activateApplication(ProcessIdentifier processIdentifier, unsigned options) override;

    // Pixels of an icon handed out in a running application or window card, ARGB row by row;
    // nothing when that icon is gone.
    const std::vector<std::uint32_t>* iconPixels(std::uint64_t identifier) const;

  private:
    // The record of a running process, before any of its windows is looked at.
    RunningApplication application(ProcessIdentifier process) const;
    void absorb(RunningApplication& application, const DesktopWindows::Window& window) const;
    void modelChanged(DesktopWindows::ChangeKind kind, const DesktopWindows::Window& window);
    void post(const char* name, const RunningApplication& application);

    DesktopWindows& model_;
    std::shared_ptr<NotificationCenterPort> notifications_;
    EntryOfClass entries_;
    std::map<ProcessIdentifier, Date> launchDates_;
    std::optional<ProcessIdentifier> frontmost_;
};

}  // namespace orvane
