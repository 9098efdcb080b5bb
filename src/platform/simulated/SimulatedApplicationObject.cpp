#include "platform/simulated/SimulatedApplicationObject.h"

#include <iterator>
#include <utility>

namespace orvane {

SimulatedApplicationObject::SimulatedApplicationObject(
    std::shared_ptr<NotificationCenterPort> applicationNotifications,
    ApplicationActivationPolicy initialPolicy, std::shared_ptr<RunLoopPort> runLoop)
    : applicationNotifications_(std::move(applicationNotifications)),
      runLoop_(std::move(runLoop)),
      activationPolicy_(initialPolicy) {}

std::vector<PlatformWindowHandle> SimulatedApplicationObject::windows() const {
    std::vector<PlatformWindowHandle> handles;
    for (const auto& [handle, entry] : windows_) {
        handles.push_back(handle);
    }
    return handles;
}

void SimulatedApplicationObject::setActivationPolicy(ApplicationActivationPolicy policy) {
    activationPolicy_ = policy;
    activationPolicyHistory_.push_back(policy);
}

void SimulatedApplicationObject::activate() {
    const bool wasActive = isActive_;
    isActive_ = true;
    ++activationCount_;
    if (!wasActive && runLoop_) {
        runLoop_->post([notifications = applicationNotifications_] {
            PlatformNotification notification;
            notification.name = applicationDidBecomeActiveNotification;
            notifications->postNotification(notification);
        });
    }
}

bool SimulatedApplicationObject::showSettingsWindow() {
    ++showSettingsWindowCount_;
    if (showSettingsWindowResult_ && settingsWindowOpener_) {
        settingsWindowOpener_();
    }
    return showSettingsWindowResult_;
}

void SimulatedApplicationObject::orderFrontStandardAboutPanel(
    std::optional<ImageHandle> applicationIcon) {
    aboutPanels_.push_back(std::move(applicationIcon));
}

std::optional<ImageHandle> SimulatedApplicationObject::imageNamed(const std::string& name) const {
    const auto found = imageNames_.find(name);
    if (found == imageNames_.end()) {
        return std::nullopt;
    }
    ImageHandle image;
    image.identifier = static_cast<std::uint64_t>(std::distance(imageNames_.begin(), found)) + 1;
    image.pixelWidth = image.pixelHeight = 512;
    image.description = name;
    return image;
}

void SimulatedApplicationObject::terminate() {
    if (!terminationHandler_) {
        return;
    }
    if (runLoop_) {
        runLoop_->post(terminationHandler_);
    } else {
        terminationHandler_();
    }
}

PlatformWindowHandle SimulatedApplicationObject::makeWindow(std::shared_ptr<HostedView> content) {
    const auto handle = ++lastHandle_;
    Window window;
    window.handle = handle;
    window.content = std::move(content);
    windows_.emplace(handle, Entry{std::move(window)});
    return handle;
}

void SimulatedApplicationObject::setTitle(PlatformWindowHandle window, const std::string& title) {
    if (auto* entry = find(window)) {
        entry->window.title = title;
    }
}

void SimulatedApplicationObject::setStyleMask(PlatformWindowHandle window,
                                              std::uint64_t styleMask) {
    if (auto* entry = find(window)) {
        entry->window.styleMask = styleMask;
    }
}

void SimulatedApplicationObject::setReleasedWhenClosed(PlatformWindowHandle window, bool released) {
    if (auto* entry = find(window)) {
        entry->window.isReleasedWhenClosed = released;
    }
}

void SimulatedApplicationObject::center(PlatformWindowHandle window) {
    if (auto* entry = find(window)) {
        entry->window.isCentered = true;
    }
}

void SimulatedApplicationObject::makeKeyAndOrderFront(PlatformWindowHandle window) {
    if (auto* entry = find(window)) {
        entry->window.isVisible = true;
        entry->isClosed = false;
        keyWindow_ = window;
    }
}

void SimulatedApplicationObject::close(PlatformWindowHandle window) {
    auto* entry = find(window);
    if (entry == nullptr || entry->isClosed) {
        return;
    }
    // Marked first, so that an observer closing the same window again finds nothing to do.
    entry->isClosed = true;
    PlatformNotification notification;
    notification.name = windowWillCloseNotification;
    notification.object = window;
    applicationNotifications_->postNotification(notification);
    // Observers may have closed or made windows: look the window up again.
    entry = find(window);
    if (entry == nullptr) {
        return;
    }
    entry->window.isVisible = false;
    if (keyWindow_ == window) {
        keyWindow_.reset();
    }
    if (entry->window.isReleasedWhenClosed) {
        windows_.erase(window);
    }
}

bool SimulatedApplicationObject::isVisible(PlatformWindowHandle window) const {
    const auto* entry = find(window);
    return entry != nullptr && entry->window.isVisible;
}

std::uint64_t SimulatedApplicationObject::styleMask(PlatformWindowHandle window) const {
    const auto* entry = find(window);
    return entry != nullptr ? entry->window.styleMask : 0;
}

bool SimulatedApplicationObject::isPanel(PlatformWindowHandle window) const {
    const auto* entry = find(window);
    return entry != nullptr && entry->window.isPanel;
}

PlatformWindowHandle SimulatedApplicationObject::addWindow(const std::string& title,
                                                           std::uint64_t styleMask, bool isPanel,
                                                           bool visible) {
    const auto handle = makeWindow(nullptr);
    auto& window = windows_.at(handle).window;
    window.title = title;
    window.styleMask = styleMask;
    window.isPanel = isPanel;
    window.isVisible = visible;
    window.isReleasedWhenClosed = false;
    windows_.at(handle).isClosed = !visible;
    return handle;
}

std::optional<SimulatedApplicationObject::Window> SimulatedApplicationObject::window(
    PlatformWindowHandle window) const {
    const auto* entry = find(window);
    if (entry == nullptr) {
        return std::nullopt;
    }
    return entry->window;
}

SimulatedApplicationObject::Entry* SimulatedApplicationObject::find(PlatformWindowHandle window) {
    const auto found = windows_.find(window);
    return found != windows_.end() ? &found->second : nullptr;
}

const SimulatedApplicationObject::Entry* SimulatedApplicationObject::find(
    PlatformWindowHandle window) const {
    const auto found = windows_.find(window);
    return found != windows_.end() ? &found->second : nullptr;
}

}  // namespace orvane
