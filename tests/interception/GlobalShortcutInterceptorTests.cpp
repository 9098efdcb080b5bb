#include <gtest/gtest.h>

#include <cstddef>
#include <functional>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "interception/GlobalShortcutInterceptor.h"
#include "interception/KeyCode.h"
#include "platform/simulated/SimulatedKeyboardEvent.h"

namespace orvane {
namespace {

using State = SwitcherInteractionStateMachine::State;
using enum SwitcherInteractionStateMachine::State;
using Direction = SwitcherSelectionDirection;
using Keys = std::set<EventKeyCode>;
using namespace key_code;

constexpr KeyboardEventFlags noFlags = 0;
constexpr KeyboardEventFlags shift = keyboard_event_flag::shift;
constexpr KeyboardEventFlags control = keyboard_event_flag::control;
constexpr KeyboardEventFlags option = keyboard_event_flag::option;
constexpr KeyboardEventFlags command = keyboard_event_flag::command;
constexpr EventKeyCode keyA = 0, keyQ = 12;
constexpr bool swallows = true, passes = false;

std::string withSign(std::ptrdiff_t delta) {
    return (delta > 0 ? "+" : "") + std::to_string(delta);
}

// Both sessions, noting each command as words; each runs as its commands leave it.
class RecordingDrivers final : public SwitcherSessionDriving, public LauncherSessionDriving {
  public:
    bool isSessionActive() const override { return sessionRuns; }
    bool startSession(bool backward) override { return start("start", backward); }
    bool startSameApplicationSession(bool backward) override {
        return start("start same application", backward);
    }
    void moveSelection(std::ptrdiff_t delta) override { note("step " + withSign(delta)); }
    void moveSelection(Direction direction) override {
        const char* names[] = {"left", "right", "up", "down"};
        note(std::string("step ") + names[static_cast<int>(direction)]);
    }
    void commitSession() override { sessionRuns = !note("commit"); }
    void cancelSession() override { sessionRuns = !note("cancel"); }

    bool isLauncherSessionActive() const override { return launcherRuns; }
    void beginLauncherSession() override { launcherRuns = note("open launcher"); }
    void switchLauncherMode() override { note("switch mode"); }
    void appendToSearchQuery(const std::string& text) override { note("type " + text); }
    void deleteLastSearchCharacter() override { note("delete"); }
    void moveLauncherSelection(std::ptrdiff_t delta) override {
        note("launcher " + withSign(delta));
    }
    void commitLauncherSession() override { launcherRuns = !note("launch"); }
    void endLauncherSession() override { launcherRuns = !note("close launcher"); }

    // The commands since the last call, comma separated.
    std::string takeCalls() { return std::exchange(calls, ""); }

    bool sessionRuns = false, launcherRuns = false, startsSucceed = true;

  private:
    bool note(const std::string& call) {
        calls += (calls.empty() ? "" : ", ") + call;
        return true;
    }
    bool start(const std::string& what, bool backward) {
        note(what + (backward ? " backward" : ""));
        return sessionRuns = startsSucceed;
    }

