// A parsed scenario: the steps the simulator plays, in file order, each with its line number.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "core/Geometry.h"
#include "core/Identifiers.h"
#include "platform/KeyboardEvent.h"
#include "preferences/SwitcherPreferences.h"

namespace orvane::simulator {

// Puts a window on the desktop; the enumeration lists windows in the order they were added.
struct AddWindowStep {
    WindowIdentifier windowIdentifier = 0;
    ProcessIdentifier processIdentifier = 0;
    std::string applicationName;
    std::string title;
    bool isMinimized = false;
    Rect frame;
};

// Makes a process frontmost, or none.
struct SetFrontmostStep {
    std::optional<ProcessIdentifier> processIdentifier;
};

// Replaces the live preferences record.
struct SetPreferencesStep {
    SwitcherPreferences preferences;
};

// One keyboard event entering the desktop.
struct KeyEventStep {
    KeyboardEventType type = keyboard_event_type::keyDown;
    EventKeyCode keyCode = 0;
    KeyboardEventFlags flags = 0;
    bool isAutorepeat = false;
    std::u16string typedText;
    // How the event was written, for the transcript.
    std::string description;
};

// A line of prose copied into the transcript.
struct NoteStep {
    std::string text;
};

struct ScenarioStep {
    using Action =
        std::variant<AddWindowStep, SetFrontmostStep, SetPreferencesStep, KeyEventStep, NoteStep>;
    int lineNumber = 0;
    Action action;
};

struct Scenario {
    std::vector<ScenarioStep> steps;
};

}  // namespace orvane::simulator
