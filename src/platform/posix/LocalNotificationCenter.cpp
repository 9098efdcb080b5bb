#include "platform/posix/LocalNotificationCenter.h"

#include <algorithm>
#include <vector>

namespace orvane {

NotificationObservationToken LocalNotificationCenter::addObserver(
    const std::string& name, std::function<void(const PlatformNotification&)> observer) {
    const auto token = ++lastToken_;
    observers_.emplace(token, Observation{name, std::move(observer)});
    return token;
}

void LocalNotificationCenter::removeObserver(NotificationObservationToken token) {
    observers_.erase(token);
}

void LocalNotificationCenter::postNotification(const PlatformNotification& notification) {
    // Observers may come and go while one is told, so the receivers are fixed first.
    std::vector<NotificationObservationToken> receivers;
    for (const auto& [token, observation] : observers_) {
        if (observation.name == notification.name) {
            receivers.push_back(token);
        }
    }
    for (auto token : receivers) {
        auto found = observers_.find(token);
        if (found != observers_.end()) {
            auto observer = found->second.observer;
            observer(notification);
        }
    }
}

std::size_t LocalNotificationCenter::observerCount(const std::string& name) const {
    return static_cast<std::size_t>(
        std::count_if(observers_.begin(), observers_.end(),
                      [&](const auto& entry) { return entry.second.name == name; }));
}

}  // namespace orvane
