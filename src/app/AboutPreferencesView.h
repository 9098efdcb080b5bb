// The About pane: the version, software updates, and the two permissions with a live status. It
// polls the permissions once a second exactly while it is on screen, so that a change made in the
// system's settings shows within a second, and it calls the welcome window back.
#pragma once

#include <functional>
#include <memory>
#include <optional>

#include "app/PreferencesPaneView.h"
#include "core/PermissionStatusProviding.h"
#include "core/SoftwareUpdateService.h"
#include "platform/BundlePort.h"
#include "platform/NotificationCenterPort.h"
#include "platform/RunLoopPort.h"

namespace orvane {

class AboutPreferencesView final : public PreferencesPaneView,
                                   public std::enable_shared_from_this<AboutPreferencesView> {
  public:
    static constexpr double permissionPollInterval = 1.0;

    AboutPreferencesView(std::shared_ptr<SoftwareUpdateService> softwareUpdateService,
                         std::shared_ptr<PermissionStatusProviding> permissionStatusProviding,
                         std::function<void()> showWelcomeWindow,
                         std::shared_ptr<BundlePort> bundle,
                         std::shared_ptr<RunLoopPort> mainRunLoop,
                         std::shared_ptr<NotificationCenterPort> applicationNotifications);
    ~AboutPreferencesView() override;
    AboutPreferencesView(const AboutPreferencesView&) = delete;
    AboutPreferencesView& operator=(const AboutPreferencesView&) = delete;

    PreferencesPaneContent content() override;
    bool setToggle(std::string_view label, bool isOn) override;
    bool press(std::string_view title) override;
    // Starts the poll, replacing one that may be left; `disappear` stops it.
    void appear() override;
    void disappear() override;

    bool isPolling() const { return permissionPollTimer_.has_value(); }

  private:
    std::shared_ptr<SoftwareUpdateService> softwareUpdateService_;
    std::shared_ptr<PermissionStatusProviding> permissionStatusProviding_;
    std::function<void()> showWelcomeWindow_;
    std::shared_ptr<BundlePort> bundle_;
    std::shared_ptr<RunLoopPort> mainRunLoop_;
    std::shared_ptr<NotificationCenterPort> applicationNotifications_;
    std::optional<TimerToken> permissionPollTimer_;
    ObservationToken canCheckObservation_ = 0;
    std::optional<NotificationObservationToken> becameActiveObservation_;
};

}  // namespace orvane
