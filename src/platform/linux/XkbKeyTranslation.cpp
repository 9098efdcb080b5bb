#include "platform/linux/XkbKeyTranslation.h"

#include <array>
#include <utility>

namespace orvane {

namespace {

// Physical keys by position, as a US keyboard labels them, with the codes the preferences store.
constexpr std::array<std::pair<std::string_view, std::uint16_t>, 58> keyTable{{
    {"AC01", 0},   {"AC02", 1},   {"AC03", 2},   {"AC04", 3},  {"AC06", 4},  {"AC05", 5},
    {"AB01", 6},   {"AB02", 7},   {"AB03", 8},   {"AB04", 9},  {"AB05", 11}, {"AD01", 12},
    {"AD02", 13},  {"AD03", 14},  {"AD04", 15},  {"AD06", 16}, {"AD05", 17}, {"AE01", 18},
    {"AE02", 19},  {"AE03", 20},  {"AE04", 21},  {"AE06", 22}, {"AE05", 23}, {"AE12", 24},
    {"AE09", 25},  {"AE07", 26},  {"AE11", 27},  {"AE08", 28}, {"AE10", 29}, {"AD12", 30},
    {"AD09", 31},  {"AD07", 32},  {"AD11", 33},  {"AD08", 34}, {"AD10", 35}, {"RTRN", 36},
    {"AC09", 37},  {"AC07", 38},  {"AC11", 39},  {"AC08", 40}, {"AC10", 41}, {"BKSL", 42},
    {"AB08", 43},  {"AB10", 44},  {"AB06", 45},  {"AB07", 46}, {"AB09", 47}, {"TAB", 48},
    {"SPCE", 49},  {"TLDE", 50},  {"BKSP", 51},  {"ESC", 53},  {"KPEN", 76}, {"DELE", 117},
    {"LEFT", 123}, {"RGHT", 124}, {"DOWN", 125}, {"UP", 126},
}};

constexpr std::uint16_t shiftMask = 1;
constexpr std::uint16_t controlMask = 4;
constexpr std::uint16_t altMask = 8;     // Mod1
constexpr std::uint16_t superMask = 64;  // Mod4

}  // namespace

std::optional<std::uint16_t> XkbKeyTranslation::storedKeyCode(std::string_view xkbKeyName) {
    for (const auto& [name, code] : keyTable) {
        if (name == xkbKeyName) {
            return code;
        }
    }
    return std::nullopt;
}

std::optional<std::string_view> XkbKeyTranslation::xkbKeyName(std::uint16_t storedKeyCode) {
    for (const auto& [name, code] : keyTable) {
        if (code == storedKeyCode) {
            return name;
        }
    }
    return std::nullopt;
}

KeyboardEventFlags XkbKeyTranslation::flags(std::uint16_t state) {
    KeyboardEventFlags result = 0;
    if (state & shiftMask) {
        result |= keyboard_event_flag::shift;
    }
    if (state & controlMask) {
        result |= keyboard_event_flag::control;
    }
    if (state & altMask) {
        result |= keyboard_event_flag::option;
    }
    if (state & superMask) {
        result |= keyboard_event_flag::command;
    }
    return result;
}

std::uint16_t XkbKeyTranslation::modifierMask(KeyboardEventFlags flags) {
    std::uint16_t mask = 0;
    if (flags & keyboard_event_flag::shift) {
        mask |= shiftMask;
    }
    if (flags & keyboard_event_flag::control) {
        mask |= controlMask;
    }
    if (flags & keyboard_event_flag::option) {
        mask |= altMask;
    }
    if (flags & keyboard_event_flag::command) {
        mask |= superMask;
    }
    return mask;
}

KeyboardEventFlags XkbKeyTranslation::modifierFlagOfKeysym(std::uint32_t keysym) {
    switch (keysym) {
        case 0xffe1:  // Shift_L
        case 0xffe2:  // Shift_R
            return keyboard_event_flag::shift;
        case 0xffe3:  // Control_L
        case 0xffe4:  // Control_R
            return keyboard_event_flag::control;
        case 0xffe7:  // Meta_L
        case 0xffe8:  // Meta_R
        case 0xffe9:  // Alt_L
        case 0xffea:  // Alt_R
            return keyboard_event_flag::option;
        case 0xffeb:  // Super_L
        case 0xffec:  // Super_R
            return keyboard_event_flag::command;
        default:
            return 0;
    }
}

}  // namespace orvane
