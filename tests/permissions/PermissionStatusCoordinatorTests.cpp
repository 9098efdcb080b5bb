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
    void build(bool accessibility, bool screenRecording) {
        permissions->setAccessibilityTrusted(accessibility);
        permissions->setScreenRecordingGranted(screenRecording);
        coordinator = PermissionStatusCoordinator::make(permissions, runLoop, notifications);
        coordinator->statusByCapability().subscribe([this](const auto&) { ++tableNotices; });
        coordinator->setAccessibilityRevocationHandler([this] {
            // The handler must find the loss already in the table.
            tableAtRevocation.push_back(coordinator->statusByCapability().value());
        });
        logs.sink().clear();
    }
    std::vector<std::string> messages() { return logs.sink().messages(LogCategory::permission); }
    Status entry(Capability capability) {
        return coordinator->statusByCapability().value().at(capability);
    }
    void becomeActive() {
        notifications->postNotification({applicationDidBecomeActiveNotification, {}, {}});
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

TEST_F(PermissionStatusCoordinatorTest, ConstructionRefreshesAndLogsEveryCapabilityOnce) {
    permissions->setAccessibilityTrusted(true);
    permissions->setScreenRecordingGranted(true);
    coordinator = PermissionStatusCoordinator::make(permissions, runLoop, notifications);
    EXPECT_THAT(messages(), ElementsAre("permission status changed: accessibility -> granted",
                                        "permission status changed: screenRecording -> granted"));
    EXPECT_EQ(coordinator->statusByCapability().value(),
              (PermissionStatusTable{{Capability::accessibility, Status::granted},
                                     {Capability::screenRecording, Status::granted}}));
    EXPECT_EQ(notifications->observerCount(applicationDidBecomeActiveNotification), 1u);
    EXPECT_FALSE(coordinator->isPolling());
    EXPECT_EQ(permissions->accessibilityPromptCount(), 0u);
    EXPECT_EQ(permissions->screenCaptureRequestCount(), 0u);

    coordinator.reset();
    EXPECT_EQ(notifications->observerCount(applicationDidBecomeActiveNotification), 0u);
}

TEST_F(PermissionStatusCoordinatorTest, RefreshLogsOnlyChangedEntriesAndStaysQuietWithoutChange) {
    build(false, false);
    coordinator->refresh();
    EXPECT_THAT(messages(), IsEmpty());
    EXPECT_EQ(tableNotices, 0);

    permissions->setScreenRecordingGranted(true);
    coordinator->refresh();
    EXPECT_THAT(messages(), ElementsAre("permission status changed: screenRecording -> granted"));
    EXPECT_EQ(tableNotices, 1);
    EXPECT_EQ(entry(Capability::accessibility), Status::notGranted);
    EXPECT_THAT(tableAtRevocation, IsEmpty());
}

TEST_F(PermissionStatusCoordinatorTest, RevocationHandlerFiresOnlyOnAccessibilityLoss) {
    build(true, true);
    permissions->setScreenRecordingGranted(false);
    coordinator->refresh();
    EXPECT_THAT(tableAtRevocation, IsEmpty()) << "screen recording loss is no revocation";

    permissions->setAccessibilityTrusted(false);
    coordinator->refresh();
    ASSERT_EQ(tableAtRevocation.size(), 1u);
    EXPECT_EQ(tableAtRevocation[0].at(Capability::accessibility), Status::notGranted);
    EXPECT_THAT(messages(), ElementsAre("permission status changed: screenRecording -> notGranted",
                                        "permission status changed: accessibility -> notGranted"));

    coordinator->refresh();
    becomeActive();
    EXPECT_EQ(tableAtRevocation.size(), 1u) << "a loss still in place is no new revocation";

    permissions->setAccessibilityTrusted(true);
    coordinator->refresh();
    permissions->setAccessibilityTrusted(false);
    coordinator->refresh();
    EXPECT_EQ(tableAtRevocation.size(), 2u);

    coordinator->setAccessibilityRevocationHandler(std::nullopt);
    permissions->setAccessibilityTrusted(true);
    coordinator->refresh();
    permissions->setAccessibilityTrusted(false);
    coordinator->refresh();
    EXPECT_EQ(tableAtRevocation.size(), 2u);
    EXPECT_EQ(entry(Capability::accessibility), Status::notGranted);
}

TEST_F(PermissionStatusCoordinatorTest, StatusSeeingTheLossFirstSilencesTheNextRefresh) {
    build(true, true);
    EXPECT_EQ(coordinator->status(Capability::accessibility), Status::granted);
    EXPECT_EQ(tableNotices, 0) << "an unchanged answer tells nobody";

    permissions->setAccessibilityTrusted(false);
    permissions->setScreenRecordingGranted(false);
    EXPECT_EQ(coordinator->status(Capability::accessibility), Status::notGranted);
    EXPECT_EQ(tableNotices, 1);
    EXPECT_EQ(entry(Capability::accessibility), Status::notGranted);
    EXPECT_EQ(entry(Capability::screenRecording), Status::granted) << "only the asked entry moves";
    EXPECT_THAT(messages(), IsEmpty());
    EXPECT_THAT(tableAtRevocation, IsEmpty());

    coordinator->refresh();
    EXPECT_THAT(tableAtRevocation, IsEmpty());
    EXPECT_THAT(messages(),
                ElementsAre("permission status changed: screenRecording -> notGranted"));
}

TEST_F(PermissionStatusCoordinatorTest, RequestsPromptLogAndRefresh) {
    build(false, false);
    coordinator->requestAccess(Capability::accessibility);
    EXPECT_EQ(permissions->accessibilityPromptCount(), 1u);
    EXPECT_EQ(permissions->screenCaptureRequestCount(), 0u);

    permissions->setScreenRecordingGranted(true);
    coordinator->requestAccess(Capability::screenRecording);
    EXPECT_EQ(permissions->screenCaptureRequestCount(), 1u);
    EXPECT_EQ(entry(Capability::screenRecording), Status::granted);

    permissions->setAccessibilityTrusted(true);
    coordinator->requestAccess(Capability::accessibility);
    EXPECT_EQ(permissions->accessibilityPromptCount(), 1u) << "a trusted process sees no prompt";
    EXPECT_EQ(entry(Capability::accessibility), Status::granted);
    EXPECT_THAT(messages(),
                ElementsAre("requesting permission for accessibility",
                            "accessibility trust prompt fired, currently trusted: false",
                            "requesting permission for screenRecording",
                            "screen recording access request returned: true",
                            "permission status changed: screenRecording -> granted",
                            "requesting permission for accessibility",
                            "accessibility trust prompt fired, currently trusted: true",
                            "permission status changed: accessibility -> granted"));
}

TEST_F(PermissionStatusCoordinatorTest, OpensTheExactDeepLinks) {
    build(false, false);
    coordinator->openSystemSettings(Capability::accessibility);
    coordinator->openSystemSettings(Capability::screenRecording);
    EXPECT_THAT(
        permissions->openedURLs(),
        ElementsAre(
            "x-apple.systempreferences:com.apple.preference.security?Privacy_Accessibility",
            "x-apple.systempreferences:com.apple.preference.security?Privacy_ScreenCapture"));
    EXPECT_THAT(messages(), ElementsAre("opening System Settings for accessibility",
                                        "opening System Settings for screenRecording"));
    EXPECT_EQ(PermissionStatusCoordinator::displayTitle(Capability::screenRecording),
              "Screen Recording");
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
    runLoop->advance(0.4);
    EXPECT_EQ(entry(Capability::accessibility), Status::notGranted);
    runLoop->advance(0.1);
    EXPECT_EQ(entry(Capability::accessibility), Status::granted);
    permissions->setAccessibilityTrusted(false);
    runLoop->advance(0.5);
    EXPECT_EQ(tableAtRevocation.size(), 1u);

    coordinator->stopPolling();
    EXPECT_FALSE(coordinator->isPolling());
    EXPECT_EQ(runLoop->scheduledTimerCount(), 0u);
    permissions->setAccessibilityTrusted(true);
    runLoop->advance(2.0);
    EXPECT_EQ(entry(Capability::accessibility), Status::notGranted);

    coordinator->startPolling();
    EXPECT_EQ(runLoop->scheduledTimerHistory().size(), 2u);
    coordinator.reset();
    EXPECT_EQ(runLoop->scheduledTimerCount(), 0u) << "going away ends the timer";
}

TEST_F(PermissionStatusCoordinatorTest, BecomingActiveRefreshesWhileTheCoordinatorLives) {
    build(true, false);
    permissions->setAccessibilityTrusted(false);
    const auto checks = permissions->trustCheckCount();
    notifications->postNotification({"NSWorkspaceDidActivateApplicationNotification", {}, {}});
    EXPECT_EQ(permissions->trustCheckCount(), checks) << "another notification is no moment";
    becomeActive();
    EXPECT_EQ(entry(Capability::accessibility), Status::notGranted);
    EXPECT_EQ(tableAtRevocation.size(), 1u);
    EXPECT_THAT(messages(), ElementsAre("permission status changed: accessibility -> notGranted"));

    coordinator.reset();
    becomeActive();
    EXPECT_EQ(permissions->trustCheckCount(), checks + 2);
}

}  // namespace
}  // namespace orvane
