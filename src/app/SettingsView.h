// The Settings window's root: three tabs in a fixed 580 by 600 frame, the pane each tab shows, and
// the window title that follows the selected tab. It opens on the pane that an open-settings
// notification names, for as long as it exists.
#pragma once

#include <array>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "app/AboutPreferencesView.h"
#include "app/GeneralPreferencesView.h"
#include "app/ShortcutPreferencesView.h"
#include "core/Geometry.h"
#include "platform/ApplicationPort.h"
#include "preferences/SettingsPane.h"

namespace orvane {

class SettingsView final : public std::enable_shared_from_this<SettingsView> {
  public:
    static constexpr Size frame{580, 600};

    struct Tab {
        const char* title;
        // The platform's symbol name.
        const char* symbol;
        SettingsPane pane;
    };
    static constexpr std::array<Tab, 3> tabs{{{"General", "gearshape", SettingsPane::general},
                                              {"Shortcuts", "keyboard", SettingsPane::shortcuts},
                                              {"About", "info.circle", SettingsPane::about}}};

    struct Dependencies {
        std::shared_ptr<PreferencesStore> preferencesProvider{};
        std::shared_ptr<PermissionStatusProviding> permissionStatusProviding{};
        std::shared_ptr<SoftwareUpdateService> softwareUpdateService{};
        std::function<void()> showWelcomeWindow{};
        std::shared_ptr<LoginItemPort> loginItem{};
        std::shared_ptr<BundlePort> bundle{};
        std::shared_ptr<RunLoopPort> mainRunLoop{};
        std::shared_ptr<ApplicationPort> application{};
        // Where the open-settings notification and the application's activation are posted.
        std::shared_ptr<NotificationCenterPort> applicationNotifications{};
    };

    // Builds the three panes, starting on General, and starts listening.
    static std::shared_ptr<SettingsView> make(Dependencies dependencies);
    ~SettingsView();
    SettingsView(const SettingsView&) = delete;
    SettingsView& operator=(const SettingsView&) = delete;

    Observable<SettingsPane>& selectedPane() { return selectedPane_; }
    // The tab bar's selection. While the window shows, the pane left disappears and the new one
    // appears.
    void select(SettingsPane pane);
    PreferencesPaneView& pane(SettingsPane pane);

    // "Orvane Settings — General", for the selected pane.
    std::string title() const;

    // The window now hosting the view, or none; the title goes to it after every update.
    void attach(std::optional<PlatformWindowHandle> window);
    // The window came on screen or left it: the selected pane appears or disappears with it.
    void windowDidShow();
    void windowDidHide();
    // The view was updated: its title reaches the window on a later turn of the main loop, never
    // during the update, and only while the view stands in a window.
    void didUpdate();

  private:
    explicit SettingsView(Dependencies dependencies);
    void listen();

    Dependencies dependencies_;
    GeneralPreferencesView general_;
    ShortcutPreferencesView shortcuts_;
    std::shared_ptr<AboutPreferencesView> about_;
    Observable<SettingsPane> selectedPane_{SettingsPane::general};
    std::optional<PlatformWindowHandle> window_;
    bool isShowing_ = false;
    std::optional<NotificationObservationToken> paneObservation_;
};

}  // namespace orvane
