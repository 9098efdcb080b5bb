// The panes of the Settings window, and the route that opens the window on one of them.
#pragma once

#include <array>
#include <functional>
#include <optional>
#include <string_view>

#include "platform/NotificationCenterPort.h"

namespace orvane {

enum class SettingsPane { general, shortcuts, about };

inline constexpr std::array<SettingsPane, 3> allSettingsPanes{
    SettingsPane::general, SettingsPane::shortcuts, SettingsPane::about};

inline constexpr const char* openSettingsPaneNotificationName =
    "brimcote.orvane.open-settings-pane";
inline constexpr const char* settingsPaneUserInfoKey = "pane";

// Raw values equal the case names; conversion from a string is exact (case-sensitive).
std::string_view rawValue(SettingsPane pane);
std::optional<SettingsPane> settingsPaneFromRawValue(std::string_view raw);
// The title the Settings window shows for the pane ("General", "Shortcuts", "About").
std::string_view displayTitle(SettingsPane pane);

// Posts the open-settings notification with the pane's raw value under "pane", then calls
// `activateIgnoringOtherApps`, then `showSettingsWindow`, which sends the action up the responder
// chain and answers whether any responder handled it; when none did, an error is logged. Main
// thread only. The two callbacks stand for the application object, which has no port yet.
void openSettingsPane(SettingsPane pane, NotificationCenterPort& notificationCenter,
                      const std::function<void()>& activateIgnoringOtherApps,
                      const std::function<bool()>& showSettingsWindow);

}  // namespace orvane
