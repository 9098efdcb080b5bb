// A parsed scenario: the steps the simulator plays, in file order, each with its line number.
#pragma once

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <variant>
#include <vector>

#include "core/LogRecord.h"
#include "core/PermissionCapability.h"
#include "platform/KeyboardEvent.h"
#include "platform/simulated/SimulatedApplication.h"
#include "platform/simulated/SimulatedWindow.h"
#include "preferences/SettingsPane.h"
#include "preferences/SwitcherPreferences.h"

namespace orvane::simulator {

// Starts an application on the desktop.
struct LaunchStep {
    SimulatedApplication application;
};

// Ends an application and its windows.
struct QuitStep {
    ProcessIdentifier processIdentifier = 0;
};

// Puts a window on the desktop: behind the windows there (a listing, front to back) or in front of
// them (a window that opens). Its application is started first when it isn't running.
struct AddWindowStep {
    SimulatedWindow window;
    bool inFront = false;
    // For a window whose application isn't running yet.
    std::optional<std::string> applicationName;
};

struct DestroyWindowStep {
    WindowIdentifier windowIdentifier = 0;
};

struct MinimizeWindowStep {
    WindowIdentifier windowIdentifier = 0;
    bool minimized = true;
};

// The user clicks a window: its application comes forward with it focused.
struct FocusWindowStep {
    WindowIdentifier windowIdentifier = 0;
};

// Makes a process frontmost, or none.
struct SetFrontmostStep {
    std::optional<ProcessIdentifier> processIdentifier;
};

// Moves virtual time forward, running the timers that fall due.
struct AdvanceClockStep {
    double seconds = 0;
};

// Fault knobs of the window list.
struct WindowListFaultStep {
    std::set<std::uint32_t> failingOptions;
    bool malformed = false;
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

// Prints something of the program's state into the transcript.
struct PrintStep {
    enum class Subject { desktop, overlay, welcome, program, defaults, menu, settings };
    Subject subject = Subject::desktop;
};

// Puts an application bundle into one of the application folders.
struct InstallApplicationStep {
    std::string directory;
    std::string bundleName;
};

// Grants or takes away one of the program's permissions.
struct PermissionStep {
    PermissionCapability capability = PermissionCapability::accessibility;
    bool granted = true;
};

// Constructs the program over the desktop as it stands, and lets it finish launching.
struct StartProgramStep {};

// Bytes under the preferences key of the user defaults, as an earlier run or another tool left
// them.
struct StoredPreferencesStep {
    std::string bytes;
};

// Something the system does to every program.
struct SystemEventStep {
    enum class Kind {
        sleep,
        screensSleep,
        lockScreen,
        switchUser,
        tapDisabledByTimeout,
        tapDisabledByUserInput
    };
    Kind kind = Kind::sleep;
    // For a disabled tap: how long the system takes to tell it; keys in between pass it by.
    double noticeDelay = 0;
};

// What the user does with the program outside the two gestures.
struct ProgramActionStep {
    enum class Kind {
        bringToFront,
        reopen,
        reopenWithVisibleWindows,
        showWelcome,
        diagnostics,
        copyDiagnostics,
        bugReport,
        quitProgram
    };
    Kind kind = Kind::bringToFront;
};

struct OpenSettingsStep {
    SettingsPane pane = SettingsPane::general;
};

// A press in the welcome window.
struct WelcomeWindowStep {
    enum class Kind { rowAction, continueButton, notNowButton, closeButton };
    Kind kind = Kind::continueButton;
    // The row pressed, for `rowAction`.
    PermissionCapability capability = PermissionCapability::accessibility;
};

// The user chooses an entry of the menu of the program's icon, by its text.
struct MenuStep {
    std::string entry;
};
// What the user does in the open Settings window: a control of the pane on screen by its label,
// a tab, or the title bar's close button.
struct SettingsControlStep {
    enum class Kind { toggle, pick, press, tab, close };
    Kind kind = Kind::press;
    std::string label{};
    bool isOn = false;
    std::string segment{};
    SettingsPane pane = SettingsPane::general;
};
// Whether the system takes the login item's changes, and whether the updater can check now.
struct LoginItemStep {
    bool refuses = false;
};
struct UpdaterStep {
    bool canCheck = true;
};
// Sets which log lines reach the transcript from here on.
struct LogLevelStep {
    LogLevel minimumLevel = LogLevel::info;
};

// A line of prose copied into the transcript.
struct NoteStep {
    std::string text;
};

struct ScenarioStep {
    using Action =
        std::variant<LaunchStep, QuitStep, AddWindowStep, DestroyWindowStep, MinimizeWindowStep,
                     FocusWindowStep, SetFrontmostStep, AdvanceClockStep, WindowListFaultStep,
                     SetPreferencesStep, KeyEventStep, PrintStep, LogLevelStep, NoteStep,
                     InstallApplicationStep, PermissionStep, StartProgramStep,
                     StoredPreferencesStep, SystemEventStep, ProgramActionStep, OpenSettingsStep,
                     WelcomeWindowStep, MenuStep, SettingsControlStep, LoginItemStep, UpdaterStep>;
    int lineNumber = 0;
    Action action;
};

struct Scenario {
    std::vector<ScenarioStep> steps;
    // Without a `start` line the program starts before the first step.
    bool startsExplicitly = false;
};

}  // namespace orvane::simulator
