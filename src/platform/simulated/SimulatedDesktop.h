// A desktop that lives in memory: running applications, their windows in z-order, focus, and the
// platform services over them, with virtual time. Changing it delivers the notifications a real
// desktop would, through its run loop, to whoever observes.
#pragma once

#include <map>
#include <memory>
#include <optional>
#include <vector>

#include "platform/simulated/SimulatedAccessibility.h"
#include "platform/simulated/SimulatedApplication.h"
#include "platform/simulated/SimulatedNotificationCenter.h"
#include "platform/simulated/SimulatedRunLoop.h"
#include "platform/simulated/SimulatedWindow.h"
#include "platform/simulated/SimulatedWindowList.h"
#include "platform/simulated/SimulatedWorkspace.h"

namespace orvane {

class SimulatedDesktop : public std::enable_shared_from_this<SimulatedDesktop> {
  public:
    // `currentProcessIdentifier` is the program's own process on this desktop.
    static std::shared_ptr<SimulatedDesktop> make(ProcessIdentifier currentProcessIdentifier = 100);

    SimulatedDesktop(const SimulatedDesktop&) = delete;
    SimulatedDesktop& operator=(const SimulatedDesktop&) = delete;

    // The ports; each keeps the desktop alive.
    std::shared_ptr<SimulatedAccessibility> accessibilityPort();
    std::shared_ptr<SimulatedWindowList> windowListPort();
    std::shared_ptr<SimulatedWorkspace> workspacePort();
    std::shared_ptr<SimulatedNotificationCenter> workspaceNotificationCenter();
    std::shared_ptr<SimulatedRunLoop> runLoopPort();

    SimulatedRunLoop& runLoop() { return runLoop_; }
    SimulatedAccessibility& accessibility() { return accessibility_; }
    SimulatedWindowList& windowList() { return windowList_; }
    ProcessIdentifier currentProcessIdentifier() const { return currentProcessIdentifier_; }

    // The model. Pointers stay valid until the thing is removed.
    SimulatedApplication* application(ProcessIdentifier process);
    const SimulatedApplication* application(ProcessIdentifier process) const;
    SimulatedWindow* window(WindowIdentifier window);
    const SimulatedWindow* window(WindowIdentifier window) const;
    const std::vector<WindowIdentifier>& windowsFrontToBack() const { return zOrder_; }
    const std::vector<ProcessIdentifier>& applicationsInLaunchOrder() const { return launchOrder_; }
    std::optional<ProcessIdentifier> frontmostProcessIdentifier() const { return frontmost_; }
    std::optional<WindowIdentifier> focusedWindow() const;

    // Changes, each with the notifications it causes. False when the change names something that
    // is not there (or already is).
    bool launchApplication(SimulatedApplication application);
    bool terminateApplication(ProcessIdentifier process);
    // Puts the window in front of the others (or behind them all); it does not take the focus.
    bool createWindow(SimulatedWindow window, bool inFront = true);
    bool destroyWindow(WindowIdentifier window);
    bool setWindowMinimized(WindowIdentifier window, bool minimized);
    // Brings the window's application forward with that window focused and in front.
    bool focusWindow(WindowIdentifier window);
    // Brings the application forward with its windows in front; the focused window stays.
    bool activateApplication(ProcessIdentifier process);
    // Leaves no application frontmost, without notifications: the state of a desktop between two
    // activations.
    void clearFrontmost() { frontmost_.reset(); }

  private:
    explicit SimulatedDesktop(ProcessIdentifier currentProcessIdentifier);

    void postWorkspaceNotification(const char* name, ProcessIdentifier process);
    void deliverAccessibilityNotification(ProcessIdentifier process, WindowIdentifier window,
                                          const char* notification);
    // True when the application was not frontmost before.
    bool makeFrontmost(ProcessIdentifier process);
    void bringToFront(WindowIdentifier window);

    ProcessIdentifier currentProcessIdentifier_;
    SimulatedRunLoop runLoop_;
    SimulatedNotificationCenter workspaceNotificationCenter_;
    SimulatedAccessibility accessibility_;
    SimulatedWindowList windowList_;
    SimulatedWorkspace workspace_;
    std::map<ProcessIdentifier, SimulatedApplication> applications_;
    std::vector<ProcessIdentifier> launchOrder_;
    std::map<WindowIdentifier, SimulatedWindow> windows_;
    std::vector<WindowIdentifier> zOrder_;
    std::optional<ProcessIdentifier> frontmost_;
};

}  // namespace orvane
