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
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/Geometry.h"
#include "core/Identifiers.h"
#include "platform/x11/X11Connection.h"

namespace orvane {

class X11WindowModel {
  public:
    enum class Kind { normal, dialog, utility, dock, desktop, notification, other };

    struct ClientWindow {
        xcb_window_t window = 0;
        // What the logic knows the window by: the window with a generation in the three top bits,
        // which X identifiers never use, so that a window identifier the server hands out again
        // soon after is not taken for the window it named before.
        WindowIdentifier identifier = 0;
        // The application the window belongs to, as the desktop counts them (see `Applications`);
        // a stand-in, not a process, unless the window has no class.
        ProcessIdentifier process = 0;
        // The process that says it owns the window, when one does.
        std::optional<ProcessIdentifier> owner;
        std::string title;
        // The class part of WM_CLASS, else the process's name.
        std::string applicationName;
        // WM_CLASS as set: instance and class; empty when unset.
        std::string windowInstance, windowClass;
        Kind kind = Kind::normal;
        bool isHidden = false;
        bool skipsTaskbar = false;
        // 0xFFFFFFFF: on every desktop.
        std::uint32_t desktop = 0;
        std::uint32_t frameLeft = 0, frameRight = 0, frameTop = 0, frameBottom = 0;
        double opacity = 1.0;
        // In root coordinates, frame included; valid after `refreshGeometry`.
        Rect frame;
        // Whether `frame` still holds: window managers tell of every move with a synthetic
        // ConfigureNotify in root coordinates; anything else makes it unknown again.
        bool isFrameKnown = false;
        // Pixels of the best icon, ARGB, row by row; empty without one.
        std::uint32_t iconWidth = 0, iconHeight = 0;
        std::vector<std::uint32_t> iconPixels;
        std::uint64_t iconGeneration = 0;
    };

    enum class ChangeKind { added, removed, activated, minimized, unminimized, titled };
    using Listener = std::function<void(ChangeKind kind, const ClientWindow& window)>;

    // Which desktop entry a WM_CLASS (instance, class) belongs to, by its path; nothing for none.
    using EntryOfClass = std::function<std::optional<std::string>(std::string_view instance,
                                                                  std::string_view windowClass)>;

    // Windows are one application when their class matches one desktop entry, else when they have
    // the same class; windows without a class go by their process, then by their X client. The
    // program's own windows keep its process, by which the logic knows them.
    X11WindowModel(X11Connection& connection, EntryOfClass entryOfClass = {});

    // The window behind an identifier the model handed out, while it lives.
    const ClientWindow* windowOf(WindowIdentifier identifier) const;

    // Front to back.
    const std::vector<xcb_window_t>& stackingFrontToBack() const { return stacking_; }
    const ClientWindow* window(xcb_window_t window) const;
    std::optional<xcb_window_t> activeWindow() const { return active_; }
    std::uint32_t currentDesktop() const { return currentDesktop_; }
    // Reads the position and size of every window whose frame is not known, in one batch.
    void refreshGeometry();
    // The process of the active window.
    std::optional<ProcessIdentifier> frontmostProcess() const;
    // Changes whenever anything the model holds of its windows may have changed.
    std::uint64_t revision() const { return revision_; }

    void addListener(Listener listener) { listeners_.push_back(std::move(listener)); }

  private:
    void handleEvent(const xcb_generic_event_t& event);
    void reloadStacking();
    void reloadActive();
    void reloadCurrentDesktop();
    ClientWindow read(xcb_window_t window);
    void reloadProperty(ClientWindow& client, xcb_atom_t property);
    void readIcon(ClientWindow& client);
    void tell(ChangeKind kind, const ClientWindow& window);
    std::optional<ProcessIdentifier> processFromResources(xcb_window_t window);
    ProcessIdentifier applicationOf(const ClientWindow& client);
    // Whether a window that left the client list is only between two window managers.
    bool isStillManaged(xcb_window_t window);
    void forget(xcb_window_t window);

    X11Connection& connection_;
    EntryOfClass entryOfClass_;
    // The stand-in process of each application, by its desktop entry or class.
    std::map<std::string, ProcessIdentifier> applications_;
    std::vector<xcb_window_t> stacking_;
    std::map<xcb_window_t, ClientWindow> windows_;
    std::optional<xcb_window_t> active_;
    std::uint32_t currentDesktop_ = 0;
    std::vector<Listener> listeners_;
    std::uint64_t iconGeneration_ = 0;
    std::uint64_t revision_ = 0;
    // How often each window identifier has been seen to go.
    std::map<xcb_window_t, std::uint32_t> removals_;
};

}  // namespace orvane
