// What a Linux desktop says of its client windows, whichever protocol tells it (X11 with EWMH, or
// a Wayland compositor's list of toplevels), and what can be asked of them. The window list, the
// workspace and the Accessibility port of every Linux desktop read this one model. Main thread
// only.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/Geometry.h"
#include "core/Identifiers.h"

namespace orvane {

class DesktopWindows {
  public:
    // The desktop's own name for a window: an X window, or a number a Wayland backend hands out.
    using Handle = std::uint32_t;

    enum class Kind { normal, dialog, utility, dock, desktop, notification, other };

    struct Window {
        Handle window = 0;
        // What the logic knows the window by; never the name of an earlier window.
        WindowIdentifier identifier = 0;
        // The application the window belongs to, as the desktop counts them: a stand-in, not a
        // process, unless the window names no application.
        ProcessIdentifier process = 0;
        // The process that says it owns the window, when one does.
        std::optional<ProcessIdentifier> owner;
        std::string title;
        // What the window calls its application (X11's class, Wayland's app_id), else the
        // process's name.
        std::string applicationName;
        // X11's WM_CLASS as set (instance and class); on Wayland the app_id is the class.
        std::string windowInstance, windowClass;
        Kind kind = Kind::normal;
        bool isHidden = false;
        bool skipsTaskbar = false;
        // 0xFFFFFFFF: on every desktop.
        std::uint32_t desktop = 0;
        std::uint32_t frameLeft = 0, frameRight = 0, frameTop = 0, frameBottom = 0;
        double opacity = 1.0;
        // In desktop coordinates, frame included; valid after `refreshGeometry`.
        Rect frame;
        // Whether `frame` still holds.
        bool isFrameKnown = false;
        // Pixels of the best icon, ARGB, row by row; empty without one.
        std::uint32_t iconWidth = 0, iconHeight = 0;
        std::vector<std::uint32_t> iconPixels;
        // One per distinct icon: equal pixels, equal generation.
        std::uint64_t iconGeneration = 0;
    };

    enum class ChangeKind { added, removed, activated, minimized, unminimized, titled };
    // Which desktop entry a window's class (X11's instance and class, or Wayland's app_id twice)
    // belongs to, by its path; nothing for none. Windows of one entry are one application.
    using EntryOfClass = std::function<std::optional<std::string>(std::string_view instance,
                                                                  std::string_view windowClass)>;
    using Listener = std::function<void(ChangeKind kind, const Window& window)>;

    virtual ~DesktopWindows() = default;

    // Front to back: the stacking where the desktop tells it, else the order of last focus.
    virtual const std::vector<Handle>& frontToBack() const = 0;
    virtual const Window* window(Handle window) const = 0;
    // The window behind an identifier the model handed out, while it lives.
    virtual const Window* windowOf(WindowIdentifier identifier) const = 0;
    virtual std::optional<Handle> activeWindow() const = 0;
    virtual bool isOnCurrentDesktop(const Window& window) const = 0;
    // Learns the frames it does not know yet.
    virtual void refreshGeometry() {}
    // Changes whenever anything the model holds of its windows may have changed.
    virtual std::uint64_t revision() const = 0;

    // Asks the desktop to bring the window forward and give it the focus, on its own desktop.
    virtual void activate(const Window& window) = 0;
    // Asks the desktop to put the window on top without focusing it.
    virtual void raise(const Window& window) = 0;
    virtual void setMinimized(const Window& window, bool minimized) = 0;

    // The process of the active window.
    std::optional<ProcessIdentifier> frontmostProcess() const {
        const auto active = activeWindow();
        const auto* found = active ? window(*active) : nullptr;
        return found != nullptr ? std::optional(found->process) : std::nullopt;
    }
    void addListener(Listener listener) { listeners_.push_back(std::move(listener)); }

  protected:
    void tell(ChangeKind kind, const Window& window) const {
        for (const auto& listener : listeners_) {
            listener(kind, window);
        }
    }

  private:
    std::vector<Listener> listeners_;
};

}  // namespace orvane
