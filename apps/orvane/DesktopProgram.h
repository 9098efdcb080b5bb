// Orvane on a Linux X11 desktop: the X backend and the Qt interface handed to the program's own
// composition root, on Qt's event loop with the X connection's descriptor on it.
#pragma once

#include <QImage>
#include <QMessageBox>
#include <QObject>
#include <QPointer>
#include <QSocketNotifier>
#include <QTimer>
#include <map>
#include <memory>
#include <optional>

#include "app/OrvaneApp.h"
#include "platform/ExternalGesture.h"
#include "platform/linux/LinuxAccessibility.h"
#include "platform/linux/LinuxWorkspace.h"
#include "platform/x11/DesktopEntryCatalog.h"
#include "platform/x11/DesktopKeyboardSettings.h"
#include "platform/x11/X11Connection.h"
#include "platform/x11/X11EventTap.h"
#include "platform/x11/X11ScreenCapture.h"
#include "platform/x11/X11Screens.h"
#include "platform/x11/X11WindowModel.h"
#include "ui/qt/LinuxPermissions.h"
#include "ui/qt/QtApplicationObject.h"
#include "ui/qt/QtHelpWindow.h"
#include "ui/qt/QtOverlayPanel.h"
#include "ui/qt/QtSettingsWindow.h"
#include "ui/qt/QtTrayMenu.h"
#include "ui/qt/SessionEventsMonitor.h"

namespace orvane {

class DesktopProgram {
  public:
    static std::unique_ptr<DesktopProgram> start(std::unique_ptr<X11Connection> connection);
    ~DesktopProgram();

    // Tears the program down, as quitting does.
    void terminate();
    // Orvane was started again while running: the delegate's reopen rule decides (Settings opens
    // when no window of the program is visible).
    void reopen();
    // A gesture sent from outside: played as the keys of its chord.
    void perform(ExternalGesture gesture);

    const std::shared_ptr<OrvaneApplicationDelegate>& delegate() const { return app_->delegate(); }
    QtOverlayPanel& overlayPanel() { return *overlayPanel_; }

  private:
    explicit DesktopProgram(std::unique_ptr<X11Connection> connection);

    // Answers from the last reading and reads again once the overlay is up, off the key's path.
    bool isComposited();
    bool readComposited();
    // Follows the compositing manager's selection through XFixes, where the server has it.
    void watchCompositor();
    Rect toDesktop(const Rect& frame) const;
    QImage image(const ImageHandle& handle);
    // An icon of a desktop entry, from the icon theme or its file.
    QImage themeIcon(const std::string& name, const ImageHandle& handle) const;
    // The Settings window, built at its first opening.
    void openSettingsWindow();
    void showAboutPanel(const std::optional<ImageHandle>& icon);
    // Orvane's help at a section, in its window, under what keeps the capability away now.
    void showHelp(const std::string& address, const std::string& reason);

    std::unique_ptr<X11Connection> connection_;
    std::unique_ptr<X11WindowModel> model_;
    std::unique_ptr<X11Screens> screens_;
    std::shared_ptr<DesktopEntryCatalog> desktopEntries_;
    std::shared_ptr<X11ScreenCapture> screenCapture_;
    std::shared_ptr<LinuxWorkspace> workspace_;
    std::shared_ptr<LinuxAccessibility> accessibility_;
    std::shared_ptr<X11EventTap> eventTap_;
    std::shared_ptr<LinuxPermissions> permissions_;
    std::shared_ptr<QtOverlayPanel> overlayPanel_;
    std::unique_ptr<SessionEventsMonitor> sessionEvents_;
    std::unique_ptr<QSocketNotifier> notifier_;
    QTimer chordRetry_;
    QMetaObject::Connection aboutToBlock_;
    std::map<std::uint64_t, QImage> images_;
    std::optional<bool> composited_;
    bool compositorWatched_ = false;
    std::shared_ptr<QtApplicationObject> application_;
    std::unique_ptr<OrvaneApp> app_;
    // After the program, whose scenes they draw.
    std::unique_ptr<QtTrayMenu> tray_;
    std::unique_ptr<QtSettingsWindow> settingsWindow_;
    std::unique_ptr<DesktopKeyboardSettings> keyboardSettings_;
    std::unique_ptr<QtHelpWindow> helpWindow_;
    QPointer<QMessageBox> aboutPanel_;
};

}  // namespace orvane
