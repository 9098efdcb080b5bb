// The program's permissions on a Linux desktop, as the desktop has them. "Accessibility" is the
// keyboard shortcut: granted exactly while Orvane holds its required chord or could take it now,
// missing while another program holds it. "Screen Recording" is window previews: granted when the
// display server can capture windows. Their settings are Orvane's own help pages, shown in a
// window of its own; other links open with the desktop's opener.
#pragma once

#include <functional>
#include <string>

#include "platform/PermissionPort.h"

namespace orvane {

class LinuxPermissions final : public PermissionPort {
  public:
    struct Conditions {
        // Whether the required chord is Orvane's, or free to take.
        std::function<bool()> holdsShortcut;
        // The required chord in the desktop's words ("Alt+Tab").
        std::function<std::string()> shortcutName;
        // The window manager as it names itself; empty when it says nothing.
        std::function<std::string()> windowManagerName;
        std::function<bool()> canCaptureWindows;
        // Shows the help page at the address given (a "qrc:" address with its section), with what
        // keeps that capability away now; empty when nothing does.
        std::function<void(const std::string& address, const std::string& reason)> showHelp;
        // Why the shortcut is not Orvane's where the desktop has its own story (Wayland); empty
        // for the X11 one.
        std::function<std::string()> shortcutMissingReason;
        // Why windows can't be captured; empty for the X11 one.
        std::string captureMissingReason;
    };

    // The help page, compiled into the program, and its two sections.
    static constexpr const char* keyboardShortcutHelp = "qrc:/orvane/help.html#keyboard-shortcut";
    static constexpr const char* windowPreviewsHelp = "qrc:/orvane/help.html#window-previews";

    explicit LinuxPermissions(Conditions conditions) : conditions_(std::move(conditions)) {}

    bool isProcessTrusted() override { return conditions_.holdsShortcut(); }
    // Trying again is all there is to ask on this desktop.
    bool isProcessTrustedWithPrompt() override { return conditions_.holdsShortcut(); }
    bool preflightScreenCaptureAccess() override { return conditions_.canCaptureWindows(); }
    bool requestScreenCaptureAccess() override { return conditions_.canCaptureWindows(); }
    void openURL(const std::string& url) override;
    std::string settingsLink(PermissionCapability capability) const override;
    std::string missingReason(PermissionCapability capability) override;

  private:
    Conditions conditions_;
};

}  // namespace orvane
