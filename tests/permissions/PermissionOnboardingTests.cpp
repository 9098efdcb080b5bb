#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "core/ScopedLogCapture.h"
#include "permissions/PermissionOnboardingTextRenderer.h"
#include "permissions/PermissionOnboardingWindowController.h"
#include "platform/simulated/SimulatedApplicationObject.h"
#include "platform/simulated/SimulatedNotificationCenter.h"
#include "platform/simulated/SimulatedPermissions.h"
#include "platform/simulated/SimulatedRunLoop.h"

namespace orvane {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Capability = PermissionCapability;
using Kind = PermissionRowActionKind;
using Policy = ApplicationActivationPolicy;

constexpr std::uint64_t titledClosable = window_style_mask::titled | window_style_mask::closable;

class PermissionOnboardingTest : public ::testing::Test {
  protected:
    void launch(bool accessibility, bool screenRecording) {
        permissions->setAccessibilityTrusted(accessibility);
        permissions->setScreenRecordingGranted(screenRecording);
        coordinator = PermissionStatusCoordinator::make(permissions, runLoop, notifications);
        controller =
            PermissionOnboardingWindowController::make(coordinator, application, notifications);
        logs.sink().clear();
        controller->showIfRequiredPermissionsAreMissing();
    }
    std::vector<std::string> messages() {
        auto result = logs.sink().messages(LogCategory::permission);
        logs.sink().clear();
        return result;
    }
    std::size_t closeObservers() {
        return notifications->observerCount(windowWillCloseNotification);
    }
    PermissionRowAction action(Capability capability) {
        return controller->view()->content().rows.at(static_cast<std::size_t>(capability)).action;
    }
    // The welcome window with a Settings window beside it, closed with the Settings window open.
    PlatformWindowHandle closeIntoWaiting() {
        const auto settings = application->addWindow("General", titledClosable, false, true);
        launch(false, false);
        application->userClose(*controller->window());
        return settings;
    }

