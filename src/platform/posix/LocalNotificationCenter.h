// A notification centre inside the process: delivers each notification at once, on the thread
// that posts it, to the observers of its name in the order they subscribed.
#pragma once

#include <map>

#include "platform/NotificationCenterPort.h"

namespace orvane {

class LocalNotificationCenter : public NotificationCenterPort {
  public:
    NotificationObservationToken addObserver(
        const std::string& name,
        std::function<void(const PlatformNotification&)> observer) override;
    void removeObserver(NotificationObservationToken token) override;
    // Delivers at once; whoever posts goes through its run loop when delivery is to come later.
    void postNotification(const PlatformNotification& notification) override;

    std::size_t observerCount() const { return observers_.size(); }
    std::size_t observerCount(const std::string& name) const;

  private:
    struct Observation {
        std::string name;
        std::function<void(const PlatformNotification&)> observer;
    };
    std::map<NotificationObservationToken, Observation> observers_;
    NotificationObservationToken lastToken_ = 0;
};

}  // namespace orvane
