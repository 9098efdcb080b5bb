// The application's top-level type: creates the one application delegate over the platform and
// routes the application object's lifecycle to it, as the toolkit's delegate adaptor does. Its two
// scenes are the menu bar's icon with its menu, and the Settings window's root view.
#pragma once

#include <memory>
#include <optional>

#include "app/MenuBarScene.h"
#include "app/OrvaneApplicationDelegate.h"
#include "app/SettingsView.h"

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
    MenuBarScene& menuBarScene() { return *menuBarScene_; }
    // Built with the application, so that it hears every open-settings notification.
    const std::shared_ptr<SettingsView>& settingsView() const { return settingsView_; }

  private:
    std::shared_ptr<NotificationCenterPort> applicationNotifications_;
    std::shared_ptr<OrvaneApplicationDelegate> delegate_;
    std::shared_ptr<SettingsView> settingsView_;
    std::unique_ptr<MenuBarScene> menuBarScene_;
    std::optional<NotificationObservationToken> didBecomeActiveObservation_;
    bool hasTerminated_ = false;
};

}  // namespace orvane
