// The application's top-level type: creates the one application delegate over the platform and
// routes the application object's lifecycle to it, as the toolkit's delegate adaptor does.
#pragma once

#include <memory>
#include <optional>

#include "app/OrvaneApplicationDelegate.h"

namespace orvane {

class OrvaneApp {
  public:
    // Constructs the delegate, and with it every service; nothing runs yet.
    explicit OrvaneApp(OrvaneApplicationDelegate::Platform platform);
    ~OrvaneApp();
    OrvaneApp(const OrvaneApp&) = delete;
    OrvaneApp& operator=(const OrvaneApp&) = delete;

    // The application has finished launching: the delegate starts the engine, and from now on
    // hears of the application becoming active.
    void finishLaunching();
    // The application terminates: the delegate tears down; nothing reaches it afterwards.
    void terminate();
    bool hasTerminated() const { return hasTerminated_; }

    const std::shared_ptr<OrvaneApplicationDelegate>& delegate() const { return delegate_; }

  private:
    std::shared_ptr<NotificationCenterPort> applicationNotifications_;
    std::shared_ptr<OrvaneApplicationDelegate> delegate_;
    std::optional<NotificationObservationToken> didBecomeActiveObservation_;
    bool hasTerminated_ = false;
};

}  // namespace orvane
