// The compositor's toplevel windows as the foreign-toplevel protocol tells them: each one's title,
// app_id and states, changed all at once at each `done`. A window's application is its app_id,
// with a stand-in process per app_id. Activation changes are the focus changes. Main thread only.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "core/Identifiers.h"
#include "platform/wayland/WaylandConnection.h"

struct zwlr_foreign_toplevel_handle_v1;
struct zwlr_foreign_toplevel_manager_v1;

namespace orvane {

class WaylandWindowModel final {
  public:
    struct Toplevel {
        // What the logic knows the window by; never handed out twice.
        WindowIdentifier identifier = 0;
        // The stand-in of its app_id; windows without one share one stand-in.
        ProcessIdentifier process = 0;
        std::string title;
        std::string appId;
        bool isActivated = false;
        bool isMinimized = false;
        bool isMaximized = false;
        bool isFullscreen = false;
    };

    enum class ChangeKind { added, removed, activated, minimized, unminimized, titled };
    using Listener = std::function<void(ChangeKind kind, const Toplevel& window)>;

    explicit WaylandWindowModel(WaylandConnection& connection);
    ~WaylandWindowModel();
    WaylandWindowModel(const WaylandWindowModel&) = delete;
    WaylandWindowModel& operator=(const WaylandWindowModel&) = delete;

    // The windows the compositor has told of completely, in the order they came.
    std::vector<const Toplevel*> windows() const;
    const Toplevel* window(WindowIdentifier identifier) const;
    std::optional<WindowIdentifier> activeWindow() const;
    // Asks the compositor to bring the window forward, restoring it first when minimized; false
    // when the window is gone or there is no seat to do it for.
    bool activate(WindowIdentifier identifier);

    void addListener(Listener listener) { listeners_.push_back(std::move(listener)); }

  private:
    struct Handle;

    static void toplevel(void* data, struct zwlr_foreign_toplevel_manager_v1* manager,
                         zwlr_foreign_toplevel_handle_v1* handle);
    static void finished(void* data, struct zwlr_foreign_toplevel_manager_v1* manager);
    void commit(Handle& handle);
    void close(Handle& handle);
    void notify(ChangeKind kind, const Toplevel& window);
    ProcessIdentifier standInFor(const std::string& appId);

    WaylandConnection& connection_;
    zwlr_foreign_toplevel_manager_v1* manager_ = nullptr;
    std::map<WindowIdentifier, std::unique_ptr<Handle>> handles_;
    std::map<std::string, ProcessIdentifier> applications_;
    std::vector<Listener> listeners_;
    WindowIdentifier nextIdentifier_ = 1;
};

}  // namespace orvane
