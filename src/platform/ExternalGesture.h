// A gesture that reaches Orvane from outside rather than through its own view of the keyboard:
// the `orvane --gesture NAME` command, or a binding the compositor keeps. The backend plays it as
// the keys of its chord, so the logic sees what it sees when the chord is pressed.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "platform/KeyboardEvent.h"
#include "preferences/SwitcherPreferences.h"

namespace orvane {

enum class ExternalGesture { next, previous, sameApplication, sameApplicationPrevious, launcher };

// The gesture a command line names ("next", "previous", "same-application",
// "same-application-previous", "launcher").
inline std::optional<ExternalGesture> externalGestureNamed(std::string_view name) {
    if (name == "next") {
        return ExternalGesture::next;
    }
    if (name == "previous") {
        return ExternalGesture::previous;
    }
    if (name == "same-application") {
        return ExternalGesture::sameApplication;
    }
    if (name == "same-application-previous") {
        return ExternalGesture::sameApplicationPrevious;
    }
    if (name == "launcher") {
        return ExternalGesture::launcher;
    }
    return std::nullopt;
}

// The keys of the gestures beside the trigger, as the preferences store keys: the key above Tab
// and the space bar.
namespace gesture_key {
inline constexpr std::int64_t grave = 50;
inline constexpr std::int64_t space = 49;
}  // namespace gesture_key

// The chord a gesture stands for under the shortcut preferences: its key's stored code and the
// modifiers held with it.
struct GestureChord {
    std::int64_t storedKeyCode = 0;
    KeyboardEventFlags flags = 0;
};

inline GestureChord chordOfGesture(ExternalGesture gesture,
                                   const SwitcherShortcutConfiguration& shortcut) {
    const KeyboardEventFlags hold = shortcut.holdModifier == SwitcherHoldModifier::control
                                        ? keyboard_event_flag::control
                                        : keyboard_event_flag::option;
    switch (gesture) {
        case ExternalGesture::next:
            break;
        case ExternalGesture::previous:
            return {shortcut.triggerKeyCode, hold | keyboard_event_flag::shift};
        case ExternalGesture::sameApplication:
            return {gesture_key::grave, hold};
        case ExternalGesture::sameApplicationPrevious:
            return {gesture_key::grave, hold | keyboard_event_flag::shift};
        case ExternalGesture::launcher:
            return {gesture_key::space, keyboard_event_flag::option};
    }
    return {shortcut.triggerKeyCode, hold};
}

}  // namespace orvane
