// The application object on this desktop: the activation policy (a background program keeps no
// taskbar entry either way, so it is remembered and reported), and the windows the program opens
// itself, kept as records with their closings posted to the application's notification centre.
#pragma once

#include <QPointer>
#include <QWidget>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>

#include "platform/ApplicationPort.h"
#include "platform/NotificationCenterPort.h"
#include "platform/RunLoopPort.h"

namespace orvane {

class QtApplicationObject final : public ApplicationPort {
  public:
    // Posts `applicationDidBecomeActiveNotification` whenever a window of the program gets the
    // focus.
    explicit QtApplicationObject(std::shared_ptr<NotificationCenterPort> notifications);
    ~QtApplicationObject() override;
    QtApplicationObject(const QtApplicationObject&) = delete;
    QtApplicationObject& operator=(const QtApplicationObject&) = delete;

    std::vector<PlatformWindowHandle> windows() const override;
    void setActivationPolicy(ApplicationActivationPolicy policy) override;
    void activate() override;
    // Handled when a Settings window opener is set.
    bool showSettingsWindow() override;
    // Through the presenter that is set; nothing without one.
    void orderFrontStandardAboutPanel(std::optional<ImageHandle> applicationIcon) override;
    // "MenuBarIcon" and "AboutPanelLogo", as identifiers with `assetIdentifierBit` set.
    std::optional<ImageHandle> imageNamed(const std::string& name) const override;
    // Quits Qt's event loop on its next turn; the program's teardown follows it.
    void terminate() override;
    PlatformWindowHandle makeWindow(std::shared_ptr<HostedView> content) override;
    void setTitle(PlatformWindowHandle window, const std::string& title) override;
    void setStyleMask(PlatformWindowHandle window, std::uint64_t styleMask) override;
    void setReleasedWhenClosed(PlatformWindowHandle, bool) override {}
    void center(PlatformWindowHandle window) override;
    void makeKeyAndOrderFront(PlatformWindowHandle window) override;
    void close(PlatformWindowHandle window) override;
    bool isVisible(PlatformWindowHandle window) const override;
    std::uint64_t styleMask(PlatformWindowHandle window) const override;
    bool isPanel(PlatformWindowHandle) const override { return false; }

    ApplicationActivationPolicy activationPolicy() const { return policy_; }

    static constexpr std::uint64_t assetIdentifierBit = std::uint64_t{1} << 61;
    // The asset behind an identifier `imageNamed` handed out.
    static std::optional<std::string> assetName(std::uint64_t identifier);

    // A window the program builds itself, such as Settings: titles and visibility go to it.
    PlatformWindowHandle adopt(QWidget* widget);

    void setSettingsWindowOpener(std::function<void()> opener) {
        settingsWindowOpener_ = std::move(opener);
    }
    void setAboutPanelPresenter(std::function<void(std::optional<ImageHandle>)> presenter) {
        aboutPanelPresenter_ = std::move(presenter);
    }

  private:
    struct Window {
        // The widget that draws it, when this desktop has one for it.
        QPointer<QWidget> widget;
        // A widget this object built for the window's content, such as the welcome window's.
        std::shared_ptr<QWidget> ownedWidget;
        std::shared_ptr<HostedView> content;
        std::string title;
        std::uint64_t styleMask = 0;
        bool visible = false;
    };
    std::shared_ptr<NotificationCenterPort> notifications_;
    std::map<PlatformWindowHandle, Window> windows_;
    PlatformWindowHandle lastHandle_ = 0;
    ApplicationActivationPolicy policy_ = ApplicationActivationPolicy::accessory;
    std::function<void()> settingsWindowOpener_;
    std::function<void(std::optional<ImageHandle>)> aboutPanelPresenter_;
    QMetaObject::Connection stateConnection_;
};

}  // namespace orvane
