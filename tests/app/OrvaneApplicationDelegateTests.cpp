// The program's life over the simulated machine: what construction and the launch start, and
// teardown. (The retry for the tap, the activation sweep, reopen, the Settings route and a
// revocation during a gesture are pinned by the scenario suite.)

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "app/OrvaneApp.h"
#include "core/ScopedLogCapture.h"
#include "platform/simulated/SimulatedKeyboardEvent.h"
#include "simulator/SimulatedMachine.h"

namespace orvane {
namespace {

using simulator::SimulatedMachine;
using Lines = std::vector<std::string>;

class ApplicationLifecycleTest : public testing::Test {
  protected:
    void SetUp() override {
        for (ProcessIdentifier process : {400, 401}) {
            SimulatedApplication application;
            application.runningApplication.processIdentifier = process;
            application.runningApplication.localizedName = process == 400 ? "Safari" : "Terminal";
            machine.desktop->launchApplication(application);
            SimulatedWindow window;
            window.windowIdentifier = static_cast<WindowIdentifier>(process - 299);
            window.owningProcessIdentifier = process;
            window.listTitle = window.accessibilityTitle = "w" + std::to_string(process);
            machine.desktop->createWindow(window);
        }
        machine.desktop->focusWindow(102);
        machine.desktop->focusWindow(101);
        settle();
    }

    void launch() {
        app = std::make_unique<OrvaneApp>(machine.platform());
        app->finishLaunching();
        settle();
    }
    void settle() { machine.settle(); }
    void startSession() {
        machine.key(keyboard_event_type::flagsChanged, 0, keyboard_event_flag::option);
        machine.key(keyboard_event_type::keyDown, 48, keyboard_event_flag::option);
        ASSERT_TRUE(delegate().switcherSessionCoordinator()->isSessionActive());
    }
    void becomeActive() {
        machine.applicationNotifications->postNotification(
            {applicationDidBecomeActiveNotification});
        settle();
    }
    OrvaneApplicationDelegate& delegate() { return *app->delegate(); }
    // "category: message" of every record at info level or above, then forgotten.
    Lines take() {
        Lines lines;
        for (const auto& record : capture.sink().takeRecords()) {
            if (record.level != LogLevel::debug) {
                lines.push_back(std::string(logCategoryName(record.category)) + ": " +
                                record.message);
            }
        }
        return lines;
    }

    ScopedLogCapture capture;
    SimulatedMachine machine;
    std::unique_ptr<OrvaneApp> app;
};

TEST_F(ApplicationLifecycleTest, ConstructionStartsOnlyTheUpdaterAndTheLaunchStartsTheEngine) {
    app = std::make_unique<OrvaneApp>(machine.platform());
    EXPECT_EQ(machine.updater->startCount(), 1u);
    EXPECT_EQ(machine.desktop->eventTaps().liveTapCount(), 0u);
    EXPECT_EQ(take(), (Lines{"permission: permission status changed: accessibility -> granted",
                             "permission: permission status changed: screenRecording -> granted",
                             "softwareupdates: Sparkle updater started."}));
    app->finishLaunching();
    settle();
    EXPECT_EQ(take(), (Lines{"lifecycle: applicationDidFinishLaunching — starting engine",
                             "shortcutinterception: event tap created and enabled",
                             "lifecycle: global shortcut interception active",
                             "permission: permission onboarding skipped — required permissions "
                             "already granted",
                             "lifecycle: launch complete"}));
    EXPECT_FALSE(delegate().isRetryingInterception());
    EXPECT_FALSE(delegate().permissionOnboardingWindowController()->window());
}

TEST_F(ApplicationLifecycleTest, QuitDuringASessionActivatesNothingAndRemovesTheTapFirst) {
    launch();
    startSession();
    capture.sink().takeRecords();
    app->terminate();
    settle();
    Lines order;
    for (const auto& record : capture.sink().takeRecords()) {
        order.push_back(record.message);
    }
    const auto removed = std::find(order.begin(), order.end(), "event tap removed");
    const auto stopped =
        std::find(order.begin(), order.end(), "Stopped most-recently-used window tracking");
    EXPECT_EQ(order.front(), "applicationWillTerminate — tearing down");
    ASSERT_NE(stopped, order.end());
    EXPECT_LT(removed, stopped);
    EXPECT_FALSE(machine.overlayPanel->isOrderedFront());
    EXPECT_EQ(machine.desktop->focusedWindow(), 101u);
    EXPECT_EQ(machine.desktop->eventTaps().liveTapCount(), 0u);
    // Whatever the application object says later reaches no one.
    becomeActive();
    EXPECT_FALSE(delegate().globalShortcutInterceptor()->hasEventTap());
}

}  // namespace
}  // namespace orvane