    ScopedLogCapture logs;
    std::shared_ptr<SimulatedPermissions> permissions = std::make_shared<SimulatedPermissions>();
    std::shared_ptr<SimulatedRunLoop> runLoop = std::make_shared<SimulatedRunLoop>();
    std::shared_ptr<SimulatedNotificationCenter> notifications =
        std::make_shared<SimulatedNotificationCenter>();
    std::shared_ptr<SimulatedApplicationObject> application =
        std::make_shared<SimulatedApplicationObject>(notifications);
    std::shared_ptr<PermissionStatusCoordinator> coordinator;
    std::shared_ptr<PermissionOnboardingWindowController> controller;
};

TEST_F(PermissionOnboardingTest, LaunchWithAccessibilityGrantedSkipsDespiteScreenRecording) {
    launch(true, false);
    EXPECT_EQ(controller->window(), std::nullopt);
    EXPECT_THAT(application->windows(), IsEmpty());
    EXPECT_THAT(application->activationPolicyHistory(), IsEmpty());
    EXPECT_FALSE(coordinator->isPolling());
    EXPECT_THAT(
        messages(),
        ElementsAre("permission onboarding skipped — required permissions already granted"));
}

TEST_F(PermissionOnboardingTest, LaunchWithAccessibilityMissingOpensARegularPollingWindow) {
    launch(false, true);
    const auto handle = controller->window();
    ASSERT_TRUE(handle);
    const auto window = application->window(*handle);
    EXPECT_EQ(window->title, "Welcome to Orvane");
    EXPECT_EQ(window->styleMask, 3u);
    EXPECT_FALSE(window->isReleasedWhenClosed);
    EXPECT_TRUE(window->isCentered);
    EXPECT_TRUE(window->isVisible);
    EXPECT_EQ(window->content, controller->view());
    EXPECT_EQ(application->keyWindow(), handle);
    EXPECT_EQ(application->activationCount(), 1u);
    EXPECT_EQ(application->activationPolicy(), Policy::regular);
    EXPECT_TRUE(coordinator->isPolling());
    EXPECT_THAT(messages(), ElementsAre("showing permission onboarding"));

    controller->showIfRequiredPermissionsAreMissing();
    EXPECT_EQ(application->windows().size(), 1u) << "an open window is never doubled";
    EXPECT_THAT(messages(), IsEmpty());

    permissions->setAccessibilityTrusted(true);
    runLoop->advance(0.5);
    EXPECT_EQ(action(Capability::accessibility).kind, Kind::grantedLabel);
    EXPECT_EQ(controller->window(), handle) << "a grant doesn't close the window";
}

TEST_F(PermissionOnboardingTest, EveryWayOfClosingEndsPollingAndGoesBackToAccessory) {
    const std::vector<std::pair<const char*, std::function<void()>>> closers{
        {"Continue", [this] { controller->view()->pressContinue(); }},
        {"Not now", [this] { controller->view()->pressNotNow(); }},
        {"title bar", [this] { application->userClose(*controller->window()); }},
    };
    for (const auto& [name, close] : closers) {
        SCOPED_TRACE(name);
        launch(false, false);
        const auto handle = *controller->window();
        close();
        EXPECT_EQ(controller->window(), std::nullopt);
        EXPECT_EQ(controller->view(), nullptr);
        EXPECT_FALSE(application->isVisible(handle));
        EXPECT_FALSE(coordinator->isPolling());
        EXPECT_EQ(closeObservers(), 0u);
        EXPECT_FALSE(controller->isWaitingToRestoreActivationPolicy());
        EXPECT_THAT(application->activationPolicyHistory(),
                    ElementsAre(Policy::regular, Policy::accessory));
        EXPECT_THAT(messages(),
                    ElementsAre("showing permission onboarding", "permission onboarding closed"));
        application = std::make_shared<SimulatedApplicationObject>(notifications);
    }
}

TEST_F(PermissionOnboardingTest, StaysRegularUntilTheLastUserWindowCloses) {
    const auto panel = application->addWindow("", titledClosable, true, true);
    const auto settings = closeIntoWaiting();
    EXPECT_TRUE(controller->isWaitingToRestoreActivationPolicy());
    EXPECT_EQ(application->activationPolicy(), Policy::regular);
    EXPECT_EQ(closeObservers(), 1u);

    application->close(panel);
    EXPECT_TRUE(controller->isWaitingToRestoreActivationPolicy());
    application->userClose(settings);
    EXPECT_FALSE(controller->isWaitingToRestoreActivationPolicy());
    EXPECT_EQ(closeObservers(), 0u);
    EXPECT_THAT(application->activationPolicyHistory(),
                ElementsAre(Policy::regular, Policy::accessory));
}

TEST_F(PermissionOnboardingTest, PanelsUntitledAndHiddenWindowsDontKeepTheApplicationRegular) {
    application->addWindow("Overlay", titledClosable, true, true);
    application->addWindow("Menu", window_style_mask::closable, false, true);
    application->addWindow("General", titledClosable, false, false);
    launch(false, false);
    application->userClose(*controller->window());
    EXPECT_FALSE(controller->isWaitingToRestoreActivationPolicy());
    EXPECT_EQ(application->activationPolicy(), Policy::accessory);
}

TEST_F(PermissionOnboardingTest, ShowWhileWaitingRemovesTheWaitingObserver) {
    const auto settings = closeIntoWaiting();
    controller->show();
    EXPECT_FALSE(controller->isWaitingToRestoreActivationPolicy());
    EXPECT_EQ(closeObservers(), 1u);
    application->userClose(settings);
    EXPECT_EQ(application->activationPolicy(), Policy::regular) << "the welcome window is open";
    EXPECT_TRUE(coordinator->isPolling());

    application->userClose(*controller->window());
    EXPECT_THAT(application->activationPolicyHistory(),
                ElementsAre(Policy::regular, Policy::regular, Policy::accessory));

    closeIntoWaiting();
    controller.reset();
    EXPECT_EQ(closeObservers(), 0u) << "the observers go with the controller";
}

TEST_F(PermissionOnboardingTest, RowActionsFollowTheTableAndTheRequestedSet) {
    launch(false, false);
    const auto view = controller->view();
    EXPECT_EQ(action(Capability::accessibility).kind, Kind::allowButton);
    EXPECT_EQ(action(Capability::screenRecording).text.text, "Allow…");

    view->pressRowAction(Capability::screenRecording);  // the prompt is ignored
    EXPECT_EQ(permissions->screenCaptureRequestCount(), 1u);
    EXPECT_EQ(action(Capability::screenRecording).kind, Kind::openSystemSettingsButton);
    EXPECT_EQ(action(Capability::screenRecording).text.text, "Open System Settings");
    view->pressRowAction(Capability::screenRecording);
    EXPECT_EQ(permissions->screenCaptureRequestCount(), 1u);

    permissions->setScreenRecordingGranted(true);
    permissions->setAccessibilityTrusted(true);
    runLoop->advance(0.5);
    const auto granted = action(Capability::screenRecording);
    EXPECT_EQ(granted.kind, Kind::grantedLabel);
    EXPECT_EQ(granted.text.text, "Granted");
    EXPECT_EQ(granted.symbol->name, "checkmark.circle.fill");
    EXPECT_EQ(granted.accessibilityLabel, "Screen Recording granted");
    EXPECT_EQ(action(Capability::accessibility).accessibilityLabel, "Accessibility granted");
    view->pressRowAction(Capability::screenRecording);
    view->pressRowAction(Capability::accessibility);
    EXPECT_EQ(permissions->accessibilityPromptCount(), 0u);
    EXPECT_EQ(permissions->openedURLs().size(), 1u);
    EXPECT_THAT(messages(), ElementsAre("showing permission onboarding",
                                        "requesting permission for screenRecording",
                                        "screen recording access request returned: false",
                                        "opening System Settings for screenRecording",
                                        "permission status changed: accessibility -> granted",
                                        "permission status changed: screenRecording -> granted"));

    permissions->setScreenRecordingGranted(false);
    permissions->setAccessibilityTrusted(false);
    runLoop->advance(0.5);
    EXPECT_EQ(action(Capability::screenRecording).kind, Kind::openSystemSettingsButton);
    EXPECT_EQ(action(Capability::accessibility).kind, Kind::allowButton);

    view->pressContinue();
    controller->show();
    EXPECT_THAT(controller->view()->capabilitiesAlreadyRequested(), IsEmpty());
    EXPECT_EQ(action(Capability::screenRecording).kind, Kind::allowButton);
}

TEST_F(PermissionOnboardingTest, ContentRendersTextsBadgesOrderAndButtonRoles) {
    launch(false, true);
    const auto content = controller->view()->content();
    EXPECT_EQ(content.layout.frame, (Size{560, 460}));
    EXPECT_EQ(
        PermissionOnboardingTextRenderer::render(content),
        "window 560x460\n"
        "icon symbol rectangle.2.swap 56pt accent\n"
        "title text \"Welcome to Orvane\" title semibold\n"
        "subtitle text \"A keyboard-driven window switcher for macOS.\" subheadline secondary\n"
        "rowIcon #accessibility symbol accessibility.fill title3 accent\n"
        "rowTitle #accessibility text \"Accessibility\" body medium\n"
        "rowDescription #accessibility text \"Accessibility lets Orvane list your windows, "
        "switch between them, and react to Option-Tab.\" callout secondary\n"
        "rowAction #accessibility button \"Allow…\"\n"
        "rowIcon #screenRecording symbol rectangle.dashed.badge.record title3 accent\n"
        "rowTitle #screenRecording text \"Screen Recording\" body medium\n"
        "rowBadge #screenRecording capsule \"Optional\" caption2 semibold secondary on "
        "quaternary\n"
        "rowDescription #screenRecording text \"Screen Recording adds live window previews — "
        "optional.\" callout secondary\n"
        "rowAction #screenRecording label checkmark.circle.fill \"Granted\" callout medium green "
        "reads \"Screen Recording granted\"\n"
        "footnoteSymbol symbol lock.shield footnote secondary\n"
        "footnote text \"Window contents are never read, and nothing ever leaves your Mac.\" "
        "footnote secondary\n"
        "button \"Not now\" cancel large\n"
        "button \"Continue\" default large prominent\n");
}

}  // namespace
}  // namespace orvane
