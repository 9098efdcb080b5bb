#include "platform/x11/DesktopKeyboardSettings.h"

#include <gio/gdesktopappinfo.h>
#include <gio/gio.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <string_view>

#include "core/Logger.h"

namespace orvane {

namespace {

struct KnownSettings {
    // A part of the window manager's announced name, in lower case.
    std::string_view windowManager;
    std::string_view entry;
};

// Most specific names first: Cinnamon's and MATE's window managers name their ancestors too.
constexpr std::array<KnownSettings, 7> knownSettings{{
    {"xfwm4", "xfce-wm-settings.desktop"},
    {"muffin", "cinnamon-settings-keyboard.desktop"},
    {"marco", "mate-keybinding.desktop"},
    {"gnome shell", "gnome-keyboard-panel.desktop"},
    {"mutter", "gnome-keyboard-panel.desktop"},
    {"metacity", "gnome-keyboard-panel.desktop"},
    {"kwin", "kcm_keys.desktop"},
}};

std::string lowered(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
}

}  // namespace

DesktopKeyboardSettings::DesktopKeyboardSettings(const std::string& windowManagerName) {
    const auto manager = lowered(windowManagerName);
    for (const auto& known : knownSettings) {
        if (manager.find(known.windowManager) == std::string::npos) {
            continue;
        }
        const std::string entry(known.entry);
        if (GDesktopAppInfo* info = g_desktop_app_info_new(entry.c_str())) {
            entry_ = entry;
            name_ = g_app_info_get_name(G_APP_INFO(info));
            g_object_unref(info);
        }
        return;
    }
}

bool DesktopKeyboardSettings::open() const {
    GDesktopAppInfo* info = entry_.empty() ? nullptr : g_desktop_app_info_new(entry_.c_str());
    if (info == nullptr) {
        return false;
    }
    GAppLaunchContext* context = g_app_launch_context_new();
    GError* error = nullptr;
    const bool started = g_app_info_launch(G_APP_INFO(info), nullptr, context, &error);
    if (!started) {
        Logger::forCategory(LogCategory::permission)
            .error("could not start %{public}s: %{public}s", entry_,
                   error != nullptr ? error->message : "no reason given");
    }
    g_clear_error(&error);
    g_object_unref(context);
    g_object_unref(info);
    return started;
}

}  // namespace orvane
