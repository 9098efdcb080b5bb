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
#include "platform/simulated/SimulatedEventTap.h"
#include "platform/simulated/SimulatedNotificationCenter.h"
#include "platform/simulated/SimulatedRunLoop.h"
#include "platform/simulated/SimulatedScreens.h"
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
    std::shared_ptr<SimulatedScreens> screensPort();
    std::shared_ptr<SimulatedEventTap> eventTapPort();
    std::shared_ptr<SimulatedNotificationCenter> distributedNotificationCenter();

    SimulatedRunLoop& runLoop() { return runLoop_; }
    SimulatedAccessibility& accessibility() { return accessibility_; }
    SimulatedWindowList& windowList() { return windowList_; }
    SimulatedWorkspace& workspace() { return workspace_; }
    SimulatedScreens& screens() { return screens_; }
    SimulatedEventTap& eventTaps() { return eventTaps_; }

    // The Accessibility permission of the program; without it no event tap can be created and
    // existing ones see nothing.
    bool isAccessibilityTrusted() const { return accessibilityTrusted_; }
    void setAccessibilityTrusted(bool trusted) { accessibilityTrusted_ = trusted; }

    // A key event from the keyboard: the event taps first, then, unless one swallowed it, the
    // frontmost application. Answers the process that received it, if any.
    struct KeyDelivery {
        bool swallowed = false;
        std::optional<ProcessIdentifier> receiver;
    };
    KeyDelivery postKeyboardEvent(KeyboardEventType type, const KeyboardEvent& event);
    // The modifiers held on the keyboard right now, as the last modifier change left them.
    KeyboardEventFlags heldModifierFlags() const { return heldModifierFlags_; }
    // Every key event an application received, in order.
    struct ReceivedKeyEvent {
        ProcessIdentifier receiver;
        KeyboardEventType type;
        EventKeyCode keyCode;
    };
    const std::vector<ReceivedKeyEvent>& keyEventsReceivedByApplications() const {
        return keyEventsReceivedByApplications_;
    }
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
    // Raises the window above the other windows of its application; focus does not move.
    bool raiseWindow(WindowIdentifier window);
    // Makes the window its application's focused window; told when the application is frontmost.
    bool makeMainWindow(WindowIdentifier window);
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
    SimulatedScreens screens_;
    SimulatedEventTap eventTaps_;
    SimulatedNotificationCenter distributedNotificationCenter_;
    bool accessibilityTrusted_ = true;
    KeyboardEventFlags heldModifierFlags_ = 0;
    std::vector<ReceivedKeyEvent> keyEventsReceivedByApplications_;
    std::map<ProcessIdentifier, SimulatedApplication> applications_;
    std::vector<ProcessIdentifier> launchOrder_;
    std::map<WindowIdentifier, SimulatedWindow> windows_;
    std::vector<WindowIdentifier> zOrder_;
    std::optional<ProcessIdentifier> frontmost_;
};

}  // namespace orvane
