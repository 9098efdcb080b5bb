#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <ostream>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "interception/GlobalShortcutInterceptor.h"
#include "interception/KeyCode.h"
#include "platform/simulated/SimulatedKeyboardEvent.h"

namespace orvane {
namespace {

using ::testing::AnyNumber;
using ::testing::Mock;
using ::testing::ReturnPointee;
using ::testing::StrictMock;
using State = SwitcherInteractionStateMachine::State;
using Direction = SwitcherSelectionDirection;
using Keys = std::set<EventKeyCode>;
using Arrange = std::function<void()>;
using namespace key_code;

constexpr KeyboardEventFlags noFlags = 0;
constexpr KeyboardEventFlags shift = keyboard_event_flag::shift;
constexpr KeyboardEventFlags control = keyboard_event_flag::control;
constexpr KeyboardEventFlags option = keyboard_event_flag::option;
constexpr KeyboardEventFlags command = keyboard_event_flag::command;
constexpr EventKeyCode keyA = 0;
constexpr EventKeyCode keyQ = 12;
constexpr EventKeyCode optionKey = 58;
constexpr bool swallows = true;
constexpr bool passes = false;

class MockSwitcherSessionDriver : public SwitcherSessionDriving {
  public:
    MOCK_METHOD(bool, isSessionActive, (), (const, override));
    MOCK_METHOD(bool, startSession, (bool backward), (override));
    MOCK_METHOD(bool, startSameApplicationSession, (bool backward), (override));
    MOCK_METHOD(void, moveSelection, (std::ptrdiff_t delta), (override));
    MOCK_METHOD(void, moveSelection, (SwitcherSelectionDirection direction), (override));
    MOCK_METHOD(void, commitSession, (), (override));
    MOCK_METHOD(void, cancelSession, (), (override));
};

class MockLauncherSessionDriver : public LauncherSessionDriving {
  public:
    MOCK_METHOD(bool, isLauncherSessionActive, (), (const, override));
    MOCK_METHOD(void, beginLauncherSession, (), (override));
    MOCK_METHOD(void, switchLauncherMode, (), (override));
    MOCK_METHOD(void, appendToSearchQuery, (const std::string& text), (override));
    MOCK_METHOD(void, deleteLastSearchCharacter, (), (override));
    MOCK_METHOD(void, moveLauncherSelection, (std::ptrdiff_t delta), (override));
    MOCK_METHOD(void, commitLauncherSession, (), (override));
    MOCK_METHOD(void, endLauncherSession, (), (override));
};

class FakePreferencesProvider : public PreferencesProviding {
  public:
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
};

Event down(EventKeyCode keyCode, KeyboardEventFlags flags = noFlags) {
    return {keyboard_event_type::keyDown, keyCode, flags};
}
Event repeat(EventKeyCode keyCode, KeyboardEventFlags flags = noFlags) {
    return {keyboard_event_type::keyDown, keyCode, flags, true};
}
Event up(EventKeyCode keyCode, KeyboardEventFlags flags = noFlags) {
    return {keyboard_event_type::keyUp, keyCode, flags};
}
// The interceptor reads only the flags of a modifier change, never which key made it.
Event modifiers(KeyboardEventFlags flags) {
    return {keyboard_event_type::flagsChanged, optionKey, flags};
}

// One event and everything it must leave behind. `arrange` sets the calls the event must make
// (any other call fails) and changes preferences just before the event.
struct Step {
    std::string what;
    Event event;
    bool swallowed;
    State state;
    Keys consumed;
    Arrange arrange;
};

Step step(std::string what, Event event, bool swallowed, State state, Keys consumed,
          Arrange arrange = nullptr) {
    return {std::move(what), event, swallowed, state, std::move(consumed), std::move(arrange)};
}

class GlobalShortcutInterceptorTest : public ::testing::Test {
  protected:
    GlobalShortcutInterceptorTest() { allowQueries(); }

    bool feed(const Event& event, std::u16string text = {}) {
        const SimulatedKeyboardEvent simulated(event.keyCode, event.flags, event.isAutorepeat,
                                               std::move(text));
        return interceptor_.handleEvent(event.type, simulated);
    }

