// The application object on this desktop: the activation policy (a background program keeps no
// taskbar entry either way, so it is remembered and reported), and the windows the program opens
// itself, kept as records with their closings posted to the application's notification centre.
#pragma once

#include <map>
#include <memory>

#include "platform/ApplicationPort.h"
#include "platform/NotificationCenterPort.h"
#include "platform/RunLoopPort.h"

namespace orvane {

class QtApplicationObject final : public ApplicationPort {
  public:
    explicit QtApplicationObject(std::shared_ptr<NotificationCenterPort> notifications);

    std::vector<PlatformWindowHandle> windows() const override;
    void setActivationPolicy(ApplicationActivationPolicy policy) override;
    void activate() override;
    // No Settings window exists on this desktop yet: nobody handles the action.
    bool showSettingsWindow() override { return false; }
    PlatformWindowHandle makeWindow(std::shared_ptr<HostedView> content) override;
    void setTitle(PlatformWindowHandle window, const std::string& title) override;
    void setStyleMask(PlatformWindowHandle window, std::uint64_t styleMask) override;
    void setReleasedWhenClosed(PlatformWindowHandle, bool) override {}
    void center(PlatformWindowHandle) override {}
    void makeKeyAndOrderFront(PlatformWindowHandle window) override;
    void close(PlatformWindowHandle window) override;
    bool isVisible(PlatformWindowHandle window) const override;
    std::uint64_t styleMask(PlatformWindowHandle window) const override;
    bool isPanel(PlatformWindowHandle) const override { return false; }

    ApplicationActivationPolicy activationPolicy() const { return policy_; }

  private:
    struct Window {
        std::shared_ptr<HostedView> content;
        std::string title;
        std::uint64_t styleMask = 0;
        bool visible = false;
    };
    std::shared_ptr<NotificationCenterPort> notifications_;
    std::map<PlatformWindowHandle, Window> windows_;
    PlatformWindowHandle lastHandle_ = 0;
    ApplicationActivationPolicy policy_ = ApplicationActivationPolicy::accessory;
};

}  // namespace orvane
