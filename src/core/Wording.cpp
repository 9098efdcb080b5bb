#include "core/Wording.h"

namespace orvane {

Wording Wording::linuxDesktop() {
    return Wording({
        {"Command isn't offered — macOS's own app switcher owns Command-Tab.",
         "Super isn't offered: the desktop keeps it for its own shortcuts."},
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
        {"Open System Settings", "Open Settings"},
        {"System Settings", "the system settings"},
    });
}

std::string Wording::apply(std::string_view text) const {
    std::string result(text);
    for (const auto& [from, to] : replacements_) {
        for (std::size_t position = result.find(from); position != std::string::npos;
             position = result.find(from, position + to.size())) {
            result.replace(position, from.size(), to);
        }
    }
    return result;
}

}  // namespace orvane
