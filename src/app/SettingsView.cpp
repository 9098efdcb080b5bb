#include "app/SettingsView.h"

#include <utility>

namespace orvane {

std::shared_ptr<SettingsView> SettingsView::make(Dependencies dependencies) {
    std::shared_ptr<SettingsView> view(new SettingsView(std::move(dependencies)));
    view->listen();
    return view;
}

SettingsView::SettingsView(Dependencies dependencies)
    : dependencies_(std::move(dependencies)),
      general_(dependencies_.preferencesProvider, dependencies_.permissionStatusProviding,
               dependencies_.loginItem, dependencies_.applicationNotifications),
      shortcuts_(dependencies_.preferencesProvider),
      about_(std::make_shared<AboutPreferencesView>(
          dependencies_.softwareUpdateService, dependencies_.permissionStatusProviding,
          dependencies_.showWelcomeWindow, dependencies_.bundle, dependencies_.mainRunLoop,
          dependencies_.applicationNotifications)) {}

SettingsView::~SettingsView() {
    if (paneObservation_) {
        dependencies_.applicationNotifications->removeObserver(*paneObservation_);
    }
}

void SettingsView::listen() {
    std::weak_ptr<SettingsView> weakSelf = weak_from_this();
    paneObservation_ = dependencies_.applicationNotifications->addObserver(
        openSettingsPaneNotificationName, [weakSelf](const PlatformNotification& notification) {
            auto self = weakSelf.lock();
            const auto entry = notification.userInfo.find(settingsPaneUserInfoKey);
            if (!self || entry == notification.userInfo.end()) {
                return;
            }
            // An unknown pane is ignored.
            if (const auto pane = settingsPaneFromRawValue(entry->second)) {
                self->select(*pane);
            }
        });
}

void SettingsView::select(SettingsPane pane) {
    if (pane == selectedPane_.value()) {
        return;
    }
    if (isShowing_) {
        this->pane(selectedPane_.value()).disappear();
    }
    selectedPane_.set(pane);
    if (isShowing_) {
        this->pane(pane).appear();
    }
    didUpdate();
}

PreferencesPaneView& SettingsView::pane(SettingsPane pane) {
    switch (pane) {
        case SettingsPane::general:
            return general_;
        case SettingsPane::shortcuts:
            return shortcuts_;
        case SettingsPane::about:
            return *about_;
    }
    return general_;
}

std::string SettingsView::title() const {
    return "Orvane Settings — " + std::string(displayTitle(selectedPane_.value()));
}

void SettingsView::attach(std::optional<PlatformWindowHandle> window) {
    window_ = window;
    didUpdate();
}

void SettingsView::windowDidShow() {
    if (!isShowing_) {
        isShowing_ = true;
        pane(selectedPane_.value()).appear();
    }
}

void SettingsView::windowDidHide() {
    if (isShowing_) {
        isShowing_ = false;
        pane(selectedPane_.value()).disappear();
    }
}

void SettingsView::didUpdate() {
    std::weak_ptr<SettingsView> weakSelf = weak_from_this();
    dependencies_.mainRunLoop->post([weakSelf] {
        auto self = weakSelf.lock();
        if (self && self->window_) {
            self->dependencies_.application->setTitle(*self->window_, self->title());
        }
    });
}

}  // namespace orvane
