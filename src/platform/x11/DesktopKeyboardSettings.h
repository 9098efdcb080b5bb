// The desktop's own settings for keyboard shortcuts, where the running window manager has them
// (xfwm4's Window Manager settings, Cinnamon's and MATE's keyboard shortcuts, GNOME's and KDE's
// shortcut pages), found as installed desktop entries and started through GIO.
#pragma once

#include <string>

namespace orvane {

class DesktopKeyboardSettings {
  public:
    // `windowManagerName` as the window manager announces itself ("Xfwm4", "Mutter (Muffin)").
    explicit DesktopKeyboardSettings(const std::string& windowManagerName);

    // Whether this desktop has such settings installed.
    bool isAvailable() const { return !entry_.empty(); }
    // Their name, as the applications menu shows it; empty when unavailable.
    const std::string& name() const { return name_; }
    // Starts them; false, after an error line, when they could not start.
    bool open() const;

  private:
    std::string entry_;
    std::string name_;
};

}  // namespace orvane
