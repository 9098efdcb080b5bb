// The interceptor's event tap on the simulated desktop: installing and removing it, surviving the
// system's disabling of it, and what ends a gesture from outside.

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "core/ScopedLogCapture.h"
#include "interception/GlobalShortcutInterceptor.h"
#include "platform/simulated/SimulatedDesktop.h"
#include "platform/simulated/SimulatedKeyboardEvent.h"
#include "simulator/StandInPreferencesProvider.h"

namespace orvane {
namespace {

using Lines = std::vector<std::string>;

// Records what the interceptor asks of the sessions; a start always finds windows.
class RecordingSessions final : public SwitcherSessionDriving, public LauncherSessionDriving {
  public:
    bool isSessionActive() const override { return sessionActive; }
    bool startSession(bool) override { return record("start", sessionActive = true); }
    bool startSameApplicationSession(bool) override {
        return record("start", sessionActive = true);
    }
    void moveSelection(std::ptrdiff_t) override { record("move", sessionActive); }
    void moveSelection(SwitcherSelectionDirection) override { record("move", sessionActive); }
    void commitSession() override { record("commit", sessionActive = false); }
    void cancelSession() override {
        if (sessionActive) {
            record("cancel", sessionActive = false);
        }
    }

    bool isLauncherSessionActive() const override { return launcherActive; }
    void beginLauncherSession() override { record("begin launcher", launcherActive = true); }
    void switchLauncherMode() override {}
    void appendToSearchQuery(const std::string&) override {}
    void deleteLastSearchCharacter() override {}
    void moveLauncherSelection(std::ptrdiff_t) override {}
    void commitLauncherSession() override { record("commit launcher", launcherActive = false); }
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
    void tapTab(KeyboardEventFlags held) {
        post(keyboard_event_type::keyDown, tab, held);
        post(keyboard_event_type::keyUp, tab, held);
    }
    Lines log() { return capture.sink().messages(LogCategory::shortcutinterception); }
    std::size_t workspaceObservers() {
        return desktop->workspaceNotificationCenter()->observerCount();
    }
    std::size_t distributedObservers() {
        return desktop->distributedNotificationCenter()->observerCount();
    }
    void postWorkspace(const char* name) {
        desktop->workspaceNotificationCenter()->postNotification({name, {}, {}});
    }

