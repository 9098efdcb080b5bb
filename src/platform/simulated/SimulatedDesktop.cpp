#include "platform/simulated/SimulatedDesktop.h"

#include <algorithm>

#include "platform/simulated/SimulatedAccessibilityElement.h"

namespace orvane {

std::shared_ptr<SimulatedDesktop> SimulatedDesktop::make(
    ProcessIdentifier currentProcessIdentifier) {
    return std::shared_ptr<SimulatedDesktop>(new SimulatedDesktop(currentProcessIdentifier));
}

SimulatedDesktop::SimulatedDesktop(ProcessIdentifier currentProcessIdentifier)
    : currentProcessIdentifier_(currentProcessIdentifier),
      accessibility_(*this),
      windowList_(*this),
      workspace_(*this),
      eventTaps_(*this) {}

SimulatedDesktop::KeyDelivery SimulatedDesktop::postKeyboardEvent(KeyboardEventType type,
                                                                  const KeyboardEvent& event) {
    if (type == keyboard_event_type::flagsChanged) {
        heldModifierFlags_ = event.flags();
    }
    KeyDelivery delivery;
    delivery.swallowed = eventTaps_.deliver(type, event);
    if (!delivery.swallowed && frontmost_) {
        delivery.receiver = frontmost_;
        keyEventsReceivedByApplications_.push_back(
            {*frontmost_, type, event.integerValueField(KeyboardEventField::keycode)});
    }
    return delivery;
}

std::shared_ptr<SimulatedAccessibility> SimulatedDesktop::accessibilityPort() {
    return {shared_from_this(), &accessibility_};
}
std::shared_ptr<SimulatedWindowList> SimulatedDesktop::windowListPort() {
    return {shared_from_this(), &windowList_};
}
std::shared_ptr<SimulatedWorkspace> SimulatedDesktop::workspacePort() {
    return {shared_from_this(), &workspace_};
}
std::shared_ptr<SimulatedNotificationCenter> SimulatedDesktop::workspaceNotificationCenter() {
    return {shared_from_this(), &workspaceNotificationCenter_};
}
std::shared_ptr<SimulatedRunLoop> SimulatedDesktop::runLoopPort() {
    return {shared_from_this(), &runLoop_};
}
std::shared_ptr<SimulatedScreens> SimulatedDesktop::screensPort() {
    return {shared_from_this(), &screens_};
}
std::shared_ptr<SimulatedEventTap> SimulatedDesktop::eventTapPort() {
    return {shared_from_this(), &eventTaps_};
}
std::shared_ptr<SimulatedNotificationCenter> SimulatedDesktop::distributedNotificationCenter() {
    return {shared_from_this(), &distributedNotificationCenter_};
}

SimulatedApplication* SimulatedDesktop::application(ProcessIdentifier process) {
    auto found = applications_.find(process);
    return found == applications_.end() ? nullptr : &found->second;
}

const SimulatedApplication* SimulatedDesktop::application(ProcessIdentifier process) const {
    auto found = applications_.find(process);
    return found == applications_.end() ? nullptr : &found->second;
}

SimulatedWindow* SimulatedDesktop::window(WindowIdentifier identifier) {
    auto found = windows_.find(identifier);
    return found == windows_.end() ? nullptr : &found->second;
}

const SimulatedWindow* SimulatedDesktop::window(WindowIdentifier identifier) const {
    auto found = windows_.find(identifier);
    return found == windows_.end() ? nullptr : &found->second;
}

std::optional<WindowIdentifier> SimulatedDesktop::focusedWindow() const {
    if (!frontmost_) {
        return std::nullopt;
    }
    const auto* front = application(*frontmost_);
    return front != nullptr ? front->focusedWindow : std::nullopt;
}

void SimulatedDesktop::postWorkspaceNotification(const char* name, ProcessIdentifier process) {
    PlatformNotification notification;
    notification.name = name;
    if (const auto* subject = application(process)) {
        notification.application = subject->runningApplication;
    }
    runLoop_.post(
        [this, notification] { workspaceNotificationCenter_.postNotification(notification); });
}

void SimulatedDesktop::deliverAccessibilityNotification(ProcessIdentifier process,
                                                        WindowIdentifier window,
                                                        const char* notification) {
    accessibility_.deliver(
        process, std::make_shared<SimulatedAccessibilityElement>(process, window), notification);
}

bool SimulatedDesktop::launchApplication(SimulatedApplication launched) {
    const auto process = launched.runningApplication.processIdentifier;
    if (applications_.contains(process)) {
        return false;
    }
    if (!launched.runningApplication.launchDate) {
        launched.runningApplication.launchDate = runLoop_.now();
    }
    applications_.emplace(process, std::move(launched));
    launchOrder_.push_back(process);
    postWorkspaceNotification(workspace_notification::didLaunchApplication, process);
    return true;
}

bool SimulatedDesktop::terminateApplication(ProcessIdentifier process) {
    if (!applications_.contains(process)) {
        return false;
    }
    // The notification carries the application as it was.
    postWorkspaceNotification(workspace_notification::didTerminateApplication, process);
    std::erase_if(zOrder_, [&](WindowIdentifier identifier) {
        return windows_.at(identifier).owningProcessIdentifier == process;
    });
    std::erase_if(windows_, [&](const auto& entry) {
        return entry.second.owningProcessIdentifier == process;
    });
    applications_.erase(process);
    std::erase(launchOrder_, process);
    if (frontmost_ == process) {
        frontmost_.reset();
        // As on a real desktop, the application of the front window comes forward next.
        if (!zOrder_.empty()) {
            makeFrontmost(windows_.at(zOrder_.front()).owningProcessIdentifier);
        }
    }
    return true;
}

bool SimulatedDesktop::createWindow(SimulatedWindow created, bool inFront) {
    const auto identifier = created.windowIdentifier;
    const auto process = created.owningProcessIdentifier;
    if (identifier == 0 || windows_.contains(identifier) || !applications_.contains(process)) {
        return false;
    }
    if (!created.accessibilityTitle && created.listTitle) {
        created.accessibilityTitle = created.listTitle;
    }
    windows_.emplace(identifier, std::move(created));
    zOrder_.insert(inFront ? zOrder_.begin() : zOrder_.end(), identifier);
    deliverAccessibilityNotification(process, identifier, "AXWindowCreated");
    return true;
}

bool SimulatedDesktop::destroyWindow(WindowIdentifier identifier) {
    auto found = windows_.find(identifier);
    if (found == windows_.end()) {
        return false;
    }
    const auto process = found->second.owningProcessIdentifier;
    windows_.erase(found);
    std::erase(zOrder_, identifier);
    deliverAccessibilityNotification(process, identifier, "AXUIElementDestroyed");
    auto* owner = application(process);
    if (owner != nullptr && owner->focusedWindow == identifier) {
        owner->focusedWindow.reset();
        for (auto candidate : zOrder_) {
            if (windows_.at(candidate).owningProcessIdentifier == process &&
                !windows_.at(candidate).isMinimized) {
                owner->focusedWindow = candidate;
                if (frontmost_ == process) {
                    deliverAccessibilityNotification(process, candidate, "AXFocusedWindowChanged");
                }
                break;
            }
        }
    }
    return true;
}

bool SimulatedDesktop::setWindowMinimized(WindowIdentifier identifier, bool minimized) {
    auto* target = window(identifier);
    if (target == nullptr || target->isMinimized == minimized) {
        return false;
    }
    target->isMinimized = minimized;
    deliverAccessibilityNotification(target->owningProcessIdentifier, identifier,
                                     minimized ? "AXWindowMiniaturized" : "AXWindowDeminiaturized");
    return true;
}

bool SimulatedDesktop::makeFrontmost(ProcessIdentifier process) {
    if (frontmost_ == process) {
        return false;
    }
    frontmost_ = process;
    postWorkspaceNotification(workspace_notification::didActivateApplication, process);
    deliverAccessibilityNotification(process, 0, "AXApplicationActivated");
    return true;
}

void SimulatedDesktop::bringToFront(WindowIdentifier identifier) {
    std::erase(zOrder_, identifier);
    zOrder_.insert(zOrder_.begin(), identifier);
}

bool SimulatedDesktop::focusWindow(WindowIdentifier identifier) {
    auto* target = window(identifier);
    if (target == nullptr) {
        return false;
    }
    const auto process = target->owningProcessIdentifier;
    if (target->isMinimized) {
        setWindowMinimized(identifier, false);
    }
    const bool cameForward = makeFrontmost(process);
    bringToFront(identifier);
    auto* owner = application(process);
    // The desktop's focused window changes also when an application comes forward with the window
    // it had focused before.
    if (owner->focusedWindow != identifier || cameForward) {
        owner->focusedWindow = identifier;
        deliverAccessibilityNotification(process, identifier, "AXFocusedWindowChanged");
    }
    return true;
}

bool SimulatedDesktop::raiseWindow(WindowIdentifier identifier) {
    const auto* target = window(identifier);
    if (target == nullptr) {
        return false;
    }
    // Just in front of its application's frontmost window, which may stand behind others.
    const auto process = target->owningProcessIdentifier;
    const auto position = std::find(zOrder_.begin(), zOrder_.end(), identifier);
    const auto firstOfApplication =
        std::find_if(zOrder_.begin(), position, [&](WindowIdentifier other) {
            return windows_.at(other).owningProcessIdentifier == process;
        });
    std::rotate(firstOfApplication, position, position + 1);
    return true;
}

bool SimulatedDesktop::makeMainWindow(WindowIdentifier identifier) {
    const auto* target = window(identifier);
    if (target == nullptr) {
        return false;
    }
    auto* owner = application(target->owningProcessIdentifier);
    if (owner->focusedWindow == identifier) {
        return true;
    }
    owner->focusedWindow = identifier;
    if (frontmost_ == target->owningProcessIdentifier) {
        deliverAccessibilityNotification(target->owningProcessIdentifier, identifier,
                                         "AXFocusedWindowChanged");
    }
    return true;
}

bool SimulatedDesktop::activateApplication(ProcessIdentifier process) {
    if (!applications_.contains(process)) {
        return false;
    }
    // Its windows come in front of all others, keeping their own order.
    std::stable_partition(zOrder_.begin(), zOrder_.end(), [&](WindowIdentifier identifier) {
        return windows_.at(identifier).owningProcessIdentifier == process;
    });
    const auto focused = application(process)->focusedWindow;
    if (makeFrontmost(process) && focused) {
        deliverAccessibilityNotification(process, *focused, "AXFocusedWindowChanged");
    }
    return true;
}

}  // namespace orvane
