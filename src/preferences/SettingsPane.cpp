#include "preferences/SettingsPane.h"

#include "core/Logger.h"

namespace orvane {

std::string_view rawValue(SettingsPane pane) {
    switch (pane) {
        case SettingsPane::general:
            return "general";
        case SettingsPane::shortcuts:
            return "shortcuts";
        case SettingsPane::about:
            return "about";
    }
    return "general";
}

std::optional<SettingsPane> settingsPaneFromRawValue(std::string_view raw) {
    for (const auto pane : allSettingsPanes) {
        if (rawValue(pane) == raw) {
            return pane;
        }
    }
    return std::nullopt;
}

std::string_view displayTitle(SettingsPane pane) {
    switch (pane) {
        case SettingsPane::general:
            return "General";
        case SettingsPane::shortcuts:
            return "Shortcuts";
        case SettingsPane::about:
            return "About";
    }
    return "General";
}

void openSettingsPane(SettingsPane pane, NotificationCenterPort& notificationCenter,
                      const std::function<void()>& activateIgnoringOtherApps,
                      const std::function<bool()>& showSettingsWindow) {
    // The notification goes first, so that an existing Settings view switches its pane before the
    // window is raised.
    notificationCenter.postNotification({openSettingsPaneNotificationName,
                                         std::nullopt,
                                         {{settingsPaneUserInfoKey, std::string(rawValue(pane))}}});
    activateIgnoringOtherApps();
    if (!showSettingsWindow()) {
        Logger::forCategory(LogCategory::preferences)
            .error("showSettingsWindow: action was not handled");
    }
}

}  // namespace orvane
