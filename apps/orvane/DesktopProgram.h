// Orvane on a Linux X11 desktop: the X backend handed to the desktop shell, on Qt's event loop
// with the X connection's descriptor on it.
#pragma once

#include <QObject>
#include <QSocketNotifier>
#include <QTimer>
#include <memory>
#include <optional>

#include "DesktopShell.h"
#include "platform/ExternalGesture.h"
#include "platform/linux/LinuxAccessibility.h"
#include "platform/linux/LinuxWorkspace.h"
#include "platform/x11/X11Connection.h"
#include "platform/x11/X11EventTap.h"
#include "platform/x11/X11ScreenCapture.h"
#include "platform/x11/X11Screens.h"
#include "platform/x11/X11WindowModel.h"
#include "ui/qt/LinuxPermissions.h"
#include "ui/qt/QtOverlayPanel.h"

namespace orvane {

class DesktopProgram {
  public:
    static std::unique_ptr<DesktopProgram> start(std::unique_ptr<X11Connection> connection);
    ~DesktopProgram();

    // Tears the program down, as quitting does.
    void terminate();
    // Orvane was started again while running: the delegate's reopen rule decides (Settings opens
    // when no window of the program is visible).
    void reopen() { shell_.reopen(); }
    // A gesture sent from outside: played as the keys of its chord.
    void perform(ExternalGesture gesture);

    const std::shared_ptr<OrvaneApplicationDelegate>& delegate() const { return shell_.delegate(); }
    QtOverlayPanel& overlayPanel() { return *overlayPanel_; }

  private:
    explicit DesktopProgram(std::unique_ptr<X11Connection> connection);

    // Answers from the last reading and reads again once the overlay is up, off the key's path.
    bool isComposited();
    bool readComposited();
    // Follows the compositing manager's selection through XFixes, where the server has it.
    void watchCompositor();
    Rect toDesktop(const Rect& frame) const;

    std::unique_ptr<X11Connection> connection_;
    std::unique_ptr<X11WindowModel> model_;
    std::unique_ptr<X11Screens> screens_;
    std::shared_ptr<X11ScreenCapture> screenCapture_;
    std::shared_ptr<LinuxWorkspace> workspace_;
    std::shared_ptr<LinuxAccessibility> accessibility_;
    std::shared_ptr<X11EventTap> eventTap_;
    std::shared_ptr<LinuxPermissions> permissions_;
    std::shared_ptr<QtOverlayPanel> overlayPanel_;
    std::unique_ptr<QSocketNotifier> notifier_;
    QTimer chordRetry_;
    QMetaObject::Connection aboutToBlock_;
    std::optional<bool> composited_;
    bool compositorWatched_ = false;
    // Last, so that it goes first: the program it holds still uses the backend's ports.
    DesktopShell shell_;
};

}  // namespace orvane
