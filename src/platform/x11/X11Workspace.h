// The workspace over the window model: a running application is one of the model's applications
// (a desktop entry or a window class) with client windows, named and drawn as the desktop entry
// that matches its window class says, else by its window class or process name and its windows' own
// icon; the frontmost one owns the active window. Posts the launch, termination and activation
// notices on the workspace notification centre as the window model tells of them; it must be made
// before the Accessibility port, so that it hears first.
#pragma once

#include <map>
#include <memory>
#include <optional>

#include "platform/NotificationCenterPort.h"
#include "platform/WorkspacePort.h"
#include "platform/x11/DesktopEntryCatalog.h"
#include "platform/x11/X11WindowModel.h"

namespace orvane {

class X11Workspace final : public WorkspacePort {
  public:
    // Without `entries`, names and icons come from the windows alone.
    X11Workspace(X11WindowModel& model, std::shared_ptr<NotificationCenterPort> notifications,
                 DesktopEntryCatalog* entries = nullptr);

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
    void absorb(RunningApplication& application, const X11WindowModel::ClientWindow& window) const;
    void modelChanged(X11WindowModel::ChangeKind kind, const X11WindowModel::ClientWindow& window);
    void post(const char* name, const RunningApplication& application);

    X11WindowModel& model_;
    std::shared_ptr<NotificationCenterPort> notifications_;
    DesktopEntryCatalog* entries_;
    std::map<ProcessIdentifier, Date> launchDates_;
    std::optional<ProcessIdentifier> frontmost_;
};

}  // namespace orvane