    void play(const std::vector<Step>& steps) {
        for (const auto& step : steps) {
            SCOPED_TRACE(step.what);
            if (step.arrange) {
                step.arrange();
            }
            EXPECT_EQ(feed(step.event), step.swallowed);
            settle();
            EXPECT_STREQ(switcherInteractionStateName(interceptor_.interactionStateMachine().state),
                         switcherInteractionStateName(step.state));
            EXPECT_EQ(consumed(), step.consumed);
        }
    }

    // Checks the calls expected so far, so each event answers for its own calls.
    void settle() {
        Mock::VerifyAndClearExpectations(session_.get());
        Mock::VerifyAndClearExpectations(launcher_.get());
        allowQueries();
    }

    void allowQueries() {
        EXPECT_CALL(*session_, isSessionActive())
            .Times(AnyNumber())
            .WillRepeatedly(ReturnPointee(&switcherSessionRuns_));
        EXPECT_CALL(*launcher_, isLauncherSessionActive())
            .Times(AnyNumber())
            .WillRepeatedly(ReturnPointee(&launcherRuns_));
    }

    Keys consumed() const {
        const auto& keys = interceptor_.keyCodesWithConsumedKeyDown();
        return {keys.begin(), keys.end()};
    }

    SwitcherPreferences& preferences() { return preferences_->current; }

    Arrange starts(bool backward = false, bool succeeds = true) {
        return [=, this] {
            EXPECT_CALL(*session_, startSession(backward)).WillOnce([=, this](bool) {
                switcherSessionRuns_ = succeeds;
                return succeeds;
            });
        };
    }
    Arrange startsSameApplication(bool backward = false, bool succeeds = true) {
        return [=, this] {
            EXPECT_CALL(*session_, startSameApplicationSession(backward)).WillOnce([=, this](bool) {
                switcherSessionRuns_ = succeeds;
                return succeeds;
            });
        };
    }
    Arrange steps(std::ptrdiff_t delta) {
        return [=, this] { EXPECT_CALL(*session_, moveSelection(delta)); };
    }
    Arrange stepsTowards(Direction direction) {
        return [=, this] { EXPECT_CALL(*session_, moveSelection(direction)); };
    }
    Arrange commits() {
        return [this] {
            EXPECT_CALL(*session_, commitSession()).WillOnce([this] {
                switcherSessionRuns_ = false;
            });
        };
    }
    Arrange cancels() {
        return [this] {
            EXPECT_CALL(*session_, cancelSession()).WillOnce([this] {
                switcherSessionRuns_ = false;
            });
        };
    }
    Arrange opensLauncher() {
        return [this] {
            EXPECT_CALL(*launcher_, beginLauncherSession()).WillOnce([this] {
                launcherRuns_ = true;
            });
        };
    }
    Arrange endsLauncher() {
        return [this] {
            EXPECT_CALL(*launcher_, endLauncherSession()).WillOnce([this] {
                launcherRuns_ = false;
            });
        };
    }
    Arrange movesLauncherSelection(std::ptrdiff_t delta) {
        return [=, this] { EXPECT_CALL(*launcher_, moveLauncherSelection(delta)); };
    }

