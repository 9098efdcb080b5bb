#include "permissions/PermissionStatusCoordinator.h"

#include <algorithm>
#include <cctype>
#include <string>
#include <utility>

#include "core/Logger.h"

namespace orvane {

namespace {

const Logger& permissionLog() {
    return Logger::forCategory(LogCategory::permission);
}

// What a URL parser would refuse: no scheme, an empty remainder, or white space anywhere.
bool isWellFormedURL(std::string_view text) {
    const auto colon = text.find(':');
    if (colon == std::string_view::npos || colon == 0 || colon + 1 == text.size()) {
        return false;
    }
    if (std::isalpha(static_cast<unsigned char>(text.front())) == 0) {
        return false;
    }
    return std::none_of(text.begin(), text.end(),
                        [](char c) { return std::isspace(static_cast<unsigned char>(c)) != 0; });
}

}  // namespace

std::shared_ptr<PermissionStatusCoordinator> PermissionStatusCoordinator::make(
    std::shared_ptr<PermissionPort> permissions, std::shared_ptr<RunLoopPort> mainRunLoop,
    std::shared_ptr<NotificationCenterPort> applicationNotifications) {
    std::shared_ptr<PermissionStatusCoordinator> coordinator(new PermissionStatusCoordinator(
        std::move(permissions), std::move(mainRunLoop), std::move(applicationNotifications)));
    coordinator->refresh();
    // Registered only now, since a weak reference to the coordinator exists only once it is owned.
    std::weak_ptr<PermissionStatusCoordinator> weak = coordinator;
    coordinator->applicationDidBecomeActiveObserver_ =
        coordinator->applicationNotifications_->addObserver(applicationDidBecomeActiveNotification,
                                                            [weak](const PlatformNotification&) {
                                                                if (auto strong = weak.lock()) {
                                                                    strong->refresh();
                                                                }
                                                            });
    return coordinator;
}

PermissionStatusCoordinator::PermissionStatusCoordinator(
    std::shared_ptr<PermissionPort> permissions, std::shared_ptr<RunLoopPort> mainRunLoop,
    std::shared_ptr<NotificationCenterPort> applicationNotifications)
    : permissions_(std::move(permissions)),
      mainRunLoop_(std::move(mainRunLoop)),
      applicationNotifications_(std::move(applicationNotifications)) {}

PermissionStatusCoordinator::~PermissionStatusCoordinator() {
    if (applicationDidBecomeActiveObserver_) {
        applicationNotifications_->removeObserver(*applicationDidBecomeActiveObserver_);
    }
    stopPolling();
}

PermissionGrantStatus PermissionStatusCoordinator::liveStatus(PermissionCapability capability) {
    const bool granted = capability == PermissionCapability::accessibility
                             ? permissions_->isProcessTrusted()
                             : permissions_->preflightScreenCaptureAccess();
    return granted ? PermissionGrantStatus::granted : PermissionGrantStatus::notGranted;
}

PermissionGrantStatus PermissionStatusCoordinator::status(PermissionCapability capability) {
    const auto live = liveStatus(capability);
    const auto& table = statusByCapability_.value();
    const auto entry = table.find(capability);
    // Views call this while drawing; an unchanged answer must not make them draw again.
    if (entry != table.end() && entry->second == live) {
        return live;
    }
    auto updated = table;
    updated[capability] = live;
    statusByCapability_.replace(std::move(updated));
    return live;
}

void PermissionStatusCoordinator::refresh() {
    PermissionStatusTable fresh;
    for (auto capability : allPermissionCapabilities) {
        fresh[capability] = liveStatus(capability);
    }
    const auto& current = statusByCapability_.value();
    if (fresh == current) {
        return;
    }
    for (auto capability : allPermissionCapabilities) {
        const auto before = current.find(capability);
        if (before == current.end() || before->second != fresh.at(capability)) {
            permissionLog().info("permission status changed: %{public}s -> %{public}s",
                                 logName(capability), logName(fresh.at(capability)));
        }
    }
    const auto before = current.find(PermissionCapability::accessibility);
    const bool wasGranted =
        before != current.end() && before->second == PermissionGrantStatus::granted;
    statusByCapability_.replace(std::move(fresh));
    const bool nowNotGranted =
        statusByCapability_.value().at(PermissionCapability::accessibility) ==
        PermissionGrantStatus::notGranted;
    if (wasGranted && nowNotGranted && accessibilityRevocationHandler_) {
        // A copy, since the handler may replace itself while it runs.
        auto handler = *accessibilityRevocationHandler_;
        handler();
    }
}

void PermissionStatusCoordinator::requestAccess(PermissionCapability capability) {
    permissionLog().info("requesting permission for %{public}s", logName(capability));
    if (capability == PermissionCapability::screenRecording) {
        const bool given = permissions_->requestScreenCaptureAccess();
        permissionLog().info("screen recording access request returned: %{bool,public}d", given);
    } else {
        const bool trusted = permissions_->isProcessTrustedWithPrompt();
        permissionLog().info("accessibility trust prompt fired, currently trusted: %{bool,public}d",
                             trusted);
    }
    refresh();
}

void PermissionStatusCoordinator::openSystemSettings(PermissionCapability capability) {
    const auto link = permissions_->settingsLink(capability);
    if (!isWellFormedURL(link)) {
        permissionLog().error("malformed System Settings deep link: %{public}s", link);
        return;
    }
    permissionLog().info("opening System Settings for %{public}s", logName(capability));
    permissions_->openURL(link);
}

void PermissionStatusCoordinator::startPolling() {
    if (pollingTimer_) {
        return;
    }
    refresh();
    std::weak_ptr<PermissionStatusCoordinator> weak = weak_from_this();
    pollingTimer_ = mainRunLoop_->scheduleTimer(pollingInterval, true, pollingTolerance, [weak]() {
        if (auto strong = weak.lock()) {
            strong->refresh();
        }
    });
}

void PermissionStatusCoordinator::stopPolling() {
    if (pollingTimer_) {
        mainRunLoop_->cancelTimer(*pollingTimer_);
        pollingTimer_.reset();
    }
}

std::string_view PermissionStatusCoordinator::logName(PermissionCapability capability) {
    return capability == PermissionCapability::accessibility ? "accessibility" : "screenRecording";
}

std::string_view PermissionStatusCoordinator::logName(PermissionGrantStatus status) {
    return status == PermissionGrantStatus::granted ? "granted" : "notGranted";
}

std::string_view PermissionStatusCoordinator::displayTitle(PermissionCapability capability) {
    return capability == PermissionCapability::accessibility ? "Accessibility" : "Screen Recording";
}

std::string PermissionStatusCoordinator::missingReason(PermissionCapability capability) {
    return permissions_->missingReason(capability);
}

}  // namespace orvane
