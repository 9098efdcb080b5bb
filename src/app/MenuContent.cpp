#include "app/MenuContent.h"

#include <utility>

#include "core/Logger.h"

namespace orvane {

MenuContent::MenuContent(std::function<void()> openSettings,
                         std::shared_ptr<PermissionStatusCoordinator> permissionStatusProviding,
                         std::shared_ptr<SoftwareUpdateService> softwareUpdateService,
                         std::shared_ptr<BugReportComposer> bugReportComposer,
                         std::shared_ptr<ApplicationPort> application,
                         std::function<void(const std::string&)> openURL)
    : openSettings_(std::move(openSettings)),
      permissionStatusProviding_(std::move(permissionStatusProviding)),
      softwareUpdateService_(std::move(softwareUpdateService)),
      bugReportComposer_(std::move(bugReportComposer)),
      application_(std::move(application)),
      openURL_(std::move(openURL)) {
    const auto redraw = [this](const auto&) { redraws_.set(redraws_.value() + 1); };
    tableObservation_ = permissionStatusProviding_->statusByCapability().subscribe(redraw);
    canCheckObservation_ = softwareUpdateService_->observeCanCheckForUpdates(redraw);
}

MenuContent::~MenuContent() {
    permissionStatusProviding_->statusByCapability().unsubscribe(tableObservation_);
    softwareUpdateService_->removeCanCheckForUpdatesObserver(canCheckObservation_);
}

std::vector<MenuEntry> MenuContent::entries() {
    using enum MenuEntryKind;
    const MenuEntry divider;
    std::vector<MenuEntry> menu;
    menu.push_back({button, "About Orvane", {}, true, {}, MenuAction::about});
    menu.push_back(divider);
    if (permissionStatusProviding_->status(PermissionCapability::accessibility) ==
        PermissionGrantStatus::granted) {
        menu.push_back(
            {label, "Accessibility permission granted", "checkmark", false, {}, MenuAction::none});
    } else {
        menu.push_back({button,
                        "Open Accessibility Settings…",
                        {},
                        true,
                        {},
                        MenuAction::openAccessibilitySettings});
    }
    menu.push_back(divider);
    menu.push_back({button, "Settings…", {}, true, ",", MenuAction::settings});
    // A desktop whose package manager brings new versions has no such entry in its programs.
    if (softwareUpdateService_->externalUpdateSource().empty()) {
        menu.push_back({button,
                        "Check for Updates…",
                        {},
                        softwareUpdateService_->canCheckForUpdates(),
                        {},
                        MenuAction::checkForUpdates});
    }
    menu.push_back(divider);
    menu.push_back({button, "Copy Diagnostics", {}, true, {}, MenuAction::copyDiagnostics});
    menu.push_back({button, "Report a Bug…", {}, true, {}, MenuAction::reportBug});
    menu.push_back(divider);
    menu.push_back({button, "Quit Orvane", {}, true, "q", MenuAction::quit});
    return menu;
}

void MenuContent::choose(MenuAction action) {
    switch (action) {
        case MenuAction::none:
            return;
        case MenuAction::about:
            showAboutPanel();
            return;
        case MenuAction::openAccessibilitySettings:
            permissionStatusProviding_->openSystemSettings(PermissionCapability::accessibility);
            return;
        case MenuAction::settings:
            application_->activate();
            openSettings_();
            return;
        case MenuAction::checkForUpdates:
            if (softwareUpdateService_->canCheckForUpdates()) {
                softwareUpdateService_->checkForUpdates();
            }
            return;
        case MenuAction::copyDiagnostics:
            bugReportComposer_->copyDiagnosticsToClipboard();
            return;
        case MenuAction::reportBug:
            reportBug();
            return;
        case MenuAction::quit:
            application_->terminate();
            return;
    }
}

void MenuContent::showAboutPanel() {
    application_->activate();
    // Without the logo the panel opens with no options at all.
    application_->orderFrontStandardAboutPanel(application_->imageNamed("AboutPanelLogo"));
}

void MenuContent::reportBug() {
    if (auto url = bugReportComposer_->composeBugReportURL()) {
        openURL_(*url);
        return;
    }
    Logger::forCategory(LogCategory::diagnostics).error("could not compose bug report URL");
}

}  // namespace orvane
