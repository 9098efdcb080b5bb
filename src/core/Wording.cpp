#include "core/Wording.h"

#include <algorithm>
#include <cctype>

namespace orvane {

namespace {

constexpr std::string_view noPrivateFocus =
    "windows are brought forward through the window manager";
constexpr std::string_view shortcutNotYet = "the keyboard shortcut is not Orvane's yet";
constexpr std::string_view emptyWindowList = "the window manager lists no windows";

}  // namespace

Wording Wording::linuxDesktop() {
    return Wording(
        {
            // Whole sentences whose meaning changes, before the words they contain.
            {"Command isn't offered — macOS's own app switcher owns Command-Tab.",
             "Super isn't offered: the desktop keeps it for its own shortcuts."},
            {"Accessibility lets Orvane list your windows, switch between them, and react to "
             "Option-Tab.",
             "Orvane reacts to Alt+Tab only while no other program, such as the window manager, "
             "holds that shortcut."},
            {"Screen Recording adds live window previews — optional.",
             "Live pictures of your windows on the cards — optional."},
            {"Orvane needs Accessibility access to list your windows, switch between them, and "
             "react to Option-Tab.",
             "Orvane needs its shortcut to itself: while another program holds it, Orvane cannot "
             "react to it."},
            {"Orvane can list and switch your windows. Screen Recording is optional — it only "
             "adds live previews.",
             "Orvane holds its shortcut and can switch your windows. Window previews are "
             "optional."},
            {"Orvane cannot switch windows without Accessibility. Click \"Open Accessibility "
             "Settings…\", then enable Orvane in the list.",
             "Another program holds Orvane's shortcut. Click \"Keyboard Shortcut Help…\" to see "
             "how to free it; Orvane takes it by itself once it is free."},
            {"Live previews require Screen Recording",
             "Live previews need a display server that can capture windows"},
            {"Accessibility permission granted", "Keyboard shortcut active"},
            {"Open Accessibility Settings…", "Keyboard Shortcut Help…"},
            {"Open Screen Recording Settings…", "Window Previews Help…"},
            {"Open System Settings…", "Learn More…"},
            {"Open System Settings", "Learn More…"},
            {"Allow…", "Try Again"},
            {"Accessibility access", "Keyboard shortcut"},
            {"Screen Recording access", "Window previews"},
            {"Accessibility granted", "Keyboard shortcut ready"},
            {"Screen Recording granted", "Window previews ready"},
            {"Not granted", "Unavailable"},
            {"Granted", "Ready"},
            {"Bundle ID", "Application ID"},
            {"Menu Bar", "Tray Icon"},
            {"menu bar icon", "tray icon"},
            // The log's lines.
            {"applicationDidFinishLaunching — starting engine", "starting"},
            {"applicationWillTerminate — tearing down", "quitting — tearing down"},
            {"Sparkle updater started.",
             "updates come with new versions of the package; Orvane never checks by itself"},
            {"SkyLight framework unavailable — private window focus disabled, public activation "
             "only",
             std::string(noPrivateFocus)},
            {"SkyLight private symbols missing — private window focus disabled, public "
             "activation only",
             std::string(noPrivateFocus)},
            {"event tap creation failed; accessibility trust is likely missing",
             std::string(shortcutNotYet)},
            {"event tap unavailable (permissions pending) — retrying in background",
             "the keyboard shortcut is held by another program — Orvane keeps trying in the "
             "background"},
            {"event tap created and enabled", "keyboard shortcuts taken"},
            {"event tap removed", "keyboard shortcuts let go"},
            {"event tap run-loop source creation failed", "keyboard events cannot be read"},
            {"event tap disabled", "keyboard shortcuts found off"},
            {"tap found disabled on activation sweep", "shortcuts found off on activation"},
            {"accessibility revoked while running — tearing down interception",
             "the keyboard shortcut was lost while running — tearing down interception"},
            {"accessibility trust prompt fired, currently trusted:",
             "tried the keyboard shortcut again, now Orvane's:"},
            {"screen recording access request returned:", "window capture available:"},
            {"permission onboarding skipped — required permissions already granted",
             "welcome window skipped — the keyboard shortcut is Orvane's"},
            {"showing permission onboarding", "showing the welcome window"},
            {"permission onboarding closed", "welcome window closed"},
            {"requesting permission for accessibility", "trying for the keyboard shortcut again"},
            {"requesting permission for screenRecording", "checking window capture again"},
            {"opening System Settings for", "opening help on"},
            {"malformed System Settings deep link:", "malformed settings link:"},
            {"CoreGraphics window list is empty; returning no switchable windows",
             std::string(emptyWindowList)},
            {"CGWindowListCopyWindowInfo returned nothing for options",
             "the window list could not be read; options"},
            {"showSettingsWindow: action was not handled", "the Settings window could not open"},
            {"Failed to mark window main for", "Failed to focus the window of"},
            {"macOS:    ", "System:   "},
            // Permission names, once the sentences above have had their turn.
            {"Accessibility", "Keyboard shortcut"},
            {"Screen Recording", "Window previews"},
            {"accessibility", "keyboard shortcut"},
            {"screenRecording", "window previews"},
            // Keys and the desktop's own words.
            {"⌥␣", "Alt+Space"},
            {"release ⌥", "release Alt"},
            {"release ⌃", "release Ctrl"},
            {"⇧⇥", "Shift+Tab"},
            {"⇥", "Tab"},
            {"⎋", "Esc"},
            {"↩", "Enter"},
            {"Option-Tab", "Alt+Tab"},
            {"Option-Space", "Alt+Space"},
            {"⌥ Option", "Alt"},
            {"Option", "Alt"},
            {"⌥", "Alt+"},
            {"⌃ Control", "Ctrl"},
            {"⌃", "Ctrl+"},
            {"⌘", "Super+"},
            {"your Mac", "your computer"},
            {"for macOS", "for Linux"},
            {"System Settings", "the system settings"},
        },
        {std::string(noPrivateFocus), std::string(shortcutNotYet), std::string(emptyWindowList)});
}

namespace {

bool isLetter(char character) {
    return std::isalpha(static_cast<unsigned char>(character)) != 0;
}

// A phrase that starts or ends with a letter stands only as a word of its own: "Option" is not
// the start of "Optional".
bool standsAlone(const std::string& text, std::size_t position, const std::string& phrase) {
    const auto end = position + phrase.size();
    const bool openStart = position > 0 && isLetter(phrase.front()) && isLetter(text[position - 1]);
    const bool openEnd = end < text.size() && isLetter(phrase.back()) && isLetter(text[end]);
    return !openStart && !openEnd;
}

}  // namespace

std::string Wording::apply(std::string_view text) const {
    std::string result(text);
    for (const auto& [from, to] : replacements_) {
        for (std::size_t position = result.find(from); position != std::string::npos;) {
            if (!standsAlone(result, position, from)) {
                position = result.find(from, position + 1);
                continue;
            }
            result.replace(position, from.size(), to);
            position = result.find(from, position + to.size());
        }
    }
    return result;
}

bool Wording::isExpectedAbsence(std::string_view line) const {
    return std::any_of(expectedAbsences_.begin(), expectedAbsences_.end(),
                       [line](const std::string& absence) { return line.starts_with(absence); });
}

}  // namespace orvane
