// The compositor's toplevel windows as the foreign-toplevel protocol tells them: each one's title,
// app_id and states, changed all at once at each `done`. A window's application is the desktop
// entry its app_id matches, else the app_id, with a stand-in process for each. Activation changes
// are the focus changes, and they order the windows: the protocol tells no stacking. Frames,
// processes and workspaces come only from what a compositor's IPC tells (`learn`); until then
// every window counts as on the current workspace, and fills the output the protocol says it is
// on. Main thread only.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "core/Identifiers.h"
#include "platform/linux/DesktopWindows.h"
#include "platform/wayland/SwayTree.h"
#include "platform/wayland/WaylandConnection.h"

struct zwlr_foreign_toplevel_handle_v1;
struct zwlr_foreign_toplevel_manager_v1;

namespace orvane {

class WaylandWindowModel final : public DesktopWindows {
  public:
    explicit WaylandWindowModel(WaylandConnection& connection, EntryOfClass entryOfClass = {});
    ~WaylandWindowModel() override;
    WaylandWindowModel(const WaylandWindowModel&) = delete;
    WaylandWindowModel& operator=(const WaylandWindowModel&) = delete;

    // Whether the compositor tells of its windows at all.
    bool isAvailable() const { return manager_ != nullptr; }

    // Windows the compositor has told of completely. The handle is the identifier: never handed
    // out twice.
    const std::vector<Handle>& frontToBack() const override { return order_; }
    const Window* window(Handle window) const override;
    const Window* windowOf(WindowIdentifier identifier) const override {
        return window(identifier);
    }
    std::optional<Handle> activeWindow() const override { return active_; }
    bool isOnCurrentDesktop(const Window& window) const override;
    std::uint64_t revision() const override { return revision_; }
    // A window whose frame no IPC told is taken to fill its output: the protocol tells which
    // output, not where on it.
    void refreshGeometry() override;

    // Takes what the compositor's own IPC knows beyond the protocol: each window's frame, process
    // and workspace, and with `ordering`, the order of focus from before Orvane started. A window
    // is the first one of the same app_id and title not matched yet.
    void learn(const std::vector<SwayTree::Window>& known, bool ordering);

    // Restores the window first when it is minimized; the compositor switches workspace itself.
    void activate(const Window& window) override;
    // The protocol has no raise without the focus: left to the activation that follows.
    void raise(const Window&) override {}
    void setMinimized(const Window& window, bool minimized) override;

  private:
    struct Toplevel;

    static void toplevel(void* data, struct zwlr_foreign_toplevel_manager_v1* manager,
                         zwlr_foreign_toplevel_handle_v1* handle);
    static void finished(void* data, struct zwlr_foreign_toplevel_manager_v1* manager);
    void commit(Toplevel& toplevel);
    void close(Toplevel& toplevel);
    void bringToFront(Handle window);
    ProcessIdentifier standInFor(const std::string& appId);
    // The toplevel behind a shown window, when it is still there and there is a seat to act for.
    Toplevel* actionable(const Window& window, const char* action);

    WaylandConnection& connection_;
    EntryOfClass entryOfClass_;
    zwlr_foreign_toplevel_manager_v1* manager_ = nullptr;
    std::map<Handle, std::unique_ptr<Toplevel>> toplevels_;
    std::vector<Handle> order_;
    std::optional<Handle> active_;
    std::map<std::string, ProcessIdentifier> applications_;
    Handle nextHandle_ = 1;
    std::uint64_t revision_ = 0;
};

}  // namespace orvane
