// Storms of key events, modifier changes, clock advances, disabled taps and preference changes
// through the whole program on the simulated desktop. After every event: the consumed set stays
// bounded, a key-up whose key-down was swallowed is swallowed, and no switcher session outlives an
// idle interaction machine.

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <map>
#include <string>

#include "app/OrvaneApp.h"
#include "platform/simulated/SimulatedKeyboardEvent.h"
#include "simulator/SimulatedMachine.h"

namespace {

using namespace orvane;

struct Key {
    EventKeyCode code;
    const char16_t* typed;
};
// Trigger, the key above it, Space, Escape, Return, Delete, the arrows, and letters.
constexpr std::array<Key, 13> keys{{{48, u"\t"},
                                    {50, u"`"},
                                    {49, u" "},
                                    {53, u"\x1b"},
                                    {36, u"\r"},
                                    {51, u"\x7f"},
                                    {123, u""},
                                    {124, u""},
                                    {125, u""},
                                    {126, u""},
                                    {0, u"a"},
                                    {12, u"q"},
                                    {3, u"f"}}};

namespace flag = keyboard_event_flag;
constexpr std::array<KeyboardEventFlags, 7> modifierChords{0,
                                                           flag::option,
                                                           flag::option | flag::shift,
                                                           flag::control,
                                                           flag::control | flag::shift,
                                                           flag::command,
                                                           flag::option | flag::command};

void require(bool condition) {
    if (!condition) {
        std::abort();
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    simulator::SimulatedMachine machine;
    auto& desktop = *machine.desktop;
    for (ProcessIdentifier process : {400, 401, 402}) {
        SimulatedApplication application;
        application.runningApplication.processIdentifier = process;
        application.runningApplication.localizedName = "App " + std::to_string(process);
        desktop.launchApplication(application);
        for (WindowIdentifier index = 0; index < 2; ++index) {
            SimulatedWindow window;
            window.windowIdentifier = static_cast<WindowIdentifier>(process * 10 + index);
            window.owningProcessIdentifier = process;
            window.listTitle = window.accessibilityTitle = "Window " + std::to_string(index);
            desktop.createWindow(window, true);
            desktop.focusWindow(window.windowIdentifier);
        }
    }
    OrvaneApp app(machine.platform());
    app.finishLaunching();
    desktop.runLoop().runUntilIdle();
    const auto& program = *app.delegate();
    const auto& interceptor = *program.globalShortcutInterceptor();

    KeyboardEventFlags held = 0;
    std::map<EventKeyCode, bool> lastKeyDownSwallowed;
    for (std::size_t index = 0; index + 1 < size; index += 2) {
        const std::uint8_t operation = data[index] % 8;
        const std::uint8_t argument = data[index + 1];
        const Key& key = keys[argument % keys.size()];
        switch (operation) {
            case 0:
                held = modifierChords[argument % modifierChords.size()];
                desktop.postKeyboardEvent(keyboard_event_type::flagsChanged,
                                          SimulatedKeyboardEvent(0, held));
                break;
            case 1:
            case 2: {
                const bool repeat = operation == 2;
                const auto delivery = desktop.postKeyboardEvent(
                    keyboard_event_type::keyDown,
                    SimulatedKeyboardEvent(key.code, held, repeat, key.typed));
                lastKeyDownSwallowed[key.code] = delivery.swallowed;
                break;
            }
            case 3: {
                const auto delivery = desktop.postKeyboardEvent(
                    keyboard_event_type::keyUp, SimulatedKeyboardEvent(key.code, held));
                require(!lastKeyDownSwallowed[key.code] || delivery.swallowed);
                lastKeyDownSwallowed.erase(key.code);
                break;
            }
            case 4:
                desktop.runLoop().advance(0.25 * (argument % 16));
                break;
            case 5:
                // Keys in the gap pass the tap by, key-ups of swallowed key-downs among them.
                desktop.eventTaps().disableTaps(argument % 2
                                                    ? keyboard_event_type::tapDisabledByTimeout
                                                    : keyboard_event_type::tapDisabledByUserInput,
                                                0.5 * (argument % 3));
                lastKeyDownSwallowed.clear();
                break;
            case 6:
                program.preferencesStore()->modifyPreferences(
                    [argument](SwitcherPreferences& preferences) {
                        preferences.shortcutConfiguration.holdModifier =
                            argument % 2 ? SwitcherHoldModifier::control
                                         : SwitcherHoldModifier::option;
                        preferences.reverseCyclingEnabled = argument % 4 < 2;
                        preferences.sameApplicationCyclingEnabled = argument % 8 < 4;
                    });
                break;
            default:
                desktop.focusWindow(
                    static_cast<WindowIdentifier>(4000 + (argument % 3) * 10 + argument % 2));
                break;
        }
        desktop.runLoop().runUntilIdle();
        require(interceptor.keyCodesWithConsumedKeyDown().size() <= keys.size());
        if (interceptor.interactionStateMachine().state ==
            SwitcherInteractionStateMachine::State::idle) {
            require(!program.switcherSessionCoordinator()->isSessionActive());
        }
    }
    app.terminate();
    return 0;
}
