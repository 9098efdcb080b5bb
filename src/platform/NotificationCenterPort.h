// A notification centre of the platform (the workspace's, the distributed one, the application's):
// named notifications delivered to observers on the main run loop.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>

#include "platform/RunningApplication.h"

namespace orvane {

using NotificationObservationToken = std::uint64_t;

struct PlatformNotification {
    std::string name;
    // The workspace's application key, when the notification is about an application.
    std::optional<RunningApplication> application = std::nullopt;
    std::map<std::string, std::string> userInfo = {};
    // The object the notification is about, such as the window that closes.
    std::optional<std::uint64_t> object = std::nullopt;
};

namespace workspace_notification {
inline constexpr const char* didActivateApplication =
    "NSWorkspaceDidActivateApplicationNotification";
inline constexpr const char* didLaunchApplication = "NSWorkspaceDidLaunchApplicationNotification";
inline constexpr const char* didTerminateApplication =
    "NSWorkspaceDidTerminateApplicationNotification";
inline constexpr const char* willSleep = "NSWorkspaceWillSleepNotification";
inline constexpr const char* screensDidSleep = "NSWorkspaceScreensDidSleepNotification";
inline constexpr const char* sessionDidResignActive =
    "NSWorkspaceSessionDidResignActiveNotification";
}  // namespace workspace_notification

class NotificationCenterPort {
  public:
    virtual ~NotificationCenterPort() = default;

    // Calls `observer` on the main run loop for every notification of that name. The token ends it.
    virtual NotificationObservationToken addObserver(
        const std::string& name, std::function<void(const PlatformNotification&)> observer) = 0;
    virtual void removeObserver(NotificationObservationToken token) = 0;
    virtual void postNotification(const PlatformNotification& notification) = 0;
};

}  // namespace orvane
