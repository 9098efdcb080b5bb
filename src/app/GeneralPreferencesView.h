// The General pane: login at startup, the menu bar icon, live previews and the overlay's layout,
// each control writing one field of the preferences at once. It reads the permissions whenever it
// is drawn and is drawn again when the application becomes active.
#pragma once

#include <memory>
#include <optional>

#include "app/LaunchAtLoginConfigurator.h"
#include "app/PreferencesPaneView.h"
#include "core/PermissionStatusProviding.h"
#include "platform/LoginItemPort.h"
#include "platform/NotificationCenterPort.h"
#include "preferences/PreferencesStore.h"

namespace orvane {

class GeneralPreferencesView final : public PreferencesPaneView {
  public:
    GeneralPreferencesView(std::shared_ptr<PreferencesStore> preferencesProvider,
                           std::shared_ptr<PermissionStatusProviding> permissionStatusProviding,
                           std::shared_ptr<LoginItemPort> loginItem,
                           std::shared_ptr<NotificationCenterPort> applicationNotifications);
    ~GeneralPreferencesView() override;
    GeneralPreferencesView(const GeneralPreferencesView&) = delete;
    GeneralPreferencesView& operator=(const GeneralPreferencesView&) = delete;

    PreferencesPaneContent content() override;
    // The login toggle hands the wish to the configurator, then shows what the system took.
    bool setToggle(std::string_view label, bool isOn) override;
    bool pick(std::string_view label, std::size_t segment) override;
    // "Open System Settings…" under the previews, while Screen Recording is not granted.
    bool press(std::string_view title) override;
    // Reads the login item's status.
    void appear() override;

  private:
    bool isScreenRecordingGranted();
    void readLoginStatus();

    std::shared_ptr<PreferencesStore> preferencesProvider_;
    std::shared_ptr<PermissionStatusProviding> permissionStatusProviding_;
    std::shared_ptr<LoginItemPort> loginItem_;
    std::shared_ptr<NotificationCenterPort> applicationNotifications_;
    LaunchAtLoginConfigurator launchAtLoginConfigurator_;
    bool launchAtLoginEnabled_ = false;
    ObservationToken preferencesObservation_ = 0;
    std::optional<NotificationObservationToken> becameActiveObservation_;
};

}  // namespace orvane