    std::string calls;
};

struct FakePreferencesProvider final : PreferencesProviding {
    SwitcherPreferences current;
    SwitcherPreferences preferences() const override { return current; }
    void setPreferences(const SwitcherPreferences& preferences) override { current = preferences; }
    ObservationToken observePreferences(std::function<void(const SwitcherPreferences&)>) override {
        return 0;
    }
    void removePreferencesObserver(ObservationToken) override {}
};

struct Event {
    KeyboardEventType type = keyboard_event_type::keyDown;
    EventKeyCode keyCode = 0;
    KeyboardEventFlags flags = 0;
    bool isAutorepeat = false;
    // A tap: the key-up, with the same flags, follows at once.
    bool thenUp = false;
};

Event down(EventKeyCode keyCode, KeyboardEventFlags flags = noFlags) {
    return {keyboard_event_type::keyDown, keyCode, flags};
}
Event tap(EventKeyCode keyCode, KeyboardEventFlags flags = noFlags) {
    return {keyboard_event_type::keyDown, keyCode, flags, false, true};
}
Event repeat(EventKeyCode keyCode, KeyboardEventFlags flags = noFlags) {
    return {keyboard_event_type::keyDown, keyCode, flags, true};
}
Event up(EventKeyCode keyCode, KeyboardEventFlags flags = noFlags) {
    return {keyboard_event_type::keyUp, keyCode, flags};
}
// The interceptor reads only the flags of a modifier change, never which key made it.
Event modifiers(KeyboardEventFlags flags) {
    return {keyboard_event_type::flagsChanged, 58, flags};
}

// One event, the commands it must give and the state it leaves. Only a key-down says whether it
// is swallowed: a key-up is swallowed exactly when its key-down was, and every other event passes.
// `before` changes preferences or the sessions just before the event.
struct Step {
    Event event;
    State state;
    bool swallowed = false;
    std::string calls = "";
    std::function<void()> before = nullptr;
};

class GlobalShortcutInterceptorTest : public ::testing::Test {
  protected:
    bool feed(const Event& event, std::u16string text = {}) {
        const SimulatedKeyboardEvent simulated(event.keyCode, event.flags, event.isAutorepeat,
                                               std::move(text));
        return interceptor_.handleEvent(event.type, simulated);
    }

    void play(const std::vector<Step>& script) {
        // The keys whose key-down was swallowed and which are not up yet.
        Keys held;
        const auto check = [&](const Event& event, bool swallowed, const Step& step) {
            EXPECT_EQ(feed(event), swallowed);
            if (event.type == keyboard_event_type::keyDown && swallowed) {
                held.insert(event.keyCode);
            } else if (event.type == keyboard_event_type::keyUp) {
                held.erase(event.keyCode);
            }
            EXPECT_EQ(drivers_->takeCalls(),
                      event.type == keyboard_event_type::keyUp ? "" : step.calls);
            EXPECT_STREQ(switcherInteractionStateName(interceptor_.interactionStateMachine().state),
                         switcherInteractionStateName(step.state));
            EXPECT_EQ(consumed(), held);
        };
        for (std::size_t index = 0; index < script.size(); ++index) {
            SCOPED_TRACE("step " + std::to_string(index + 1));
            const auto& step = script[index];
            const auto& event = step.event;
            if (step.before) {
                step.before();
            }
            check(event,
                  event.type == keyboard_event_type::keyDown ? step.swallowed
                  : event.type == keyboard_event_type::keyUp ? held.contains(event.keyCode)
                                                             : false,
                  step);
            if (event.thenUp) {
                check(up(event.keyCode, event.flags), held.contains(event.keyCode), step);
            }
        }
    }

    Keys consumed() const {
        const auto& keys = interceptor_.keyCodesWithConsumedKeyDown();
        return {keys.begin(), keys.end()};
    }
    SwitcherPreferences& preferences() { return preferences_->current; }

