#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
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
using ::testing::HasSubstr;
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
    Kind kind(Capability capability) {
        const auto rows = controller->view()->content().rows;
        return rows.at(static_cast<std::size_t>(capability)).action.kind;
    }
    bool waiting() { return controller->isWaitingToRestoreActivationPolicy(); }
    void closeWelcome() { application->userClose(*controller->window()); }

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

TEST_F(PermissionOnboardingTest,
       OnlyMissingAccessibilityOpensARegularPollingWindowOnceUntilClosed) {
    launch(true, false);
    EXPECT_EQ(controller->window(), std::nullopt);
    EXPECT_FALSE(coordinator->isPolling());
    EXPECT_THAT(
        messages(),
        ElementsAre("permission onboarding skipped — required permissions already granted"));

    launch(false, true);
    const auto handle = controller->window();
    ASSERT_TRUE(handle);
    const auto window = application->window(*handle);
    EXPECT_EQ(window->title, "Welcome to Orvane");
    EXPECT_EQ(window->styleMask, 3u);
    EXPECT_FALSE(window->isReleasedWhenClosed);
    EXPECT_TRUE(window->isCentered && window->isVisible);
    EXPECT_EQ(window->content, controller->view());
    EXPECT_EQ(application->keyWindow(), handle);
    EXPECT_EQ(application->activationCount(), 1u);
    EXPECT_TRUE(coordinator->isPolling());
    EXPECT_THAT(messages(), ElementsAre("showing permission onboarding"));
    controller->showIfRequiredPermissionsAreMissing();
    EXPECT_EQ(application->windows().size(), 1u) << "an open window is never doubled";

    // Not now; Continue and the title bar end the same way.
    controller->view()->pressNotNow();
    EXPECT_EQ(controller->window(), std::nullopt);
    EXPECT_EQ(controller->view(), nullptr);
    EXPECT_FALSE(coordinator->isPolling());
    EXPECT_EQ(closeObservers(), 0u);
    EXPECT_THAT(application->activationPolicyHistory(),
                ElementsAre(Policy::regular, Policy::accessory));
    EXPECT_THAT(messages(), ElementsAre("permission onboarding closed"));
}

TEST_F(PermissionOnboardingTest, StaysRegularUntilTheLastVisibleTitledNonPanelWindowCloses) {
    const auto panel = application->addWindow("Overlay", titledClosable, true, true);
    application->addWindow("Menu", window_style_mask::closable, false, true);
    application->addWindow("General", titledClosable, false, false);
    launch(false, false);
    closeWelcome();

    const auto settings = application->addWindow("General", titledClosable, false, true);
    controller->show();
    closeWelcome();
    EXPECT_TRUE(waiting());
    application->close(panel);
    // Shown again, the welcome window's own close decides.
    controller->show();
    EXPECT_FALSE(waiting());
    application->userClose(settings);
    closeWelcome();

    const auto other = application->addWindow("General", titledClosable, false, true);
    controller->show();
    closeWelcome();
    application->userClose(other);
    EXPECT_FALSE(waiting());
    EXPECT_EQ(closeObservers(), 0u);
    EXPECT_THAT(application->activationPolicyHistory(),
                ElementsAre(Policy::regular, Policy::accessory, Policy::regular, Policy::regular,
                            Policy::accessory, Policy::regular, Policy::accessory));

    application->addWindow("General", titledClosable, false, true);
    controller->show();
    closeWelcome();
    controller.reset();
    EXPECT_EQ(closeObservers(), 0u) << "the observers go with the controller";
}

TEST_F(PermissionOnboardingTest, RowActionsAskOnceThenOpenSettingsAndFollowTheTable) {
    launch(false, false);
    const auto view = controller->view();
    view->pressRowAction(Capability::screenRecording);  // the prompt is ignored
    view->pressRowAction(Capability::screenRecording);
    EXPECT_EQ(permissions->screenCaptureRequestCount(), 1u);
    EXPECT_EQ(kind(Capability::screenRecording), Kind::openSystemSettingsButton);
    EXPECT_EQ(kind(Capability::accessibility), Kind::allowButton);

    permissions->setScreenRecordingGranted(true);
    permissions->setAccessibilityTrusted(true);
    runLoop->advance(0.5);
    const auto rendered = PermissionOnboardingTextRenderer::render(view->content());
    EXPECT_THAT(rendered, HasSubstr("rowAction #screenRecording label checkmark.circle.fill "
                                    "\"Granted\" callout medium green reads \"Screen Recording "
                                    "granted\"\n"));
    EXPECT_THAT(rendered, HasSubstr("\"Granted\" callout medium green reads \"Accessibility "
                                    "granted\"\nrowIcon #screenRecording"));
    view->pressRowAction(Capability::screenRecording);
    view->pressRowAction(Capability::accessibility);
    EXPECT_EQ(permissions->accessibilityPromptCount(), 0u);
    EXPECT_EQ(permissions->openedURLs().size(), 1u);
    EXPECT_TRUE(controller->window()) << "a grant doesn't close the window";
    EXPECT_THAT(messages(), ElementsAre("showing permission onboarding",
                                        "requesting permission for screenRecording",
                                        "screen recording access request returned: false",
                                        "opening System Settings for screenRecording",
                                        "permission status changed: accessibility -> granted",
                                        "permission status changed: screenRecording -> granted"));

    permissions->setScreenRecordingGranted(false);
    permissions->setAccessibilityTrusted(false);
    runLoop->advance(0.5);
    EXPECT_EQ(kind(Capability::screenRecording), Kind::openSystemSettingsButton);
    EXPECT_EQ(kind(Capability::accessibility), Kind::allowButton);
    view->pressContinue();
    controller->show();
    EXPECT_EQ(kind(Capability::screenRecording), Kind::allowButton) << "a new window asks anew";
}

}  // namespace
}  // namespace orvane