    std::shared_ptr<StrictMock<MockSwitcherSessionDriver>> session_ =
        std::make_shared<StrictMock<MockSwitcherSessionDriver>>();
    std::shared_ptr<StrictMock<MockLauncherSessionDriver>> launcher_ =
        std::make_shared<StrictMock<MockLauncherSessionDriver>>();
    std::shared_ptr<FakePreferencesProvider> preferences_ =
        std::make_shared<FakePreferencesProvider>();
    bool switcherSessionRuns_ = false;
    bool launcherRuns_ = false;
    GlobalShortcutInterceptor interceptor_{session_, launcher_, preferences_};
};

TEST_F(GlobalShortcutInterceptorTest, OptionTabGestureEventByEvent) {
    play({
        step("Option down arms", modifiers(option), passes, State::armed, {}),
        step("Tab down starts", down(tab, option), swallows, State::sessionActive, {tab}, starts()),
        step("Tab up", up(tab, option), swallows, State::sessionActive, {}),
        step("Tab again steps", down(tab, option), swallows, State::sessionActive, {tab},
             steps(+1)),
        step("Tab up", up(tab, option), swallows, State::sessionActive, {}),
        step("Shift down", modifiers(option | shift), passes, State::sessionActive, {}),
        step("Shift-Tab steps back", down(tab, option | shift), swallows, State::sessionActive,
             {tab}, steps(-1)),
        step("Tab up", up(tab, option | shift), swallows, State::sessionActive, {}),
        step("Shift up", modifiers(option), passes, State::sessionActive, {}),
        step("Option up commits", modifiers(noFlags), passes, State::idle, {}, commits()),
    });
}

TEST_F(GlobalShortcutInterceptorTest, HeldTriggerStaysSwallowedAfterTheCommitUntilItsKeyUp) {
    play({
        step("Option down", modifiers(option), passes, State::armed, {}),
        step("Tab down starts", down(tab, option), swallows, State::sessionActive, {tab}, starts()),
        step("Option up commits, Tab still held", modifiers(noFlags), passes, State::idle, {tab},
             commits()),
        step("Tab repeat", repeat(tab), swallows, State::idle, {tab}),
        step("Tab repeat", repeat(tab), swallows, State::idle, {tab}),
        step("Tab up", up(tab), swallows, State::idle, {}),
        step("a fresh Tab reaches the application", down(tab), passes, State::idle, {}),
        step("and so does its key-up", up(tab), passes, State::idle, {}),
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
    EXPECT_EQ(interceptor_.interactionStateMachine().state, State::idle);
    EXPECT_TRUE(consumed().empty());
}

TEST_F(GlobalShortcutInterceptorTest, EscapeCancelsOnlyARunningSession) {
    play({
        step("Option down", modifiers(option), passes, State::armed, {}),
        step("Escape while armed", down(escape, option), passes, State::armed, {}),
        step("its key-up", up(escape, option), passes, State::armed, {}),
        step("Tab starts", down(tab, option), swallows, State::sessionActive, {tab}, starts()),
        step("Tab up", up(tab, option), swallows, State::sessionActive, {}),
        step("Escape cancels", down(escape, option), swallows, State::sessionCancelled, {escape},
             cancels()),
        step("its key-up too", up(escape, option), swallows, State::sessionCancelled, {}),
        step("Escape after the cancel", down(escape, option), passes, State::sessionCancelled, {}),
        step("its key-up", up(escape, option), passes, State::sessionCancelled, {}),
        step("Option up commits nothing", modifiers(noFlags), passes, State::idle, {}),
    });
}

TEST_F(GlobalShortcutInterceptorTest, ConfiguredTriggerWinsOverTheFixedKeysFromTheNextEvent) {
    auto triggerOn = [this](EventKeyCode keyCode, Arrange then) {
        return [=, this] {
            preferences().shortcutConfiguration.triggerKeyCode = StoredKeyCode(keyCode);
            then();
        };
    };
    play({
        step("Option down", modifiers(option), passes, State::armed, {}),
        step("Escape as the trigger starts", down(escape, option), swallows, State::sessionActive,
             {escape}, triggerOn(escape, starts())),
        step("its key-up", up(escape, option), swallows, State::sessionActive, {}),
        step("Escape steps instead of cancelling", down(escape, option), swallows,
             State::sessionActive, {escape}, steps(+1)),
        step("its key-up", up(escape, option), swallows, State::sessionActive, {}),
        step("Tab is an ordinary key in the session", down(tab, option), swallows,
             State::sessionActive, {tab}),
        step("its key-up", up(tab, option), swallows, State::sessionActive, {}),
        step("Tab is the trigger again", down(tab, option), swallows, State::sessionActive, {tab},
             triggerOn(tab, steps(+1))),
        step("its key-up", up(tab, option), swallows, State::sessionActive, {}),
        step("Escape cancels again", down(escape, option), swallows, State::sessionCancelled,
             {escape}, cancels()),
    });
}

struct HoldModifierCase {
    const char* name;
    SwitcherHoldModifier modifier;
    KeyboardEventFlags flag;
    // Control chords are the application's own shortcuts, so they reach it even in a session.
    bool swallowsLettersInASession;
};

void PrintTo(const HoldModifierCase& holdModifierCase, std::ostream* out) {
    *out << holdModifierCase.name;
}

class GlobalShortcutInterceptorHoldModifierTest
    : public GlobalShortcutInterceptorTest,
      public ::testing::WithParamInterface<HoldModifierCase> {
  protected:
    GlobalShortcutInterceptorHoldModifierTest() {
        preferences().shortcutConfiguration.holdModifier = GetParam().modifier;
    }
};

TEST_P(GlobalShortcutInterceptorHoldModifierTest, ArrowsStepOnlyARunningSession) {
    const KeyboardEventFlags held = GetParam().flag;
    const std::vector<std::pair<EventKeyCode, Direction>> arrows{{leftArrow, Direction::left},
                                                                 {rightArrow, Direction::right},
                                                                 {downArrow, Direction::down},
                                                                 {upArrow, Direction::up}};
    std::vector<Step> sequence{
        step("hold modifier down", modifiers(held), passes, State::armed, {})};
    for (const auto& [keyCode, direction] : arrows) {
        const auto name = "arrow " + std::to_string(keyCode);
        sequence.push_back(
            step(name + " while armed", down(keyCode, held), passes, State::armed, {}));
        sequence.push_back(step(name + " key-up", up(keyCode, held), passes, State::armed, {}));
    }
    sequence.push_back(
        step("trigger starts", down(tab, held), swallows, State::sessionActive, {tab}, starts()));
    sequence.push_back(step("trigger up", up(tab, held), swallows, State::sessionActive, {}));
    for (const auto& [keyCode, direction] : arrows) {
        const auto name = "arrow " + std::to_string(keyCode);
        sequence.push_back(step(name + " in the session", down(keyCode, held), swallows,
                                State::sessionActive, {keyCode}, stepsTowards(direction)));
        sequence.push_back(
            step(name + " key-up", up(keyCode, held), swallows, State::sessionActive, {}));
    }
    play(sequence);
}

TEST_P(GlobalShortcutInterceptorHoldModifierTest, KeysWithoutMeaningInASession) {
    const KeyboardEventFlags held = GetParam().flag;
    const bool letters = GetParam().swallowsLettersInASession;
    play({
        step("hold modifier down", modifiers(held), passes, State::armed, {}),
        step("trigger starts", down(tab, held), swallows, State::sessionActive, {tab}, starts()),
        step("trigger up", up(tab, held), swallows, State::sessionActive, {}),
        step("letter with the hold modifier", down(keyA, held), letters, State::sessionActive,
             letters ? Keys{keyA} : Keys{}),
        step("its key-up", up(keyA, held), letters, State::sessionActive, {}),
        step("Command-Q", down(keyQ, held | command), passes, State::sessionActive, {}),
        step("its key-up", up(keyQ, held | command), passes, State::sessionActive, {}),
        step("Escape cancels", down(escape, held), swallows, State::sessionCancelled, {escape},
             cancels()),
        step("its key-up", up(escape, held), swallows, State::sessionCancelled, {}),
    });
}

INSTANTIATE_TEST_SUITE_P(
    HoldModifiers, GlobalShortcutInterceptorHoldModifierTest,
    ::testing::Values(HoldModifierCase{"Option", SwitcherHoldModifier::option, option, true},
                      HoldModifierCase{"Control", SwitcherHoldModifier::control, control, false}),
    [](const auto& info) { return std::string(info.param.name); });

TEST_F(GlobalShortcutInterceptorTest, ReverseCyclingSettingActsOnTheNextTap) {
    auto reverse = [this](bool enabled, Arrange then) {
        return [=, this] {
            preferences().reverseCyclingEnabled = enabled;
            then();
        };
    };
    const auto held = option | shift;
    play({
        step("Option and Shift down", modifiers(held), passes, State::armed, {}),
        step("Shift-Tab starts backward", down(tab, held), swallows, State::sessionActive, {tab},
             starts(true)),
        step("Tab up", up(tab, held), swallows, State::sessionActive, {}),
        step("setting off: Shift-Tab steps forward", down(tab, held), swallows,
             State::sessionActive, {tab}, reverse(false, steps(+1))),
        step("Tab up", up(tab, held), swallows, State::sessionActive, {}),
        step("setting on: Shift-Tab steps back", down(tab, held), swallows, State::sessionActive,
             {tab}, reverse(true, steps(-1))),
        step("Tab up", up(tab, held), swallows, State::sessionActive, {}),
        step("all up commits", modifiers(noFlags), passes, State::idle, {}, commits()),
        step("Option and Shift down", modifiers(held), passes, State::armed, {}),
        step("setting off: Shift-Tab starts forward", down(tab, held), swallows,
             State::sessionActive, {tab}, reverse(false, starts(false))),
    });
}

TEST_F(GlobalShortcutInterceptorTest, SameApplicationTriggerFollowsItsSettingAndTheModifier) {
    auto setting = [this](bool enabled, Arrange then) {
        return [=, this] {
            preferences().sameApplicationCyclingEnabled = enabled;
            then();
        };
    };
    preferences().sameApplicationCyclingEnabled = false;
    play({
        step("Option down", modifiers(option), passes, State::armed, {}),
        step("setting off: ` passes", down(graveAccent, option), passes, State::armed, {}),
        step("its key-up", up(graveAccent, option), passes, State::armed, {}),
        step("Tab starts", down(tab, option), swallows, State::sessionActive, {tab}, starts()),
        step("Tab up", up(tab, option), swallows, State::sessionActive, {}),
        step("setting off: ` is meaningless in the session", down(graveAccent, option), swallows,
             State::sessionActive, {graveAccent}),
        step("its key-up", up(graveAccent, option), swallows, State::sessionActive, {}),
        step("setting on: ` steps", down(graveAccent, option), swallows, State::sessionActive,
             {graveAccent}, setting(true, steps(+1))),
        step("its key-up", up(graveAccent, option), swallows, State::sessionActive, {}),
        step("Option up commits", modifiers(noFlags), passes, State::idle, {}, commits()),
        step("modifier up: ` passes", down(graveAccent), passes, State::idle, {}),
        step("its key-up", up(graveAccent), passes, State::idle, {}),
        step("Option and Shift down", modifiers(option | shift), passes, State::armed, {}),
        step("Shift-` starts the application's session backward", down(graveAccent, option | shift),
             swallows, State::sessionActive, {graveAccent}, startsSameApplication(true)),
        step("its key-up", up(graveAccent, option | shift), swallows, State::sessionActive, {}),
        step("Option up commits", modifiers(noFlags), passes, State::idle, {}, commits()),
    });
}

TEST_F(GlobalShortcutInterceptorTest, FailedStartFallsBackToArmed) {
    play({
        step("Option down", modifiers(option), passes, State::armed, {}),
        step("nothing to switch to: the tap is still swallowed", down(tab, option), swallows,
             State::armed, {tab}, starts(false, false)),
        step("Tab up", up(tab, option), swallows, State::armed, {}),
        step("the next tap tries again", down(tab, option), swallows, State::armed, {tab},
             starts(false, false)),
        step("Tab up", up(tab, option), swallows, State::armed, {}),
        step("` fails the same way", down(graveAccent, option), swallows, State::armed,
             {graveAccent}, startsSameApplication(false, false)),
        step("its key-up", up(graveAccent, option), swallows, State::armed, {}),
        step("Option up commits nothing", modifiers(noFlags), passes, State::idle, {}),
    });
}

TEST_F(GlobalShortcutInterceptorTest, OptionSpaceInASwitcherSessionOpensNothing) {
    play({
        step("Option down", modifiers(option), passes, State::armed, {}),
        step("Tab starts", down(tab, option), swallows, State::sessionActive, {tab}, starts()),
        step("Tab up", up(tab, option), swallows, State::sessionActive, {}),
        step("Option-Space reaches nobody", down(space, option), swallows, State::sessionActive,
             {space}),
        step("its key-up", up(space, option), swallows, State::sessionActive, {}),
    });
}

TEST_F(GlobalShortcutInterceptorTest, SpaceAsTriggerStepsASessionButOpensTheLauncherOutsideOne) {
    preferences().shortcutConfiguration.triggerKeyCode = space;
    play({
        step("Option down", modifiers(option), passes, State::armed, {}),
        step("Option-Space opens the launcher, no session", down(space, option), swallows,
             State::armed, {space}, opensLauncher()),
        step("its key-up", up(space, option), swallows, State::armed, {}),
        step("Escape closes the launcher", down(escape, option), swallows, State::armed, {escape},
             endsLauncher()),
        step("its key-up", up(escape, option), swallows, State::armed, {}),
        step("` starts a session", down(graveAccent, option), swallows, State::sessionActive,
             {graveAccent}, startsSameApplication()),
        step("its key-up", up(graveAccent, option), swallows, State::sessionActive, {}),
        step("Option-Space steps", down(space, option), swallows, State::sessionActive, {space},
             steps(+1)),
        step("its key-up", up(space, option), swallows, State::sessionActive, {}),
    });
}

TEST_F(GlobalShortcutInterceptorTest, OptionSpaceOpensTheLauncherUnderControlAsHoldModifier) {
    preferences().shortcutConfiguration.holdModifier = SwitcherHoldModifier::control;
    play({
        step("Option is no hold modifier now", modifiers(option), passes, State::idle, {}),
        step("Option-Space opens the launcher", down(space, option), swallows, State::idle, {space},
             opensLauncher()),
        step("its key-up", up(space, option), swallows, State::idle, {}),
    });
}

TEST_F(GlobalShortcutInterceptorTest, HeldOptionSpaceOpensTheLauncherOnceAndSwitchesNoMode) {
    play({
        step("Option down", modifiers(option), passes, State::armed, {}),
        step("Option-Space opens", down(space, option), swallows, State::armed, {space},
             opensLauncher()),
        step("repeat at the launcher's Space row", repeat(space, option), swallows, State::armed,
             {space}),
        step("another repeat", repeat(space, option), swallows, State::armed, {space}),
        step("repeat after the launcher closed elsewhere opens nothing", repeat(space, option),
             swallows, State::armed, {space}, [this] { launcherRuns_ = false; }),
        step("its key-up", up(space, option), swallows, State::armed, {}),
        step("a fresh Option-Space opens", down(space, option), swallows, State::armed, {space},
             opensLauncher()),
        step("its key-up", up(space, option), swallows, State::armed, {}),
        step("the next Option-Space switches the mode", down(space, option), swallows, State::armed,
             {space}, [this] { EXPECT_CALL(*launcher_, switchLauncherMode()); }),
    });
}

TEST_F(GlobalShortcutInterceptorTest, OpenLauncherTakesTabWhileTheMachineFollowsTheModifier) {
    launcherRuns_ = true;
    play({
        step("Option down arms", modifiers(option), passes, State::armed, {}),
        step("Option-Tab moves the launcher's selection", down(tab, option), swallows, State::armed,
             {tab}, movesLauncherSelection(+1)),
        step("Tab up", up(tab, option), swallows, State::armed, {}),
        step("Option up disarms, commits nothing", modifiers(noFlags), passes, State::idle, {}),
        step("Option down arms again", modifiers(option), passes, State::armed, {}),
        step("Option up", modifiers(noFlags), passes, State::idle, {}),
        step("Control down", modifiers(control), passes, State::idle, {}),
        step("Control-Tab passes untouched", down(tab, control), passes, State::idle, {}),
        step("its key-up", up(tab, control), passes, State::idle, {}),
        step("Control-Space passes, the launcher stays", down(space, control), passes, State::idle,
             {}),
        step("its key-up", up(space, control), passes, State::idle, {}),
        step("Control up", modifiers(noFlags), passes, State::idle, {}),
        step("Tab held in the launcher", down(tab), swallows, State::idle, {tab},
             movesLauncherSelection(+1)),
        step("its repeat under Control passes", repeat(tab, control), passes, State::idle, {tab}),
        step("its key-up is still swallowed", up(tab, control), swallows, State::idle, {}),
        step("Command-Space ends the launcher and passes", down(space, command), passes,
             State::idle, {}, endsLauncher()),
        step("its key-up", up(space, command), passes, State::idle, {}),
    });
}

TEST_F(GlobalShortcutInterceptorTest, ReturnThatCommitsTheLauncherKeepsItsRepeatsAndKeyUp) {
    launcherRuns_ = true;
    play({
        step("Return commits", down(returnKey), swallows, State::idle, {returnKey},
             [this] {
                 EXPECT_CALL(*launcher_, commitLauncherSession()).WillOnce([this] {
                     launcherRuns_ = false;
                 });
             }),
        step("repeat after the launcher closed", repeat(returnKey), swallows, State::idle,
             {returnKey}),
        step("its key-up", up(returnKey), swallows, State::idle, {}),
        step("a fresh Return reaches the application", down(returnKey), passes, State::idle, {}),
    });
}

TEST_F(GlobalShortcutInterceptorTest, LauncherKeysRouteToTheirCommandAndTypeNothing) {
    using Launcher = MockLauncherSessionDriver;
    struct Route {
        const char* key;
        EventKeyCode keyCode;
        KeyboardEventFlags flags;
        // The text the key types on a real keyboard; none of it may reach the query.
        std::u16string text;
        std::function<void(Launcher&)> expect;
    };
    auto moves = [](std::ptrdiff_t delta) {
        return [=](Launcher& launcher) { EXPECT_CALL(launcher, moveLauncherSelection(delta)); };
    };
    const std::vector<Route> routes{
        {"Return", returnKey, noFlags, u"\r",
         [](Launcher& launcher) { EXPECT_CALL(launcher, commitLauncherSession()); }},
        {"keypad Enter", keypadEnter, noFlags, u"\x03",
         [](Launcher& launcher) { EXPECT_CALL(launcher, commitLauncherSession()); }},
        {"Tab", tab, noFlags, u"\t", moves(+1)},
        {"Shift-Tab", tab, shift, u"\x19", moves(-1)},
        {"Right", rightArrow, noFlags, u"\uF703", moves(+1)},
        {"Down", downArrow, noFlags, u"\uF701", moves(+1)},
        {"Left", leftArrow, noFlags, u"\uF702", moves(-1)},
        {"Up", upArrow, noFlags, u"\uF700", moves(-1)},
        {"Shift-Left", leftArrow, shift, u"\uF702", moves(-1)},
        {"Delete", deleteKey, noFlags, u"\x7f",
         [](Launcher& launcher) { EXPECT_CALL(launcher, deleteLastSearchCharacter()); }},
        {"Escape", escape, noFlags, u"\x1b",
         [](Launcher& launcher) { EXPECT_CALL(launcher, endLauncherSession()); }},
        {"Option-Space", space, option, u"\u00A0",
         [](Launcher& launcher) { EXPECT_CALL(launcher, switchLauncherMode()); }},
    };
    launcherRuns_ = true;
    for (const auto& route : routes) {
        SCOPED_TRACE(route.key);
        route.expect(*launcher_);
        EXPECT_TRUE(feed(down(route.keyCode, route.flags), route.text));
        settle();
        EXPECT_EQ(consumed(), Keys{route.keyCode});
        EXPECT_TRUE(feed(up(route.keyCode, route.flags)));
        EXPECT_TRUE(consumed().empty());
    }
    EXPECT_EQ(interceptor_.interactionStateMachine().state, State::idle);
}

TEST_F(GlobalShortcutInterceptorTest, LauncherAppendsOnlyWholeTypedCharacters) {
    struct Typed {
        const char* what;
        EventKeyCode keyCode;
        KeyboardEventFlags flags;
        std::u16string text;
        std::optional<std::string> appended;
    };
    const std::vector<Typed> cases{
        {"letter", keyA, noFlags, u"a", "a"},
        {"Shift letter", keyA, shift, u"A", "A"},
        {"Option letter", keyA, option, u"\u00E5", "\u00E5"},
        {"Space without Option", space, noFlags, u" ", " "},
        {"dead-key acute U+00B4 (Sk)", 14, option, u"\u00B4", std::nullopt},
        {"lone combining acute (Mn)", 14, noFlags, u"\u0301", std::nullopt},
        {"dead-key circumflex U+02C6 (Lm)", 34, option, u"\u02C6", std::nullopt},
        {"backspace control character", keyA, noFlags, u"\u0008", std::nullopt},
        {"DEL", keyA, noFlags, u"\u007F", std::nullopt},
        {"no text at all", keyA, noFlags, u"", std::nullopt},
        {"composed e-acute", keyA, noFlags, u"\u00E9", "\u00E9"},
        {"decomposed e-acute goes whole, base included", keyA, noFlags, u"e\u0301", std::nullopt},
        {"control between letters goes alone", keyA, noFlags, u"a\u0008b", "ab"},
        {"only four units are read", keyA, noFlags, u"abcdef", "abcd"},
        {"emoji within the limit", keyA, noFlags, u"ab\U0001F600", "ab\U0001F600"},
        {"emoji cut in half by the limit is dropped", keyA, noFlags, u"abc\U0001F600", "abc"},
    };
    launcherRuns_ = true;
    for (const auto& typed : cases) {
        SCOPED_TRACE(typed.what);
        if (typed.appended) {
            EXPECT_CALL(*launcher_, appendToSearchQuery(*typed.appended));
        }
        const SimulatedKeyboardEvent event(typed.keyCode, typed.flags, false, typed.text);
        EXPECT_TRUE(interceptor_.handleEvent(keyboard_event_type::keyDown, event));
        settle();
        EXPECT_LE(event.largestUnicodeStringRequest(), 4u);
        EXPECT_TRUE(feed(up(typed.keyCode, typed.flags)));
    }
    EXPECT_TRUE(consumed().empty());
}

TEST_F(GlobalShortcutInterceptorTest, ModifierChangesThatKeepTheHoldModifierGiveNoInput) {
    play({
        step("Shift alone", modifiers(shift), passes, State::idle, {}),
        step("Command joins", modifiers(shift | command), passes, State::idle, {}),
        step("Option joins and arms", modifiers(option | shift | command), passes, State::armed,
             {}),
        step("Shift and Command leave", modifiers(option), passes, State::armed, {}),
        step("Tab starts", down(tab, option), swallows, State::sessionActive, {tab}, starts()),
        step("Tab up", up(tab, option), swallows, State::sessionActive, {}),
        step("Control joins: no commit", modifiers(option | control), passes, State::sessionActive,
             {}),
        step("Control leaves: no commit", modifiers(option), passes, State::sessionActive, {}),
        step("Option up commits", modifiers(noFlags), passes, State::idle, {}, commits()),
        step("Control as the hold modifier: Option arms nothing", modifiers(option), passes,
             State::idle, {},
             [this] {
                 preferences().shortcutConfiguration.holdModifier = SwitcherHoldModifier::control;
             }),
        step("Control arms", modifiers(option | control), passes, State::armed, {}),
    });
}

TEST_F(GlobalShortcutInterceptorTest, TapNoticesAndUnknownEventTypesPassAndChangeNothing) {
    constexpr KeyboardEventType mouseDown = 1;
    play({
        step("Option down", modifiers(option), passes, State::armed, {}),
        step("Tab starts", down(tab, option), swallows, State::sessionActive, {tab}, starts()),
        step("tap disabled by timeout", {keyboard_event_type::tapDisabledByTimeout, tab, noFlags},
             passes, State::sessionActive, {tab}),
        step("tap disabled by user input",
             {keyboard_event_type::tapDisabledByUserInput, tab, noFlags}, passes,
             State::sessionActive, {tab}),
        step("unknown type", {mouseDown, tab, noFlags}, passes, State::sessionActive, {tab}),
        step("Tab up is still swallowed", up(tab, option), swallows, State::sessionActive, {}),
    });
}

}  // namespace
}  // namespace orvane
