#include "permissions/PermissionOnboardingView.h"

#include <algorithm>
#include <string>
#include <utility>

namespace orvane {

namespace {

using Style = OnboardingTextStyle;
using Weight = OnboardingFontWeight;
using Color = OnboardingColorRole;

struct CapabilityDescription {
    const char* symbol;
    const char* description;
};

CapabilityDescription describe(PermissionCapability capability) {
    switch (capability) {
        case PermissionCapability::accessibility:
            return {"accessibility.fill",
                    "Accessibility lets Orvane list your windows, switch between them, and react "
                    "to Option-Tab."};
        case PermissionCapability::screenRecording:
            return {"rectangle.dashed.badge.record",
                    "Screen Recording adds live window previews — optional."};
    }
    return {"", ""};
}

bool isRequired(PermissionCapability capability) {
    return std::find(requiredPermissionCapabilities.begin(), requiredPermissionCapabilities.end(),
                     capability) != requiredPermissionCapabilities.end();
}

PermissionRowAction makeAction(PermissionRowActionKind kind, const std::string& displayTitle) {
    switch (kind) {
        case PermissionRowActionKind::grantedLabel:
            return {kind,
                    {"Granted", {Style::callout, Weight::medium}, Color::green},
                    OnboardingSymbol{
                        "checkmark.circle.fill", {Style::callout, Weight::medium}, Color::green},
                    displayTitle + " granted"};
        case PermissionRowActionKind::allowButton:
            return {kind, {"Allow…", {}, Color::primary}, std::nullopt, ""};
        case PermissionRowActionKind::openSystemSettingsButton:
            return {kind, {"Open System Settings", {}, Color::primary}, std::nullopt, ""};
    }
    return {};
}

}  // namespace

PermissionOnboardingView::PermissionOnboardingView(
    std::shared_ptr<PermissionStatusCoordinator> permissionStatusCoordinator,
    std::function<void()> onContinue, std::function<void()> onNotNow)
    : permissionStatusCoordinator_(std::move(permissionStatusCoordinator)),
      onContinue_(std::move(onContinue)),
      onNotNow_(std::move(onNotNow)) {}

PermissionRowActionKind PermissionOnboardingView::actionKind(
    PermissionCapability capability) const {
    const auto& table = permissionStatusCoordinator_->statusByCapability().value();
    const auto entry = table.find(capability);
    if (entry != table.end() && entry->second == PermissionGrantStatus::granted) {
        return PermissionRowActionKind::grantedLabel;
    }
    return capabilitiesAlreadyRequested_.contains(capability)
               ? PermissionRowActionKind::openSystemSettingsButton
               : PermissionRowActionKind::allowButton;
}

PermissionOnboardingContent PermissionOnboardingView::content() const {
    PermissionOnboardingContent content;
    content.icon = {"rectangle.2.swap", {OnboardingPointSize{56}, Weight::regular}, Color::accent};
    content.title = {"Welcome to Orvane", {Style::title, Weight::semibold}, Color::primary};
    content.subtitle = {
        "A keyboard-driven window switcher for macOS.", {Style::subheadline}, Color::secondary};
    for (auto capability : allPermissionCapabilities) {
        const auto description = describe(capability);
        const std::string title(PermissionStatusCoordinator::displayTitle(capability));
        PermissionOnboardingRow row;
        row.capability = capability;
        row.icon = {description.symbol, {Style::title3}, Color::accent};
        row.title = {title, {Style::body, Weight::medium}, Color::primary};
        const auto kind = actionKind(capability);
        // Where the platform can tell what keeps a capability away, the row says that instead.
        auto reason = kind == PermissionRowActionKind::grantedLabel
                          ? std::string()
                          : permissionStatusCoordinator_->missingReason(capability);
        row.description = {reason.empty() ? std::string(description.description) : reason,
                           {Style::callout},
                           Color::secondary};
        if (!isRequired(capability)) {
            row.badge =
                OnboardingBadge{{"Optional", {Style::caption2, Weight::semibold}, Color::secondary},
                                Color::quaternary};
        }
        row.action = makeAction(kind, title);
        content.rows.push_back(std::move(row));
    }
    content.footnoteSymbol = {"lock.shield", {Style::footnote}, Color::secondary};
    content.footnote = {"Window contents are never read, and nothing ever leaves your Mac.",
                        {Style::footnote},
                        Color::secondary};
    // Continue works with nothing granted, so neither button is ever disabled.
    content.buttons = {
        {"Not now", OnboardingButtonRole::cancelAction, OnboardingButtonStyle::automatic,
         OnboardingControlSize::large, true},
        {"Continue", OnboardingButtonRole::defaultAction, OnboardingButtonStyle::borderedProminent,
         OnboardingControlSize::large, true},
    };
    return content;
}

void PermissionOnboardingView::pressRowAction(PermissionCapability capability) {
    switch (actionKind(capability)) {
        case PermissionRowActionKind::grantedLabel:
            return;
        case PermissionRowActionKind::allowButton:
            // Recorded first: a declined or ignored prompt leaves the table as it was.
            capabilitiesAlreadyRequested_.insert(capability);
            permissionStatusCoordinator_->requestAccess(capability);
            return;
        case PermissionRowActionKind::openSystemSettingsButton:
            permissionStatusCoordinator_->openSystemSettings(capability);
            return;
    }
}

// Copies, since closing the window may let go of the last reference to this view.
void PermissionOnboardingView::pressContinue() {
    if (auto callback = onContinue_) {
        callback();
    }
}

void PermissionOnboardingView::pressNotNow() {
    if (auto callback = onNotNow_) {
        callback();
    }
}

}  // namespace orvane