    ScopedLogCapture capture;
    std::shared_ptr<SimulatedDesktop> desktop = SimulatedDesktop::make();
    std::shared_ptr<RecordingSessions> sessions = std::make_shared<RecordingSessions>();
    std::shared_ptr<GlobalShortcutInterceptor> interceptor =
        std::make_shared<GlobalShortcutInterceptor>(
            sessions, sessions, std::make_shared<simulator::StandInPreferencesProvider>(),
            GlobalShortcutInterceptor::Platform{
                desktop->eventTapPort(), desktop->workspaceNotificationCenter(),
                desktop->distributedNotificationCenter(), desktop->runLoopPort()});
};

TEST_F(EventTapLifecycleTest, InstallsOneTapWithFourObserversHoweverOftenAsked) {
    EXPECT_TRUE(interceptor->installEventTap());
    EXPECT_TRUE(interceptor->installEventTap());
    EXPECT_EQ(desktop->eventTaps().liveTapCount(), 1u);
    EXPECT_EQ(workspaceObservers(), 3u);
    EXPECT_EQ(distributedObservers(), 1u);
    EXPECT_TRUE(interceptor->isEventTapEnabled());
    EXPECT_EQ(log(), (Lines{"event tap created and enabled"}));

    // The tap now sees the keyboard before the application does.
    flags(option);
    EXPECT_TRUE(post(keyboard_event_type::keyDown, tab, option).swallowed);
    EXPECT_EQ(sessions->calls, (Lines{"start"}));
}

TEST_F(EventTapLifecycleTest, CreationFailuresLeaveNoTapBehind) {
    desktop->setAccessibilityTrusted(false);
    EXPECT_FALSE(interceptor->installEventTap());
    desktop->setAccessibilityTrusted(true);
    desktop->eventTaps().runLoopSourceCreationFails = true;
    EXPECT_FALSE(interceptor->installEventTap());
    EXPECT_EQ(log(), (Lines{"event tap creation failed; accessibility trust is likely missing",
                            "event tap run-loop source creation failed"}));
    EXPECT_EQ(desktop->eventTaps().liveTapCount(), 0u);
    EXPECT_EQ(workspaceObservers() + distributedObservers(), 0u);
    EXPECT_FALSE(interceptor->hasEventTap());
}

TEST_F(EventTapLifecycleTest, RemovalTakesEverythingAwayAndEndsTheGestures) {
    interceptor->removeEventTap();
    EXPECT_TRUE(log().empty());

    ASSERT_TRUE(interceptor->installEventTap());
    flags(option);
    tapTab(option);
    sessions->launcherActive = true;
    interceptor->removeEventTap();

    EXPECT_EQ(desktop->eventTaps().liveTapCount(), 0u);
    EXPECT_EQ(workspaceObservers() + distributedObservers(), 0u);
    EXPECT_EQ(sessions->calls, (Lines{"start", "cancel", "end launcher"}));
    EXPECT_EQ(interceptor->interactionStateMachine().state,
              SwitcherInteractionStateMachine::State::idle);
    EXPECT_EQ(log().back(), "event tap removed");
    // Keys now reach the application untouched, and a new tap can come.
    EXPECT_EQ(post(keyboard_event_type::keyDown, tab, option).receiver, 400);
    EXPECT_TRUE(interceptor->installEventTap());
}

TEST_F(EventTapLifecycleTest, ReenablingWithTheModifierStillDownKeepsTheSession) {
    ASSERT_TRUE(interceptor->installEventTap());
    flags(option);
    post(keyboard_event_type::keyDown, tab, option);
    desktop->eventTaps().disableTaps(keyboard_event_type::tapDisabledByTimeout);

    EXPECT_TRUE(interceptor->isEventTapEnabled());
    EXPECT_EQ(log().back(), "event tap disabled (type 4294967294); re-enabled");
    EXPECT_TRUE(sessions->sessionActive);
    // The key-up of the Tab swallowed before the gap now passes on.
    EXPECT_EQ(post(keyboard_event_type::keyUp, tab, option).receiver, 400);
    flags(0);
    EXPECT_EQ(sessions->calls, (Lines{"start", "commit"}));
}

TEST_F(EventTapLifecycleTest, AReleaseLostInTheGapCancelsInsteadOfCommitting) {
    ASSERT_TRUE(interceptor->installEventTap());
    flags(option);
    tapTab(option);
    // The release happens while the tap is off: the system state has it, the tap never saw it.
    interceptor->removeEventTap();
    ASSERT_TRUE(interceptor->installEventTap());
    flags(option);
    tapTab(option);
    desktop->eventTaps().disableTaps(keyboard_event_type::tapDisabledByUserInput);
    desktop->setAccessibilityTrusted(false);
    flags(0);
    desktop->setAccessibilityTrusted(true);
    desktop->eventTaps().disableTaps(keyboard_event_type::tapDisabledByUserInput);

    EXPECT_EQ(sessions->calls, (Lines{"start", "cancel", "start", "cancel"}));
    const Lines lines = log();
    EXPECT_EQ(Lines(lines.end() - 2, lines.end()),
              (Lines{"event tap disabled (type 4294967295); re-enabled",
                     "interaction state reset (hold modifier released while tap was disabled)"}));
}

TEST_F(EventTapLifecycleTest, WithTheModifierUpOnlyTheTapAndTheConsumedKeysAreReset) {
    ASSERT_TRUE(interceptor->installEventTap());
    post(keyboard_event_type::keyDown, 0, 0);
    desktop->eventTaps().disableTaps(keyboard_event_type::tapDisabledByTimeout);
    EXPECT_EQ(log().back(), "event tap disabled (type 4294967294); re-enabled");
    EXPECT_TRUE(interceptor->keyCodesWithConsumedKeyDown().empty());
    EXPECT_TRUE(sessions->calls.empty());
}

TEST_F(EventTapLifecycleTest, SleepLockAndSessionChangesResetTheGesture) {
    ASSERT_TRUE(interceptor->installEventTap());
    flags(option);
    tapTab(option);
    postWorkspace(workspace_notification::willSleep);
    // Still held, but the machine was reset: the release commits nothing, a tap starts nothing.
    tapTab(option);
    flags(0);
    EXPECT_EQ(sessions->calls, (Lines{"start", "cancel"}));
    EXPECT_EQ(log().back(), "interaction state reset (NSWorkspaceWillSleepNotification)");

    // The next flags event finds the modifier down and arms the machine again.
    flags(option);
    tapTab(option);
    EXPECT_EQ(sessions->calls.back(), "start");
    flags(0);

    sessions->launcherActive = true;
    desktop->distributedNotificationCenter()->postNotification(
        {"com.apple.screenIsLocked", {}, {}});
    EXPECT_FALSE(sessions->launcherActive);
    EXPECT_EQ(log().back(), "interaction state reset (com.apple.screenIsLocked)");

    postWorkspace(workspace_notification::sessionDidResignActive);
    EXPECT_EQ(log().back(),
              "interaction state reset (NSWorkspaceSessionDidResignActiveNotification)");
    interceptor->removeEventTap();
    postWorkspace(workspace_notification::screensDidSleep);
    EXPECT_EQ(log().back(), "event tap removed");
}

}  // namespace
}  // namespace orvane
