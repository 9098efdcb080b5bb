#include "app/SettingsTextRenderer.h"

#include <algorithm>
#include <cctype>
#include <type_traits>
#include <variant>

namespace orvane {

namespace {

std::string button(const PaneButton& item) {
    std::string line =
        std::string(item.isSmall ? "small button" : "button") + " \"" + item.title + "\"";
    if (!item.isEnabled) {
        line += " (disabled)";
    }
    if (!item.tooltip.empty()) {
        line += " tooltip \"" + item.tooltip + "\"";
    }
    return line;
}

std::string row(const PaneRow& item) {
    return std::visit(
        [](const auto& value) -> std::string {
            using Row = std::decay_t<decltype(value)>;
            if constexpr (std::is_same_v<Row, PaneToggle>) {
                return std::string("[") + (value.isOn ? "on" : "off") +
                       (value.isEnabled ? "" : ", disabled") + "] " + value.label;
            } else if constexpr (std::is_same_v<Row, PanePicker>) {
                std::string line = value.label + ":";
                for (std::size_t index = 0; index < value.segments.size(); ++index) {
                    line += index == value.selectedIndex ? " (" + value.segments[index] + ")"
                                                         : " " + value.segments[index];
                }
                return line;
            } else if constexpr (std::is_same_v<Row, PaneKeyCap>) {
                return value.title + " [" + value.keyCap + "]" +
                       (value.isDimmed ? " (dimmed)" : "");
            } else if constexpr (std::is_same_v<Row, PaneValue>) {
                return value.label + ": " + value.value;
            } else if constexpr (std::is_same_v<Row, PaneActionRow>) {
                std::string line = value.title;
                if (value.badge) {
                    line += " <" + std::string(value.badge->symbol()) + " " +
                            std::string(value.badge->text()) + ">";
                }
                return line + " " + button(value.button);
            } else {
                return button(value);
            }
        },
        item);
}

}  // namespace

std::vector<std::string> SettingsTextRenderer::menuLines(const std::vector<MenuEntry>& entries) {
    std::vector<std::string> lines;
    for (const auto& entry : entries) {
        if (entry.kind == MenuEntryKind::separator) {
            lines.emplace_back("---");
            continue;
        }
        std::string line = entry.symbol.empty() ? "" : "<" + entry.symbol + "> ";
        line += entry.text;
        if (!entry.commandKey.empty()) {
            std::string key = entry.commandKey;
            std::transform(key.begin(), key.end(), key.begin(),
                           [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
            line += "  ⌘" + key;
        }
        if (entry.kind == MenuEntryKind::label) {
            line += " (label)";
        } else if (!entry.isEnabled) {
            line += " (disabled)";
        }
        lines.push_back(std::move(line));
    }
    return lines;
}

std::vector<std::string> SettingsTextRenderer::paneLines(const PreferencesPaneContent& content) {
    std::vector<std::string> lines;
    for (const auto& section : content.sections) {
        lines.push_back("# " + section.header);
        if (!section.description.empty()) {
            lines.push_back("  " + section.description);
        }
        for (const auto& item : section.rows) {
            lines.push_back("  " + row(item));
        }
        for (const auto& item : section.footer) {
            if (const auto* note = std::get_if<PaneFootnote>(&item)) {
                lines.push_back("  footer: " + note->text);
            } else {
                lines.push_back("  footer " + button(std::get<PaneButton>(item)));
            }
        }
    }
    return lines;
}

}  // namespace orvane
