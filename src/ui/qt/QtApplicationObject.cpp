#include "ui/qt/QtApplicationObject.h"

#include "core/Logger.h"

namespace orvane {

QtApplicationObject::QtApplicationObject(std::shared_ptr<NotificationCenterPort> notifications)
    : notifications_(std::move(notifications)) {}

std::vector<PlatformWindowHandle> QtApplicationObject::windows() const {
    std::vector<PlatformWindowHandle> handles;
    for (const auto& [handle, window] : windows_) {
        handles.push_back(handle);
    }
    return handles;
}

void QtApplicationObject::setActivationPolicy(ApplicationActivationPolicy policy) {
    policy_ = policy;
}

void QtApplicationObject::activate() {
    notifications_->postNotification(PlatformNotification{applicationDidBecomeActiveNotification});
}

PlatformWindowHandle QtApplicationObject::makeWindow(std::shared_ptr<HostedView> content) {
    const auto handle = ++lastHandle_;
    windows_[handle].content = std::move(content);
    return handle;
}

void QtApplicationObject::setTitle(PlatformWindowHandle window, const std::string& title) {
    if (auto found = windows_.find(window); found != windows_.end()) {
        found->second.title = title;
    }
}

void QtApplicationObject::setStyleMask(PlatformWindowHandle window, std::uint64_t styleMask) {
    if (auto found = windows_.find(window); found != windows_.end()) {
        found->second.styleMask = styleMask;
    }
}

void QtApplicationObject::makeKeyAndOrderFront(PlatformWindowHandle window) {
    auto found = windows_.find(window);
    if (found == windows_.end()) {
        return;
    }
    found->second.visible = true;
    Logger::forCategory(LogCategory::lifecycle)
        .info("window \"%{public}s\" is open; this desktop does not draw it yet",
              found->second.title);
}

void QtApplicationObject::close(PlatformWindowHandle window) {
    auto found = windows_.find(window);
    if (found == windows_.end() || !found->second.visible) {
        return;
    }
    notifications_->postNotification(
        PlatformNotification{windowWillCloseNotification, std::nullopt, {}, window});
    if (auto still = windows_.find(window); still != windows_.end()) {
        still->second.visible = false;
    }
}

bool QtApplicationObject::isVisible(PlatformWindowHandle window) const {
    auto found = windows_.find(window);
    return found != windows_.end() && found->second.visible;
}

std::uint64_t QtApplicationObject::styleMask(PlatformWindowHandle window) const {
    auto found = windows_.find(window);
    return found == windows_.end() ? 0 : found->second.styleMask;
}

}  // namespace orvane
