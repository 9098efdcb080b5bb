// The interceptor's event tap on the simulated desktop: installing and removing it, surviving the
// system's disabling of it, and what ends a gesture from outside.

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "core/ScopedLogCapture.h"
#include "interception/GlobalShortcutInterceptor.h"
#include "platform/simulated/SimulatedDesktop.h"
#include "platform/simulated/SimulatedKeyboardEvent.h"
#include "simulator/StandInPreferencesProvider.h"

namespace orvane {
namespace {

using Lines = std::vector<std::string>;
using Counts = std::pair<std::size_t, std::size_t>;

// Records the starts and ends of sessions; a start always finds windows.
class RecordingSessions final : public SwitcherSessionDriving, public LauncherSessionDriving {
  public:
    bool isSessionActive() const override { return sessionActive; }
    bool startSession(bool) override { return record("start", sessionActive = true); }
    bool startSameApplicationSession(bool) override { return startSession(false); }
    void moveSelection(std::ptrdiff_t) override {}
    void moveSelection(SwitcherSelectionDirection) override {}
    void commitSession() override { record("commit", sessionActive = false); }
    void cancelSession() override {
        if (sessionActive) {
            record("cancel", sessionActive = false);
        }
    }
    bool isLauncherSessionActive() const override { return launcherActive; }
    void beginLauncherSession() override {}
    void switchLauncherMode() override {}
    void appendToSearchQuery(const std::string&) override {}
    void deleteLastSearchCharacter() override {}
    void moveLauncherSelection(std::ptrdiff_t) override {}
    void commitLauncherSession() override {}
    void endLauncherSession() override { record("end launcher", launcherActive = false); }

    Lines calls;
    bool sessionActive = false;
    bool launcherActive = false;

  private:
    bool record(const char* call, bool result) {
        calls.emplace_back(call);
        return result;
    }
};

constexpr KeyboardEventFlags option = keyboard_event_flag::option;
constexpr EventKeyCode tab = 48;

class EventTapLifecycleTest : public testing::Test {
  protected:
    EventTapLifecycleTest() {
        SimulatedApplication editor;
        editor.runningApplication.processIdentifier = 400;
        desktop->launchApplication(editor);
        desktop->activateApplication(400);
        desktop->runLoop().runUntilIdle();
    }

    SimulatedDesktop::KeyDelivery post(KeyboardEventType type, EventKeyCode keyCode,
                                       KeyboardEventFlags flags) {
        return desktop->postKeyboardEvent(type, SimulatedKeyboardEvent(keyCode, flags));
    }
    void flags(KeyboardEventFlags held) { post(keyboard_event_type::flagsChanged, 0, held); }
    void tapTab() {
        post(keyboard_event_type::keyDown, tab, option);
        post(keyboard_event_type::keyUp, tab, option);
    }
    Lines log() { return capture.sink().messages(LogCategory::shortcutinterception); }
    Counts observers() {
        return {desktop->workspaceNotificationCenter()->observerCount(),
                desktop->distributedNotificationCenter()->observerCount()};
    }

