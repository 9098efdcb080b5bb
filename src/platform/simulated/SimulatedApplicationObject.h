// The program's own application object on the simulated desktop: its activation policy and
// activation, and the windows it owns, whose closings it posts to the application's notification
// centre. Tests and the simulator add the windows the program doesn't build through the port.
#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <vector>

#include "platform/ApplicationPort.h"
#include "platform/NotificationCenterPort.h"
#include "platform/RunLoopPort.h"

namespace orvane {

class SimulatedApplicationObject final : public ApplicationPort {
  public:
    struct Window {
        PlatformWindowHandle handle = 0;
        std::shared_ptr<HostedView> content;
        std::string title;
        std::uint64_t styleMask = 0;
        bool isVisible = false;
        bool isPanel = false;
        bool isReleasedWhenClosed = true;
        bool isCentered = false;
    };

    // Starts as a background application, as the program's bundle declares it.
    // With a run loop, becoming active posts the application's did-become-active notification
    // through it, as the platform tells it after the activation has happened.
    explicit SimulatedApplicationObject(
        std::shared_ptr<NotificationCenterPort> applicationNotifications,
        ApplicationActivationPolicy initialPolicy = ApplicationActivationPolicy::accessory,
        std::shared_ptr<RunLoopPort> runLoop = nullptr);

    // In the order they were made; a window released when closed is gone from here once closed.
    std::vector<PlatformWindowHandle> windows() const override;
    void setActivationPolicy(ApplicationActivationPolicy policy) override;
    void activate() override;
    // Runs the Settings window's opener when one is set and the action is handled.
    bool showSettingsWindow() override;
    void orderFrontStandardAboutPanel(std::optional<ImageHandle> applicationIcon) override;
    // Finds the bundle's two images, "MenuBarIcon" and "AboutPanelLogo".
    std::optional<ImageHandle> imageNamed(const std::string& name) const override;
    // Counts the request and runs the termination handler on a later turn of the run loop (at
    // once without one).
    void terminate() override;

    PlatformWindowHandle makeWindow(std::shared_ptr<HostedView> content) override;
    void setTitle(PlatformWindowHandle window, const std::string& title) override;
    void setStyleMask(PlatformWindowHandle window, std::uint64_t styleMask) override;
    void setReleasedWhenClosed(PlatformWindowHandle window, bool released) override;
    void center(PlatformWindowHandle window) override;
    void makeKeyAndOrderFront(PlatformWindowHandle window) override;
    // Posts the will-close notification while the window is still visible, then hides it. A
    // window that is closed already, or unknown, is left alone.
    void close(PlatformWindowHandle window) override;
    bool isVisible(PlatformWindowHandle window) const override;
    std::uint64_t styleMask(PlatformWindowHandle window) const override;
    bool isPanel(PlatformWindowHandle window) const override;

    // A window the program has without building it through the port, such as the Settings
    // window, the overlay's panel or the menu bar's windows. Not released when closed, so that it
    // can be shown again.
    PlatformWindowHandle addWindow(const std::string& title, std::uint64_t styleMask, bool isPanel,
                                   bool visible);
    // The user presses the title bar's close button.
    void userClose(PlatformWindowHandle window) { close(window); }

    std::optional<Window> window(PlatformWindowHandle window) const;
    std::optional<PlatformWindowHandle> keyWindow() const { return keyWindow_; }
    ApplicationActivationPolicy activationPolicy() const { return activationPolicy_; }
    // Every policy set, in order, repeated ones included.
    const std::vector<ApplicationActivationPolicy>& activationPolicyHistory() const {
        return activationPolicyHistory_;
    }
    bool isActive() const { return isActive_; }
    std::size_t activationCount() const { return activationCount_; }
    // Another application comes to the front.
    void resignActive() { isActive_ = false; }

    void setShowSettingsWindowResult(bool handled) { showSettingsWindowResult_ = handled; }
    void setSettingsWindowOpener(std::function<void()> opener) {
        settingsWindowOpener_ = std::move(opener);
    }
    void setTerminationHandler(std::function<void()> handler) {
        terminationHandler_ = std::move(handler);
    }
    // The icons the About panel was shown with, one per showing.
    const std::vector<std::optional<ImageHandle>>& aboutPanels() const { return aboutPanels_; }
    std::size_t showSettingsWindowCount() const { return showSettingsWindowCount_; }

  private:
    struct Entry {
        Window window;
        // Since the last time it was shown.
        bool isClosed = false;
    };

    Entry* find(PlatformWindowHandle window);
    const Entry* find(PlatformWindowHandle window) const;

    std::shared_ptr<NotificationCenterPort> applicationNotifications_;
    std::shared_ptr<RunLoopPort> runLoop_;
    ApplicationActivationPolicy activationPolicy_;
    std::vector<ApplicationActivationPolicy> activationPolicyHistory_;
    bool isActive_ = false;
    std::size_t activationCount_ = 0;
    bool showSettingsWindowResult_ = true;
    std::size_t showSettingsWindowCount_ = 0;
    std::function<void()> settingsWindowOpener_;
    const std::set<std::string> imageNames_{"MenuBarIcon", "AboutPanelLogo"};
    std::function<void()> terminationHandler_;
    std::vector<std::optional<ImageHandle>> aboutPanels_;
    std::map<PlatformWindowHandle, Entry> windows_;
    PlatformWindowHandle lastHandle_ = 0;
    std::optional<PlatformWindowHandle> keyWindow_;
};

}  // namespace orvane
