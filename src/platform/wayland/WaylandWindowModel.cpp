#include "platform/wayland/WaylandWindowModel.h"

#include <cstring>

#include "core/Logger.h"
#include "core/Utf8Cut.h"
#include "wlr-foreign-toplevel-management-unstable-v1-client-protocol.h"

namespace orvane {

namespace {

const Logger& log() {
    return Logger::forCategory(LogCategory::windowenumeration);
}

// Beyond any kernel's pid_max, as on X11: such a value is no process.
constexpr std::uint32_t applicationStandIns = 0x60000000u;
// A title longer than this is cut: a card shows a line of it, and a hostile one must not cost.
constexpr std::size_t longestTitle = 4096;

std::string boundedText(const char* text) {
    return cutToBytes(text != nullptr ? text : "", longestTitle);
}

}  // namespace

// A handle and what it has said: `pending` collects the events up to the next `done`, which
// makes them `shown`.
struct WaylandWindowModel::Handle {
    WaylandWindowModel* model = nullptr;
    zwlr_foreign_toplevel_handle_v1* proxy = nullptr;
    Toplevel pending;
    std::optional<Toplevel> shown;

    ~Handle() { zwlr_foreign_toplevel_handle_v1_destroy(proxy); }

    static Handle& of(void* data) { return *static_cast<Handle*>(data); }
    static void title(void* data, zwlr_foreign_toplevel_handle_v1*, const char* title) {
        of(data).pending.title = boundedText(title);
    }
    static void appId(void* data, zwlr_foreign_toplevel_handle_v1*, const char* appId) {
        of(data).pending.appId = boundedText(appId);
    }
    static void outputEnter(void*, zwlr_foreign_toplevel_handle_v1*, wl_output*) {}
    static void outputLeave(void*, zwlr_foreign_toplevel_handle_v1*, wl_output*) {}
    static void state(void* data, zwlr_foreign_toplevel_handle_v1*, wl_array* states) {
        auto& pending = of(data).pending;
        pending.isActivated = pending.isMinimized = pending.isMaximized = pending.isFullscreen =
            false;
        const auto count = states->size / sizeof(std::uint32_t);
        for (std::size_t index = 0; index < count; ++index) {
            std::uint32_t value = 0;
            std::memcpy(&value, static_cast<const char*>(states->data) + index * sizeof value,
                        sizeof value);
            switch (value) {
                case ZWLR_FOREIGN_TOPLEVEL_HANDLE_V1_STATE_ACTIVATED:
                    pending.isActivated = true;
                    break;
                case ZWLR_FOREIGN_TOPLEVEL_HANDLE_V1_STATE_MINIMIZED:
                    pending.isMinimized = true;
                    break;
                case ZWLR_FOREIGN_TOPLEVEL_HANDLE_V1_STATE_MAXIMIZED:
                    pending.isMaximized = true;
                    break;
                case ZWLR_FOREIGN_TOPLEVEL_HANDLE_V1_STATE_FULLSCREEN:
                    pending.isFullscreen = true;
                    break;
                default:
                    break;
            }
        }
    }
    static void done(void* data, zwlr_foreign_toplevel_handle_v1*) {
        of(data).model->commit(of(data));
    }
    static void closed(void* data, zwlr_foreign_toplevel_handle_v1*) {
        of(data).model->close(of(data));
    }
    static void parent(void*, zwlr_foreign_toplevel_handle_v1*, zwlr_foreign_toplevel_handle_v1*) {}
};

WaylandWindowModel::WaylandWindowModel(WaylandConnection& connection) : connection_(connection) {
    static const zwlr_foreign_toplevel_manager_v1_listener listener{&WaylandWindowModel::toplevel,
                                                                    &WaylandWindowModel::finished};
    manager_ = static_cast<zwlr_foreign_toplevel_manager_v1*>(
        connection_.bindGlobal(zwlr_foreign_toplevel_manager_v1_interface, 3));
    if (manager_ == nullptr) {
        log().error("the compositor does not tell of its windows (no %{public}s)",
                    zwlr_foreign_toplevel_manager_v1_interface.name);
        return;
    }
    zwlr_foreign_toplevel_manager_v1_add_listener(manager_, &listener, this);
    // The existing windows come at once, each with its first `done`.
    connection_.roundtrip();
}

WaylandWindowModel::~WaylandWindowModel() {
    handles_.clear();
    if (manager_ != nullptr) {
        // What the compositor still says to it is dropped once it is destroyed.
        zwlr_foreign_toplevel_manager_v1_stop(manager_);
        zwlr_foreign_toplevel_manager_v1_destroy(manager_);
        connection_.flush();
    }
}

void WaylandWindowModel::toplevel(void* data, zwlr_foreign_toplevel_manager_v1*,
                                  zwlr_foreign_toplevel_handle_v1* proxy) {
    static const zwlr_foreign_toplevel_handle_v1_listener listener{
        &Handle::title, &Handle::appId, &Handle::outputEnter, &Handle::outputLeave,
        &Handle::state, &Handle::done,  &Handle::closed,      &Handle::parent};
    auto& self = *static_cast<WaylandWindowModel*>(data);
    auto handle = std::make_unique<Handle>();
    handle->model = &self;
    handle->proxy = proxy;
    handle->pending.identifier = self.nextIdentifier_++;
    zwlr_foreign_toplevel_handle_v1_add_listener(proxy, &listener, handle.get());
    self.handles_.emplace(handle->pending.identifier, std::move(handle));
}

void WaylandWindowModel::finished(void* data, zwlr_foreign_toplevel_manager_v1* manager) {
    auto& self = *static_cast<WaylandWindowModel*>(data);
    log().error("the compositor stopped telling of its windows; %{public}zu are forgotten",
                self.handles_.size());
    for (auto& [identifier, handle] : self.handles_) {
        if (handle->shown) {
            self.notify(ChangeKind::removed, *handle->shown);
        }
    }
    self.handles_.clear();
    zwlr_foreign_toplevel_manager_v1_destroy(manager);
    self.manager_ = nullptr;
}

void WaylandWindowModel::commit(Handle& handle) {
    auto& pending = handle.pending;
    pending.process = standInFor(pending.appId);
    const auto before = handle.shown;
    handle.shown = pending;
    const auto& now = *handle.shown;
    if (!before) {
        log().debug("window %{public}u: \"%{public}s\" of %{public}s", now.identifier,
                    now.title.c_str(), now.appId.c_str());
        notify(ChangeKind::added, now);
        if (now.isActivated) {
            notify(ChangeKind::activated, now);
        }
        return;
    }
    if (before->title != now.title) {
        notify(ChangeKind::titled, now);
    }
    if (before->isMinimized != now.isMinimized) {
        notify(now.isMinimized ? ChangeKind::minimized : ChangeKind::unminimized, now);
    }
    if (!before->isActivated && now.isActivated) {
        notify(ChangeKind::activated, now);
    }
}

void WaylandWindowModel::close(Handle& handle) {
    const auto identifier = handle.pending.identifier;
    auto found = handles_.find(identifier);
    if (found == handles_.end()) {
        return;
    }
    // Out of the map first: a listener may look at the windows that are left.
    auto closing = std::move(found->second);
    handles_.erase(found);
    if (closing->shown) {
        notify(ChangeKind::removed, *closing->shown);
    }
}

void WaylandWindowModel::notify(ChangeKind kind, const Toplevel& window) {
    for (const auto& listener : listeners_) {
        listener(kind, window);
    }
}

ProcessIdentifier WaylandWindowModel::standInFor(const std::string& appId) {
    const auto standIn = static_cast<ProcessIdentifier>(applicationStandIns + applications_.size());
    return applications_.try_emplace(appId, standIn).first->second;
}

std::vector<const WaylandWindowModel::Toplevel*> WaylandWindowModel::windows() const {
    std::vector<const Toplevel*> result;
    for (const auto& [identifier, handle] : handles_) {
        if (handle->shown) {
            result.push_back(&*handle->shown);
        }
    }
    return result;
}

const WaylandWindowModel::Toplevel* WaylandWindowModel::window(WindowIdentifier identifier) const {
    auto found = handles_.find(identifier);
    return found != handles_.end() && found->second->shown ? &*found->second->shown : nullptr;
}

std::optional<WindowIdentifier> WaylandWindowModel::activeWindow() const {
    for (const auto& [identifier, handle] : handles_) {
        if (handle->shown && handle->shown->isActivated) {
            return identifier;
        }
    }
    return std::nullopt;
}

bool WaylandWindowModel::activate(WindowIdentifier identifier) {
    auto found = handles_.find(identifier);
    if (found == handles_.end() || connection_.seat() == nullptr) {
        log().error("window %{public}u cannot be activated: %{public}s", identifier,
                    found == handles_.end() ? "it is gone" : "the compositor offers no seat");
        return false;
    }
    auto& handle = *found->second;
    if (handle.shown && handle.shown->isMinimized) {
        zwlr_foreign_toplevel_handle_v1_unset_minimized(handle.proxy);
    }
    zwlr_foreign_toplevel_handle_v1_activate(handle.proxy, connection_.seat());
    connection_.flush();
    return true;
}

}  // namespace orvane
