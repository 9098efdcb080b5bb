// What Orvane is on every Linux desktop beside its backend: the preferences file, the desktop
// entries and the launcher, the tray, Settings, the help and About windows, and the images the
// overlay draws, around the program's own composition root. The X11 and Wayland programs each
// add their backend's ports and start it.
#pragma once

#include <QImage>
#include <QMessageBox>
#include <QPointer>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "app/OrvaneApp.h"
#include "overlay/OverlayViewBuilder.h"
#include "platform/linux/WindowThumbnail.h"
#include "platform/x11/DesktopEntryCatalog.h"
#include "platform/x11/DesktopKeyboardSettings.h"
#include "ui/qt/QtApplicationObject.h"
#include "ui/qt/QtHelpWindow.h"
#include "ui/qt/QtRunLoop.h"
#include "ui/qt/QtSettingsWindow.h"
#include "ui/qt/QtTrayMenu.h"
#include "ui/qt/SessionEventsMonitor.h"

namespace orvane {

class DesktopShell {
  public:
    // What the backend answers for the images of the overlay.
    struct Images {
        // A window preview's pixels; null when that capture is gone.
        std::function<const WindowThumbnail*(std::uint64_t identifier)> thumbnail;
        // A window's own icon's pixels; null when it is gone.
        std::function<const std::vector<std::uint32_t>*(std::uint64_t identifier)> iconPixels;
    };

    DesktopShell();
    ~DesktopShell();

    // Every port the shell makes; the backend adds its own before `start`. `loginNote` says what
    // starts Orvane at login on a desktop that runs no autostart entries by itself.
    OrvaneApplicationDelegate::Platform platform(std::optional<std::string> loginNote = {});
    // Builds the program and its tray. `windowManagerName` names the desktop whose
    // keyboard settings the help offers.
    void start(OrvaneApplicationDelegate::Platform platform, Images images,
               std::function<std::string()> windowManagerName);
    // Launches the program, once the backend is connected to it.
    void launch();
    // Tears the program down, as quitting does.
    void terminate();
    // Orvane was started again while running: Settings opens when no window of it is visible.
    void reopen();
    bool isRunning() const { return app_ && !app_->hasTerminated(); }

    const std::shared_ptr<QtRunLoop>& runLoop() const { return runLoop_; }
    const std::shared_ptr<DesktopEntryCatalog>& desktopEntries() const { return desktopEntries_; }
    const std::shared_ptr<NotificationCenterPort>& workspaceNotifications() const {
        return workspaceNotifications_;
    }
    const std::shared_ptr<OrvaneApplicationDelegate>& delegate() const { return app_->delegate(); }
    // Whether a switcher or launcher session runs now.
    bool isSessionActive() const;
    // The overlay's builder, drawing each application with the workspace's icon for it.
    std::shared_ptr<const OverlayViewBuilder> overlayBuilder(
        std::shared_ptr<WorkspacePort> workspace) const;

    QImage image(const ImageHandle& handle);
    // Orvane's help at a section, in its window, under what keeps the capability away now.
    void showHelp(const std::string& address, const std::string& reason);

  private:
    // An icon of a desktop entry, from the icon theme or its file.
    QImage themeIcon(const std::string& name, const ImageHandle& handle) const;
    // The Settings window, built at its first opening.
    void openSettingsWindow();
    void showAboutPanel(const std::optional<ImageHandle>& icon);

    std::shared_ptr<QtRunLoop> runLoop_;
    std::shared_ptr<DesktopEntryCatalog> desktopEntries_;
    std::shared_ptr<NotificationCenterPort> workspaceNotifications_;
    std::shared_ptr<NotificationCenterPort> applicationNotifications_;
    std::shared_ptr<NotificationCenterPort> distributedNotifications_;
    std::unique_ptr<SessionEventsMonitor> sessionEvents_;
    std::shared_ptr<QtApplicationObject> application_;
    Images images_;
    std::function<std::string()> windowManagerName_;
    std::map<std::uint64_t, QImage> imageCache_;
    std::unique_ptr<OrvaneApp> app_;
    // After the program, whose scenes they draw.
    std::unique_ptr<QtTrayMenu> tray_;
    std::unique_ptr<QtSettingsWindow> settingsWindow_;
    std::unique_ptr<DesktopKeyboardSettings> keyboardSettings_;
    std::unique_ptr<QtHelpWindow> helpWindow_;
    QPointer<QMessageBox> aboutPanel_;
};

}  // namespace orvane
