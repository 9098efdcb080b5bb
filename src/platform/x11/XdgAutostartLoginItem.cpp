#include "platform/x11/XdgAutostartLoginItem.h"

#include <glib.h>

#include <fstream>
#include <system_error>
#include <utility>

namespace orvane {

namespace {

// Exec quoting of the Desktop Entry rules: reserved characters in double quotes, with `"`, `` ` ``,
// `$` and `\` escaped.
std::string quotedExec(const std::string& executable) {
    std::string quoted = "\"";
    for (char character : executable) {
        if (character == '"' || character == '`' || character == '$' || character == '\\') {
            quoted += '\\';
        }
        quoted += character;
    }
    return quoted + "\"";
}

}  // namespace

XdgAutostartLoginItem::XdgAutostartLoginItem(std::filesystem::path entryFile,
                                             std::string executable,
                                             std::optional<std::string> note)
    : entryFile_(std::move(entryFile)),
      executable_(std::move(executable)),
      note_(std::move(note)) {}

std::filesystem::path XdgAutostartLoginItem::standardEntryFile() {
    return std::filesystem::path(g_get_user_config_dir()) / "autostart" / "orvane.desktop";
}

std::optional<std::string> XdgAutostartLoginItem::registerLoginItem() {
    std::error_code error;
    std::filesystem::create_directories(entryFile_.parent_path(), error);
    if (error) {
        return "cannot create " + entryFile_.parent_path().string() + ": " + error.message();
    }
    auto temporary = entryFile_;
    temporary += ".new";
    {
        std::ofstream file(temporary, std::ios::trunc);
        file << "[Desktop Entry]\n"
                "Type=Application\n"
                "Name=Orvane\n"
                "Comment=Switch windows by recency from the keyboard\n"
                "Exec="
             << quotedExec(executable_)
             << "\n"
                "Icon=orvane\n"
                "Terminal=false\n"
                "X-GNOME-Autostart-enabled=true\n";
        if (!file.flush()) {
            std::filesystem::remove(temporary, error);
            return "cannot write " + temporary.string();
        }
    }
    std::filesystem::rename(temporary, entryFile_, error);
    if (error) {
        std::filesystem::remove(temporary, error);
        return "cannot write " + entryFile_.string() + ": " + error.message();
    }
    return std::nullopt;
}

std::optional<std::string> XdgAutostartLoginItem::unregisterLoginItem() {
    std::error_code error;
    std::filesystem::remove(entryFile_, error);
    if (error) {
        return "cannot remove " + entryFile_.string() + ": " + error.message();
    }
    return std::nullopt;
}

LoginItemStatus XdgAutostartLoginItem::status() const {
    GKeyFile* file = g_key_file_new();
    const bool loaded =
        g_key_file_load_from_file(file, entryFile_.c_str(), G_KEY_FILE_NONE, nullptr) != FALSE;
    const auto flag = [file](const char* key, bool fallback) {
        GError* error = nullptr;
        const bool value =
            g_key_file_get_boolean(file, G_KEY_FILE_DESKTOP_GROUP, key, &error) != FALSE;
        const bool present = error == nullptr;
        g_clear_error(&error);
        return present ? value : fallback;
    };
    const bool enabled =
        loaded && !flag("Hidden", false) && flag("X-GNOME-Autostart-enabled", true);
    g_key_file_free(file);
    return enabled ? LoginItemStatus::enabled : LoginItemStatus::notRegistered;
}

}  // namespace orvane
