#include "app/AboutPreferencesView.h"

#include <string>
#include <utility>

#include "app/BundleInfo.h"
#include "platform/ApplicationPort.h"

namespace orvane {

namespace {

constexpr std::string_view automaticChecksToggle = "Automatically check for updates";
constexpr std::string_view checkNowButton = "Check for Updates Now";
constexpr std::string_view accessibilityButton = "Open Accessibility Settings…";
constexpr std::string_view screenRecordingButton = "Open Screen Recording Settings…";
constexpr std::string_view showAgainButton = "Show again";

}  // namespace

AboutPreferencesView::AboutPreferencesView(
    std::shared_ptr<SoftwareUpdateService> softwareUpdateService,
    std::shared_ptr<PermissionStatusProviding> permissionStatusProviding,
    std::function<void()> showWelcomeWindow, std::shared_ptr<BundlePort> bundle,
    std::shared_ptr<RunLoopPort> mainRunLoop,
    std::shared_ptr<NotificationCenterPort> applicationNotifications)
    : softwareUpdateService_(std::move(softwareUpdateService)),
      permissionStatusProviding_(std::move(permissionStatusProviding)),
      showWelcomeWindow_(std::move(showWelcomeWindow)),
      bundle_(std::move(bundle)),
      mainRunLoop_(std::move(mainRunLoop)),
      applicationNotifications_(std::move(applicationNotifications)) {
    canCheckObservation_ =
        softwareUpdateService_->observeCanCheckForUpdates([this](const bool&) { redraw(); });
    if (applicationNotifications_) {
        becameActiveObservation_ = applicationNotifications_->addObserver(
            applicationDidBecomeActiveNotification,
            [this](const PlatformNotification&) { redraw(); });
    }
}

AboutPreferencesView::~AboutPreferencesView() {
    disappear();
    softwareUpdateService_->removeCanCheckForUpdatesObserver(canCheckObservation_);
    if (becameActiveObservation_) {
        applicationNotifications_->removeObserver(*becameActiveObservation_);
    }
}

PreferencesPaneContent AboutPreferencesView::content() {
    const bool accessibility =
        permissionStatusProviding_->status(PermissionCapability::accessibility) ==
        PermissionGrantStatus::granted;
    const bool screenRecording =
        permissionStatusProviding_->status(PermissionCapability::screenRecording) ==
        PermissionGrantStatus::granted;
    PreferencesPaneContent pane;
    pane.sections.push_back(
        {"About",
         {},
         {PaneValue{"Orvane", applicationVersionText(*bundle_)},
          PaneValue{"Bundle ID", bundleInfoText(*bundle_, "CFBundleIdentifier")}},
         {PaneFootnote{"Orvane is a keyboard-driven window switcher for macOS, ordered by recency. "
                       "Customize the hold modifier and cycling behavior on the Shortcuts tab."}}});
    // Where something else brings new versions, the pane offers no control that can't work.
    if (const auto source = softwareUpdateService_->externalUpdateSource(); !source.empty()) {
        pane.sections.push_back({"Updates", {}, {}, {PaneFootnote{source}}});
    } else {
        pane.sections.push_back(
            {"Updates",
             {},
             {PaneToggle{std::string(automaticChecksToggle),
                         softwareUpdateService_->automaticallyChecksForUpdates()},
              PaneButton{.title = std::string(checkNowButton),
                         .isEnabled = softwareUpdateService_->canCheckForUpdates()}},
             {PaneFootnote{"Orvane checks in the background and offers new versions when they "
                           "are available."}}});
    }
    pane.sections.push_back(
        {"Permissions",
         {},
         {PaneActionRow{"Accessibility access",
                        PermissionStatusBadge{accessibility},
                        {std::string(accessibilityButton), true,
                         "Orvane needs Accessibility access to list your windows, switch between "
                         "them, and react to Option-Tab."}},
          PaneActionRow{"Screen Recording access",
                        PermissionStatusBadge{screenRecording},
                        {std::string(screenRecordingButton), true,
                         "Optional — adds live window previews to the switcher cards."}},
          PaneActionRow{"Welcome window",
                        std::nullopt,
                        {std::string(showAgainButton), true,
                         "Re-display the welcome screen that walks through the permissions."}}},
         {PaneFootnote{accessibility
                           ? "Orvane can list and switch your windows. Screen Recording is "
                             "optional — it only adds live previews."
                           : "Orvane cannot switch windows without Accessibility. Click \"Open "
                             "Accessibility Settings…\", then enable Orvane in the list."}}});
    return pane;
}

bool AboutPreferencesView::setToggle(std::string_view label, bool isOn) {
    if (label != automaticChecksToggle || !softwareUpdateService_->externalUpdateSource().empty()) {
        return false;
    }
    softwareUpdateService_->setAutomaticallyChecksForUpdates(isOn);
    redraw();
    return true;
}

bool AboutPreferencesView::press(std::string_view title) {
    if (title == checkNowButton) {
        if (!softwareUpdateService_->canCheckForUpdates()) {
            return false;
        }
        softwareUpdateService_->checkForUpdates();
    } else if (title == accessibilityButton) {
        permissionStatusProviding_->openSystemSettings(PermissionCapability::accessibility);
    } else if (title == screenRecordingButton) {
        permissionStatusProviding_->openSystemSettings(PermissionCapability::screenRecording);
    } else if (title == showAgainButton) {
        showWelcomeWindow_();
    } else {
        return false;
    }
    redraw();
    return true;
}

void AboutPreferencesView::appear() {
    disappear();
    // The tick only asks for a redraw, on a later turn of the main loop; it runs while the tab
    // shows, whether or not the application is active.
    std::weak_ptr<AboutPreferencesView> weakSelf = weak_from_this();
    permissionPollTimer_ = mainRunLoop_->scheduleTimer(permissionPollInterval, true, 0,
                                                       [weakSelf, runLoop = mainRunLoop_] {
                                                           runLoop->post([weakSelf] {
                                                               if (auto self = weakSelf.lock()) {
                                                                   self->redraw();
                                                               }
                                                           });
                                                       });
}

void AboutPreferencesView::disappear() {
    if (permissionPollTimer_) {
        mainRunLoop_->cancelTimer(*permissionPollTimer_);
        permissionPollTimer_.reset();
    }
}

}  // namespace orvane
