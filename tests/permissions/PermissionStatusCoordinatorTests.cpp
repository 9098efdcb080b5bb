#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "core/ScopedLogCapture.h"
#include "permissions/PermissionStatusCoordinator.h"
#include "platform/simulated/SimulatedNotificationCenter.h"
#include "platform/simulated/SimulatedPermissions.h"
#include "platform/simulated/SimulatedRunLoop.h"

namespace orvane {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Capability = PermissionCapability;
using Status = PermissionGrantStatus;

class PermissionStatusCoordinatorTest : public ::testing::Test {
  protected:
    void grant(bool accessibility, bool screenRecording) {
        permissions->setAccessibilityTrusted(accessibility);
        permissions->setScreenRecordingGranted(screenRecording);
    }
    void build(bool accessibility, bool screenRecording) {
        grant(accessibility, screenRecording);
        coordinator = PermissionStatusCoordinator::make(permissions, runLoop, notifications);
        coordinator->statusByCapability().subscribe([this](const auto&) { ++tableNotices; });
        coordinator->setAccessibilityRevocationHandler([this] {
            // The handler must find the loss already in the table.
            tableAtRevocation.push_back(coordinator->statusByCapability().value());
        });
        logs.sink().clear();
    }
    std::vector<std::string> messages() {
        auto result = logs.sink().messages(LogCategory::permission);
        logs.sink().clear();
        return result;
    }
    Status entry(Capability capability) {
        return coordinator->statusByCapability().value().at(capability);
    }
    std::size_t activeObservers() {
        return notifications->observerCount(applicationDidBecomeActiveNotification);
    }

