#include "app/GeneralPreferencesView.h"

#include <string>
#include <utility>

#include "platform/ApplicationPort.h"

namespace orvane {

namespace {

constexpr std::string_view loginToggle = "Launch Orvane at login";
constexpr std::string_view menuBarToggle = "Show menu bar icon";
constexpr std::string_view previewsToggle = "Show live window previews";
constexpr std::string_view layoutPicker = "Layout";
constexpr std::string_view cardSizePicker = "Card size";
constexpr std::string_view openScreenRecording = "Open System Settings…";

}  // namespace

GeneralPreferencesView::GeneralPreferencesView(
    std::shared_ptr<PreferencesStore> preferencesProvider,
    std::shared_ptr<PermissionStatusProviding> permissionStatusProviding,
    std::shared_ptr<LoginItemPort> loginItem,
    std::shared_ptr<NotificationCenterPort> applicationNotifications)
    : preferencesProvider_(std::move(preferencesProvider)),
      permissionStatusProviding_(std::move(permissionStatusProviding)),
      loginItem_(std::move(loginItem)),
      applicationNotifications_(std::move(applicationNotifications)),
      launchAtLoginConfigurator_(loginItem_) {
    preferencesObservation_ =
        preferencesProvider_->observePreferences([this](const SwitcherPreferences&) { redraw(); });
    if (applicationNotifications_) {
        // No timer here: a grant given elsewhere shows when the user comes back.
        becameActiveObservation_ = applicationNotifications_->addObserver(
            applicationDidBecomeActiveNotification,
            [this](const PlatformNotification&) { redraw(); });
    }
}

GeneralPreferencesView::~GeneralPreferencesView() {
    preferencesProvider_->removePreferencesObserver(preferencesObservation_);
    if (becameActiveObservation_) {
        applicationNotifications_->removeObserver(*becameActiveObservation_);
    }
}

bool GeneralPreferencesView::isScreenRecordingGranted() {
    return permissionStatusProviding_->status(PermissionCapability::screenRecording) ==
           PermissionGrantStatus::granted;
}

PreferencesPaneContent GeneralPreferencesView::content() {
    const auto preferences = preferencesProvider_->preferences();
    const bool previewsAllowed = isScreenRecordingGranted();
    PreferencesPaneContent pane;
    std::vector<PaneFooterItem> startupFooter{
        PaneFootnote{"Automatically start Orvane when you log in to your Mac."}};
    if (auto note = loginItem_->note()) {
        startupFooter.push_back(PaneFootnote{std::move(*note)});
    }
    pane.sections.push_back(
        {"Startup",
         {},
         {PaneToggle{.label = std::string(loginToggle), .isOn = launchAtLoginEnabled_}},
         std::move(startupFooter)});
    pane.sections.push_back(
        {"Menu Bar",
         {},
         {PaneToggle{.label = std::string(menuBarToggle), .isOn = preferences.menuBarIconVisible}},
         {PaneFootnote{"With the icon hidden, Settings stays reachable by relaunching the app."}}});
    std::vector<PaneFooterItem> previewsFooter;
    if (previewsAllowed) {
        previewsFooter.push_back(PaneFootnote{
            "Cards show a live preview of each window. When off, cards show app icons only."});
    } else {
        previewsFooter.push_back(PaneFootnote{"Live previews require Screen Recording"});
        previewsFooter.push_back(
            PaneButton{.title = std::string(openScreenRecording), .isSmall = true});
    }
    // Disabled, the toggle still shows what is stored.
    pane.sections.push_back(
        {"Previews",
         {},
         {PaneToggle{std::string(previewsToggle), preferences.thumbnailsEnabled, previewsAllowed}},
         std::move(previewsFooter)});
    pane.sections.push_back(
        {"Layout",
         {},
         {PanePicker{.label = std::string(layoutPicker),
                     .segments = {"Row", "Grid"},
                     .selectedIndex = static_cast<std::size_t>(preferences.overlayLayoutStyle)},
          PanePicker{.label = std::string(cardSizePicker),
                     .segments = {"Small", "Medium", "Large"},
                     .selectedIndex = static_cast<std::size_t>(preferences.cardSize)}},
         {PaneFootnote{"Row keeps every window on one line and wraps into a grid automatically "
                       "when there are too many."}}});
    noteFailedWrite(pane, *preferencesProvider_);
    return pane;
}

bool GeneralPreferencesView::setToggle(std::string_view label, bool isOn) {
    if (label == loginToggle) {
        launchAtLoginConfigurator_.setLaunchAtLoginEnabled(isOn);
        readLoginStatus();
        return true;
    }
    if (label == menuBarToggle) {
        change(*preferencesProvider_, menuBarToggle,
               [isOn](SwitcherPreferences& preferences) { preferences.menuBarIconVisible = isOn; });
        return true;
    }
    if (label == previewsToggle && isScreenRecordingGranted()) {
        change(*preferencesProvider_, previewsToggle,
               [isOn](SwitcherPreferences& preferences) { preferences.thumbnailsEnabled = isOn; });
        return true;
    }
    return false;
}

bool GeneralPreferencesView::pick(std::string_view label, std::size_t segment) {
    if (label == layoutPicker && segment < allSwitcherOverlayLayoutStyles.size()) {
        change(*preferencesProvider_, layoutPicker, [segment](SwitcherPreferences& preferences) {
            preferences.overlayLayoutStyle = allSwitcherOverlayLayoutStyles[segment];
        });
        return true;
    }
    if (label == cardSizePicker && segment < allSwitcherCardSizes.size()) {
        change(*preferencesProvider_, cardSizePicker, [segment](SwitcherPreferences& preferences) {
            preferences.cardSize = allSwitcherCardSizes[segment];
        });
        return true;
    }
    return false;
}

bool GeneralPreferencesView::press(std::string_view title) {
    if (title != openScreenRecording || isScreenRecordingGranted()) {
        return false;
    }
    permissionStatusProviding_->openSystemSettings(PermissionCapability::screenRecording);
    redraw();
    return true;
}

void GeneralPreferencesView::appear() {
    readLoginStatus();
}

void GeneralPreferencesView::readLoginStatus() {
    launchAtLoginEnabled_ = loginItem_->status() == LoginItemStatus::enabled;
    redraw();
}

}  // namespace orvane
