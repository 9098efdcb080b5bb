// Orvane on a Wayland compositor with the wlroots protocols: the Wayland backend handed to the
// desktop shell, on Qt's event loop with the compositor's descriptor on it, and on sway its IPC's
// too (Orvane's bindings, and the tree that tells focus order, frames and workspaces).
#pragma once

#include <QSocketNotifier>
#include <QTimer>
#include <chrono>
#include <memory>
#include <optional>

#include "DesktopShell.h"
#include "platform/ExternalGesture.h"
#include "platform/linux/LinuxAccessibility.h"
#include "platform/linux/LinuxWorkspace.h"
#include "platform/wayland/SwayIpc.h"
#include "platform/wayland/WaylandConnection.h"
#include "platform/wayland/WaylandEventTap.h"
#include "platform/wayland/WaylandScreenCapture.h"
#include "platform/wayland/WaylandScreens.h"
#include "platform/wayland/WaylandWindowModel.h"
#include "ui/qt/LinuxPermissions.h"
#include "ui/qt/WaylandOverlayPanel.h"

namespace orvane {

class WaylandProgram {
  public:
    // `swaySocket` is sway's IPC socket, empty on other compositors.
    static std::unique_ptr<WaylandProgram> start(std::unique_ptr<WaylandConnection> connection,
                                                 const std::string& swaySocket);
    ~WaylandProgram();

    void terminate();
    void reopen() { shell_.reopen(); }
    // A gesture sent from outside: played as the keys of its chord.
    void perform(ExternalGesture gesture);

  private:
    WaylandProgram(std::unique_ptr<WaylandConnection> connection, const std::string& swaySocket);

    // What sway's tree says now: with `ordering`, also the focus order from before.
    void learnFromSway(bool ordering);
    void readSwayEvents();
    // A gesture's keys, from a binding or a command: the panel paints at once after them.
    void play(ExternalGesture gesture);

    std::unique_ptr<WaylandConnection> connection_;
    std::unique_ptr<SwayIpc> swayCommands_;
    std::unique_ptr<SwayIpc> swayEvents_;
    std::unique_ptr<WaylandWindowModel> model_;
    std::unique_ptr<WaylandScreens> screens_;
    std::shared_ptr<WaylandScreenCapture> screenCapture_;
    std::shared_ptr<LinuxWorkspace> workspace_;
    std::shared_ptr<LinuxAccessibility> accessibility_;
    std::shared_ptr<WaylandEventTap> eventTap_;
    std::shared_ptr<LinuxPermissions> permissions_;
    std::shared_ptr<WaylandOverlayPanel> overlayPanel_;
    std::unique_ptr<QSocketNotifier> notifier_;
    std::unique_ptr<QSocketNotifier> swayNotifier_;
    QTimer swayRefresh_;
    QMetaObject::Connection aboutToBlock_;
    // Elsewhere than sway, the shortcut is there once a gesture command has come.
    bool hasHadGesture_ = false;
    // When the last gesture's key came, until its picture has gone out: the debug log tells the
    // time between, Orvane's own share of the latency.
    std::optional<std::chrono::steady_clock::time_point> gestureAt_;
    // Last, so that it goes first: the program it holds still uses the backend's ports.
    DesktopShell shell_;
};

}  // namespace orvane