    ScopedLogCapture logs;
    std::shared_ptr<SimulatedPermissions> permissions = std::make_shared<SimulatedPermissions>();
    std::shared_ptr<SimulatedRunLoop> runLoop = std::make_shared<SimulatedRunLoop>();
    std::shared_ptr<SimulatedNotificationCenter> notifications =
        std::make_shared<SimulatedNotificationCenter>();
    std::shared_ptr<PermissionStatusCoordinator> coordinator;
    int tableNotices = 0;
    std::vector<PermissionStatusTable> tableAtRevocation;
};

TEST_F(PermissionStatusCoordinatorTest, RefreshesOnBecomingActiveWhileItLivesAndAsksNothing) {
    build(true, true);
    EXPECT_FALSE(coordinator->isPolling());
    EXPECT_EQ(permissions->accessibilityPromptCount() + permissions->screenCaptureRequestCount(),
              0u);
    permissions->setAccessibilityTrusted(false);
    const auto checks = permissions->trustCheckCount();
    notifications->postNotification({"NSWorkspaceDidActivateApplicationNotification", {}, {}});
    EXPECT_EQ(permissions->trustCheckCount(), checks) << "another notification is no moment";
    EXPECT_EQ(activeObservers(), 1u);
    notifications->postNotification({applicationDidBecomeActiveNotification, {}, {}});
    EXPECT_THAT(messages(), ElementsAre("permission status changed: accessibility -> notGranted"));
    EXPECT_EQ(tableAtRevocation.size(), 1u);
    coordinator.reset();
    EXPECT_EQ(activeObservers(), 0u);
}

TEST_F(PermissionStatusCoordinatorTest, RefreshLogsChangesAndRevokesOnlyOnAccessibilityLoss) {
    build(true, true);
    coordinator->refresh();
    EXPECT_THAT(messages(), IsEmpty());
    EXPECT_EQ(tableNotices, 0);

    permissions->setScreenRecordingGranted(false);
    coordinator->refresh();
    EXPECT_EQ(tableNotices, 1);
    EXPECT_THAT(tableAtRevocation, IsEmpty()) << "screen recording loss is no revocation";
    permissions->setAccessibilityTrusted(false);
    coordinator->refresh();
    ASSERT_EQ(tableAtRevocation.size(), 1u);
    EXPECT_EQ(tableAtRevocation[0].at(Capability::accessibility), Status::notGranted);
    EXPECT_THAT(messages(), ElementsAre("permission status changed: screenRecording -> notGranted",
                                        "permission status changed: accessibility -> notGranted"));

    coordinator->refresh();
    EXPECT_EQ(tableAtRevocation.size(), 1u) << "a loss still in place is no new revocation";
    for (bool withHandler : {true, false}) {
        if (!withHandler) {
            coordinator->setAccessibilityRevocationHandler(std::nullopt);
        }
        permissions->setAccessibilityTrusted(true);
        coordinator->refresh();
        permissions->setAccessibilityTrusted(false);
        coordinator->refresh();
    }
    EXPECT_EQ(tableAtRevocation.size(), 2u);
}

TEST_F(PermissionStatusCoordinatorTest, StatusMovesOnlyItsEntrySilentlyAndTheRefreshAfterIt) {
    build(true, true);
    EXPECT_EQ(coordinator->status(Capability::accessibility), Status::granted);
    EXPECT_EQ(tableNotices, 0) << "an unchanged answer tells nobody";

    grant(false, false);
    EXPECT_EQ(coordinator->status(Capability::accessibility), Status::notGranted);
    EXPECT_EQ(tableNotices, 1);
    EXPECT_EQ(entry(Capability::accessibility), Status::notGranted);
    EXPECT_EQ(entry(Capability::screenRecording), Status::granted);
    EXPECT_THAT(messages(), IsEmpty());
    coordinator->refresh();
    EXPECT_THAT(tableAtRevocation, IsEmpty());
    EXPECT_THAT(messages(),
                ElementsAre("permission status changed: screenRecording -> notGranted"));
}

TEST_F(PermissionStatusCoordinatorTest, RequestsAndDeepLinksLogAndRequestsRefresh) {
    build(false, false);
    coordinator->requestAccess(Capability::accessibility);
    permissions->setScreenRecordingGranted(true);
    coordinator->requestAccess(Capability::screenRecording);
    permissions->setAccessibilityTrusted(true);
    coordinator->requestAccess(Capability::accessibility);
    EXPECT_EQ(permissions->accessibilityPromptCount(), 1u) << "a trusted process sees no prompt";
    EXPECT_EQ(permissions->screenCaptureRequestCount(), 1u);
    coordinator->openSystemSettings(Capability::accessibility);
    coordinator->openSystemSettings(Capability::screenRecording);
    EXPECT_THAT(
        permissions->openedURLs(),
        ElementsAre(
            "x-apple.systempreferences:com.apple.preference.security?Privacy_Accessibility",
            "x-apple.systempreferences:com.apple.preference.security?Privacy_ScreenCapture"));
    EXPECT_THAT(messages(),
                ElementsAre("requesting permission for accessibility",
                            "accessibility trust prompt fired, currently trusted: false",
                            "requesting permission for screenRecording",
                            "screen recording access request returned: true",
                            "permission status changed: screenRecording -> granted",
                            "requesting permission for accessibility",
                            "accessibility trust prompt fired, currently trusted: true",
                            "permission status changed: accessibility -> granted",
                            "opening System Settings for accessibility",
                            "opening System Settings for screenRecording"));
}

TEST_F(PermissionStatusCoordinatorTest, PollsEveryHalfSecondUntilStopped) {
    build(false, false);
    coordinator->stopPolling();  // without a timer: nothing to do
    permissions->setScreenRecordingGranted(true);
    coordinator->startPolling();
    EXPECT_EQ(entry(Capability::screenRecording), Status::granted) << "a refresh at once";
    coordinator->startPolling();
    EXPECT_EQ(runLoop->scheduledTimerCount(), 1u);
    EXPECT_THAT(runLoop->scheduledTimerHistory(), ElementsAre(std::pair{0.5, 0.1}));

    permissions->setAccessibilityTrusted(true);
    runLoop->advance(0.5);
    EXPECT_EQ(entry(Capability::accessibility), Status::granted);
    permissions->setAccessibilityTrusted(false);
    runLoop->advance(0.5);
    EXPECT_EQ(tableAtRevocation.size(), 1u) << "the timer repeats";
    coordinator->stopPolling();
    EXPECT_EQ(runLoop->scheduledTimerCount(), 0u);
    coordinator->startPolling();
    EXPECT_EQ(runLoop->scheduledTimerHistory().size(), 2u);
    coordinator.reset();
    EXPECT_EQ(runLoop->scheduledTimerCount(), 0u) << "going away ends the timer";
}

}  // namespace
}  // namespace orvane