    std::shared_ptr<RecordingDrivers> drivers_ = std::make_shared<RecordingDrivers>();
    std::shared_ptr<FakePreferencesProvider> preferences_ =
        std::make_shared<FakePreferencesProvider>();
    GlobalShortcutInterceptor interceptor_{drivers_, drivers_, preferences_, {}};
};

TEST_F(GlobalShortcutInterceptorTest, GestureStartsStepsAndCommitsOrCancels) {
    constexpr KeyboardEventType mouseDown = 1;
    play({
        {modifiers(option), armed},
        {tap(tab, option), sessionActive, swallows, "start"},
        {tap(tab, option), sessionActive, swallows, "step +1"},
        {modifiers(option | shift), sessionActive},
        {tap(tab, option | shift), sessionActive, swallows, "step -1"},
        {modifiers(option), sessionActive},
        // Option-Space opens no launcher in a session: like any key without meaning there, it
        // reaches nobody.
        {tap(space, option), sessionActive, swallows},
        {modifiers(noFlags), idle, passes, "commit"},
        // Escape cancels only a running session.
        {modifiers(option), armed},
        {tap(escape, option), armed, passes},
        {tap(tab, option), sessionActive, swallows, "start"},
        {tap(escape, option), sessionCancelled, swallows, "cancel"},
        {tap(escape, option), sessionCancelled, passes},
        {modifiers(noFlags), idle},
        // A held trigger stays swallowed after the commit until its key-up; events of other
        // types pass and change nothing.
        {modifiers(option), armed},
        {down(tab, option), sessionActive, swallows, "start"},
        {{mouseDown, tab}, sessionActive},
        {modifiers(noFlags), idle, passes, "commit"},
        {repeat(tab), idle, swallows},
        {repeat(tab), idle, swallows},
        {up(tab), idle},
        {tap(tab), idle, passes},
    });
}

TEST_F(GlobalShortcutInterceptorTest, KeysOutsideAnyGesturePass) {
    for (EventKeyCode keyCode : {tab, escape, leftArrow, rightArrow, downArrow, upArrow,
                                 graveAccent, space, returnKey, keyA}) {
        for (KeyboardEventFlags flags : {noFlags, shift, command}) {
            SCOPED_TRACE(testing::Message() << "key " << keyCode << " flags " << flags);
            EXPECT_FALSE(feed(down(keyCode, flags)));
            EXPECT_FALSE(feed(repeat(keyCode, flags)));
            EXPECT_FALSE(feed(up(keyCode, flags)));
        }
    }
    EXPECT_EQ(interceptor_.interactionStateMachine().state, idle);
    EXPECT_TRUE(consumed().empty());
    EXPECT_EQ(drivers_->takeCalls(), "");
}

// The configured trigger wins over the fixed keys from the next event; Space as the trigger steps
// a session but opens the launcher outside one.
TEST_F(GlobalShortcutInterceptorTest, ConfiguredTriggerActsFromTheNextEvent) {
    const auto triggerOn = [this](EventKeyCode keyCode) {
        return [=, this] {
            preferences().shortcutConfiguration.triggerKeyCode = StoredKeyCode(keyCode);
        };
    };
    play({
        {modifiers(option), armed},
        {tap(escape, option), sessionActive, swallows, "start", triggerOn(escape)},
        {tap(escape, option), sessionActive, swallows, "step +1"},
        // Tab is an ordinary key now, meaningless in the session.
        {tap(tab, option), sessionActive, swallows},
        {tap(tab, option), sessionActive, swallows, "step +1", triggerOn(tab)},
        {tap(escape, option), sessionCancelled, swallows, "cancel"},
        {modifiers(noFlags), idle},
        {modifiers(option), armed, passes, "", triggerOn(space)},
        {tap(space, option), armed, swallows, "open launcher"},
        {tap(escape, option), armed, swallows, "close launcher"},
        {tap(graveAccent, option), sessionActive, swallows, "start same application"},
        {tap(space, option), sessionActive, swallows, "step +1"},
    });
}

// Control chords are the application's own shortcuts, so they reach it even in a session.
TEST_F(GlobalShortcutInterceptorTest, ArrowsStepOnlyASessionAndOtherKeysReachNobody) {
    for (auto [modifier, held] : {std::pair{SwitcherHoldModifier::option, option},
                                  std::pair{SwitcherHoldModifier::control, control}}) {
        SCOPED_TRACE(held == option ? "Option" : "Control");
        preferences().shortcutConfiguration.holdModifier = modifier;
        const std::pair<EventKeyCode, std::string> arrows[] = {
            {leftArrow, "left"}, {rightArrow, "right"}, {downArrow, "down"}, {upArrow, "up"}};
        std::vector<Step> script{{modifiers(held), armed}};
        for (const auto& [keyCode, direction] : arrows) {
            script.push_back({tap(keyCode, held), armed, passes});
        }
        script.push_back({tap(tab, held), sessionActive, swallows, "start"});
        for (const auto& [keyCode, direction] : arrows) {
            script.push_back({tap(keyCode, held), sessionActive, swallows, "step " + direction});
        }
        script.insert(script.end(), {{tap(keyA, held), sessionActive, held == option},
                                     {tap(keyQ, held | command), sessionActive, passes},
                                     {tap(escape, held), sessionCancelled, swallows, "cancel"},
                                     {modifiers(noFlags), idle}});
        play(script);
    }
}

// Each tap reads the settings anew. With nothing to switch to the tap is still swallowed, and the
// next tap tries again.
TEST_F(GlobalShortcutInterceptorTest, SettingsActOnTheNextTapAndAFailedStartStaysArmed) {
    const auto held = option | shift;
    const auto reverse = [this](bool enabled) {
        return [=, this] { preferences().reverseCyclingEnabled = enabled; };
    };
    play({
        {modifiers(option), armed, passes, "",
         [this] { preferences().sameApplicationCyclingEnabled = false; }},
        {tap(graveAccent, option), armed, passes},
        {tap(tab, option), sessionActive, swallows, "start"},
        {tap(graveAccent, option), sessionActive, swallows},
        {tap(graveAccent, option), sessionActive, swallows, "step +1",
         [this] { preferences().sameApplicationCyclingEnabled = true; }},
        {modifiers(noFlags), idle, passes, "commit"},
        // Without the hold modifier ` is an ordinary key.
        {tap(graveAccent), idle, passes},
        {modifiers(option | shift), armed},
        {tap(graveAccent, option | shift), sessionActive, swallows,
         "start same application backward"},
        {modifiers(noFlags), idle, passes, "commit"},
        {modifiers(option), armed, passes, "", [this] { drivers_->startsSucceed = false; }},
        {tap(tab, option), armed, swallows, "start"},
        {tap(tab, option), armed, swallows, "start"},
        {tap(graveAccent, option), armed, swallows, "start same application"},
        {modifiers(noFlags), idle, passes, "", [this] { drivers_->startsSucceed = true; }},
        {modifiers(held), armed},
        {tap(tab, held), sessionActive, swallows, "start backward"},
        {tap(tab, held), sessionActive, swallows, "step +1", reverse(false)},
        {tap(tab, held), sessionActive, swallows, "step -1", reverse(true)},
        {modifiers(noFlags), idle, passes, "commit"},
        {modifiers(held), armed},
        {down(tab, held), sessionActive, swallows, "start", reverse(false)},
    });
}

TEST_F(GlobalShortcutInterceptorTest, LauncherOpensOnceAndTakesKeysWhileTheMachineFollows) {
    play({
        {modifiers(option), armed},
        {down(space, option), armed, swallows, "open launcher"},
        // Repeats at the launcher's Space row, even once it closed elsewhere, do nothing.
        {repeat(space, option), armed, swallows},
        {repeat(space, option), armed, swallows, "", [this] { drivers_->launcherRuns = false; }},
        {up(space, option), armed},
        {tap(space, option), armed, swallows, "open launcher"},
        {down(space, option), armed, swallows, "switch mode"},
        {up(space, option), armed},
        {tap(tab, option), armed, swallows, "launcher +1"},
        {modifiers(noFlags), idle},
        {modifiers(control), idle},
        {tap(tab, control), idle, passes},
        {tap(space, control), idle, passes},
        {modifiers(noFlags), idle},
        {down(tab), idle, swallows, "launcher +1"},
        {repeat(tab, control), idle, passes},
        {up(tab, control), idle},
        // Command-Space ends the launcher and still reaches whoever owns that shortcut.
        {tap(space, command), idle, passes, "close launcher"},
        // The launcher opens again elsewhere.
        {modifiers(noFlags), idle, passes, "", [this] { drivers_->launcherRuns = true; }},
        {down(returnKey), idle, swallows, "launch"},
        {repeat(returnKey), idle, swallows},
        {up(returnKey), idle},
        {tap(returnKey), idle, passes},
    });
}

// The text is what the key types on a real keyboard. Which characters count as typed is the
// filter's to say; here, that its verdict reaches the query whole, that keys with a command type
// nothing, and that no more text is read than a composed character needs.
TEST_F(GlobalShortcutInterceptorTest, LauncherRoutesEachKeyToItsCommandOrTheQuery) {
    struct Route {
        EventKeyCode keyCode;
        KeyboardEventFlags flags;
        std::u16string text;
        std::string calls;
    };
    const Route routes[] = {
        {returnKey, noFlags, u"\r", "launch"},
        {keypadEnter, noFlags, u"\x03", "launch"},
        {tab, noFlags, u"\t", "launcher +1"},
        {tab, shift, u"\x19", "launcher -1"},
        {rightArrow, noFlags, u"\uF703", "launcher +1"},
        {downArrow, noFlags, u"\uF701", "launcher +1"},
        {leftArrow, noFlags, u"\uF702", "launcher -1"},
        {upArrow, noFlags, u"\uF700", "launcher -1"},
        {leftArrow, shift, u"\uF702", "launcher -1"},
        {deleteKey, noFlags, u"\x7f", "delete"},
        {escape, noFlags, u"\x1b", "close launcher"},
        {space, option, u"\u00A0", "switch mode"},
        {keyA, noFlags, u"a", "type a"},
        {keyA, option, u"\u00E5", "type \u00E5"},
        {space, noFlags, u" ", "type  "},
        {14, option, u"\u00B4", ""},  // a dead key's accent
        {keyA, noFlags, u"", ""},
        {keyA, noFlags, u"a\u0008b", "type ab"},
        {keyA, noFlags, u"abcdef", "type abcd"},
        {keyA, noFlags, u"ab\U0001F600", "type ab\U0001F600"},
        // The limit cuts the emoji in half: the half goes.
        {keyA, noFlags, u"abc\U0001F600", "type abc"},
    };
    for (const auto& route : routes) {
        SCOPED_TRACE(testing::Message() << "key " << route.keyCode << " flags " << route.flags
                                        << " calls " << route.calls);
        drivers_->launcherRuns = true;
        const SimulatedKeyboardEvent event(route.keyCode, route.flags, false, route.text);
        EXPECT_TRUE(interceptor_.handleEvent(keyboard_event_type::keyDown, event));
        EXPECT_EQ(drivers_->takeCalls(), route.calls);
        EXPECT_LE(event.largestUnicodeStringRequest(), 4u);
        EXPECT_EQ(consumed(), Keys{route.keyCode});
        EXPECT_TRUE(feed(up(route.keyCode, route.flags)));
        EXPECT_TRUE(consumed().empty());
    }
    EXPECT_EQ(interceptor_.interactionStateMachine().state, idle);
}

TEST_F(GlobalShortcutInterceptorTest, ModifierChangesThatKeepTheHoldModifierGiveNoInput) {
    play({
        {modifiers(shift), idle},
        {modifiers(shift | command), idle},
        {modifiers(option | shift | command), armed},
        {modifiers(option), armed},
        {tap(tab, option), sessionActive, swallows, "start"},
        {modifiers(option | control), sessionActive},
        {modifiers(option), sessionActive},
        {modifiers(noFlags), idle, passes, "commit"},
        // Under Control as the hold modifier, Option arms nothing, yet Option-Space still opens
        // the launcher.
        {modifiers(option), idle, passes, "",
         [this] {
             preferences().shortcutConfiguration.holdModifier = SwitcherHoldModifier::control;
         }},
        {tap(space, option), idle, swallows, "open launcher"},
        {modifiers(option | control), armed},
    });
}

}  // namespace
}  // namespace orvane
