// The login item on a freedesktop session: an autostart entry in `$XDG_CONFIG_HOME/autostart`.
// It is on exactly when that file exists and does not hide itself (`Hidden`, or GNOME's
// `X-GNOME-Autostart-enabled=false`).
#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "platform/LoginItemPort.h"

namespace orvane {

class XdgAutostartLoginItem final : public LoginItemPort {
  public:
    // `executable` is what the entry starts; `note` says what else starts it on a desktop that
    // runs no autostart entries by itself.
    XdgAutostartLoginItem(std::filesystem::path entryFile, std::string executable,
                          std::optional<std::string> note = std::nullopt);
    // `$XDG_CONFIG_HOME/autostart/orvane.desktop`.
    static std::filesystem::path standardEntryFile();

    // Writes the entry whole (through a temporary file and a rename); the error's text on failure.
    std::optional<std::string> registerLoginItem() override;
    // Removes the entry; one that is missing already is no failure.
    std::optional<std::string> unregisterLoginItem() override;
    // A file that does not read counts as not registered.
    LoginItemStatus status() const override;
    std::optional<std::string> note() const override { return note_; }

  private:
    std::filesystem::path entryFile_;
    std::string executable_;
    std::optional<std::string> note_;
};

}  // namespace orvane
