// What the X server and the window manager say of the desktop's client windows, kept up to date
// from property and structure events: the stacking order, the active window, the current
// desktop, and each window's owner, title, class, type, state, desktop, frame extents, opacity and
// icon. A window manager's restart keeps every window as it was. Geometry follows the window
// manager's configure notices and is read from the server only for windows whose notices did not
// tell it. Main thread only.
#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/Geometry.h"
#include "core/Identifiers.h"
#include "platform/linux/DesktopWindows.h"
#include "platform/x11/X11Connection.h"

namespace orvane {

class X11WindowModel final : public DesktopWindows {
  public:
    // Windows are one application when their class matches one desktop entry, else when they have
    // the same class; windows without a class go by their process, then by their X client. The
    // program's own windows keep its process, by which the logic knows them.
    X11WindowModel(X11Connection& connection, EntryOfClass entryOfClass = {});

    // An identifier is the X window with a generation in the three top bits, which X identifiers
    // never use, so that a window identifier the server hands out again soon after is not taken
    // for the window it named before.
    const Window* windowOf(WindowIdentifier identifier) const override;
    // The stacking, front to back.
    const std::vector<xcb_window_t>& frontToBack() const override { return stacking_; }
    const Window* window(xcb_window_t window) const override;
    std::optional<xcb_window_t> activeWindow() const override { return active_; }
    bool isOnCurrentDesktop(const Window& window) const override;
    std::uint32_t currentDesktop() const { return currentDesktop_; }
    // Reads the position and size of every window whose frame is not known, in one batch. Window
    // managers tell of every move with a synthetic ConfigureNotify in root coordinates, which
    // keeps a frame known; anything else makes it unknown again.
    void refreshGeometry() override;
    std::uint64_t revision() const override { return revision_; }

    // Requests to the window manager, as a pager makes them.
    void activate(const Window& window) override;
    void raise(const Window& window) override;
    void setMinimized(const Window& window, bool minimized) override;

  private:
    void handleEvent(const xcb_generic_event_t& event);
    void reloadStacking();
    void reloadActive();
    void reloadCurrentDesktop();
    Window read(xcb_window_t window);
    void reloadProperty(Window& client, xcb_atom_t property);
    void readIcon(Window& client);
    void tell(ChangeKind kind, const Window& window);
    void sendToWindowManager(xcb_window_t window, xcb_atom_t type,
                             std::initializer_list<std::uint32_t> data);
    std::optional<ProcessIdentifier> processFromResources(xcb_window_t window);
    ProcessIdentifier applicationOf(const Window& client);
    // Whether a window that left the client list is only between two window managers.
    bool isStillManaged(xcb_window_t window);
    void forget(xcb_window_t window);

    X11Connection& connection_;
    EntryOfClass entryOfClass_;
    // The stand-in process of each application, by its desktop entry or class.
    std::map<std::string, ProcessIdentifier> applications_;
    std::vector<xcb_window_t> stacking_;
    std::map<xcb_window_t, Window> windows_;
    std::optional<xcb_window_t> active_;
    std::uint32_t currentDesktop_ = 0;
    std::uint64_t iconGeneration_ = 0;
    std::uint64_t revision_ = 0;
    // How often each window identifier has been seen to go.
    std::map<xcb_window_t, std::uint32_t> removals_;
};

}  // namespace orvane
