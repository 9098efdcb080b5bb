#include "core/Wording.h"

#include <cctype>

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

}  // namespace orvane