    ScopedLogCapture capture;
    std::shared_ptr<SimulatedDesktop> desktop = SimulatedDesktop::make();
    std::shared_ptr<RecordingSessions> sessions = std::make_shared<RecordingSessions>();
    std::shared_ptr<simulator::StandInPreferencesProvider> preferences =
        std::make_shared<simulator::StandInPreferencesProvider>();
    std::shared_ptr<GlobalShortcutInterceptor> interceptor =
        std::make_shared<GlobalShortcutInterceptor>(
            sessions, sessions, preferences,
            GlobalShortcutInterceptor::Platform{
                desktop->eventTapPort(), desktop->workspaceNotificationCenter(),
                desktop->distributedNotificationCenter(), desktop->runLoopPort()});
};

TEST_F(EventTapLifecycleTest, InstallsOneTapWithFourInterruptionObserversOrNothingAtAll) {
    desktop->setAccessibilityTrusted(false);
    EXPECT_FALSE(interceptor->installEventTap());
    desktop->setAccessibilityTrusted(true);
    desktop->eventTaps().runLoopSourceCreationFails = true;
    EXPECT_FALSE(interceptor->installEventTap());
    EXPECT_EQ(desktop->eventTaps().liveTapCount(), 0u);
    EXPECT_EQ(observers(), (Counts{0, 0}));
    EXPECT_FALSE(interceptor->hasEventTap());

    desktop->eventTaps().runLoopSourceCreationFails = false;
    EXPECT_TRUE(interceptor->installEventTap());
    EXPECT_TRUE(interceptor->installEventTap());
    EXPECT_EQ(desktop->eventTaps().liveTapCount(), 1u);
    EXPECT_EQ(observers(), (Counts{3, 1}));
    EXPECT_TRUE(interceptor->isEventTapEnabled());
    // The tap now sees the keyboard before the application does.
    flags(option);
    EXPECT_TRUE(post(keyboard_event_type::keyDown, tab, option).swallowed);
    desktop->workspaceNotificationCenter()->postNotification(
        {workspace_notification::screensDidSleep, {}, {}});
    EXPECT_EQ(sessions->calls, (Lines{"start", "cancel"}));
    EXPECT_EQ(log(),
              (Lines{"event tap creation failed; accessibility trust is likely missing",
                     "event tap run-loop source creation failed", "event tap created and enabled",
                     "interaction state reset (NSWorkspaceScreensDidSleepNotification)"}));
}

TEST_F(EventTapLifecycleTest, RemovalTakesEverythingAwayAndEndsTheGestures) {
    interceptor->removeEventTap();
    EXPECT_TRUE(log().empty());

    ASSERT_TRUE(interceptor->installEventTap());
    flags(option);
    tapTab();
    sessions->launcherActive = true;
    interceptor->removeEventTap();
    EXPECT_EQ(desktop->eventTaps().liveTapCount(), 0u);
    EXPECT_EQ(observers(), (Counts{0, 0}));
    EXPECT_EQ(sessions->calls, (Lines{"start", "cancel", "end launcher"}));
    EXPECT_EQ(interceptor->interactionStateMachine().state,
              SwitcherInteractionStateMachine::State::idle);
    EXPECT_EQ(log().back(), "event tap removed");
    // Keys now reach the application untouched, and a new tap can come.
    EXPECT_EQ(post(keyboard_event_type::keyDown, tab, option).receiver, 400);
    EXPECT_TRUE(interceptor->installEventTap());
}

TEST_F(EventTapLifecycleTest, ReenablingKeepsTheGestureWhileTheModifierIsStillDown) {
    ASSERT_TRUE(interceptor->installEventTap());
    desktop->eventTaps().disableTaps(keyboard_event_type::tapDisabledByTimeout);
    EXPECT_EQ(log().back(), "event tap disabled (type 4294967294); re-enabled");

    flags(option);
    post(keyboard_event_type::keyDown, tab, option);
    desktop->eventTaps().disableTaps(keyboard_event_type::tapDisabledByTimeout);
    EXPECT_TRUE(interceptor->isEventTapEnabled());
    EXPECT_EQ(log().back(), "event tap disabled (type 4294967294); re-enabled");
    // The key-up of the Tab swallowed before the gap now passes on.
    EXPECT_EQ(post(keyboard_event_type::keyUp, tab, option).receiver, 400);
    flags(0);
    EXPECT_EQ(sessions->calls, (Lines{"start", "commit"}));
}

// After a gap the check reads the configured hold modifier, whatever else is held by then.
TEST_F(EventTapLifecycleTest, TheGapCheckReadsTheConfiguredHoldModifier) {
    constexpr KeyboardEventFlags control = keyboard_event_flag::control;
    auto controlHold = preferences->preferences();
    controlHold.shortcutConfiguration.holdModifier = SwitcherHoldModifier::control;
    preferences->setPreferences(controlHold);
    ASSERT_TRUE(interceptor->installEventTap());
    const std::pair<KeyboardEventFlags, Lines> cases[] = {
        {control | option, {"start"}},
        {option, {"start", "cancel"}},
    };
    for (const auto& [heldAfterGap, calls] : cases) {
        SCOPED_TRACE(heldAfterGap);
        sessions->calls.clear();
        flags(control);
        post(keyboard_event_type::keyDown, tab, control);
        desktop->eventTaps().disableTaps(keyboard_event_type::tapDisabledByTimeout, 1.0);
        flags(heldAfterGap);
        desktop->runLoop().advance(1.0);
        EXPECT_EQ(sessions->calls, calls);
        flags(0);
        sessions->cancelSession();
    }
}

}  // namespace
}  // namespace orvane
