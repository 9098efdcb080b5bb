#include "platform/wayland/WaylandWindowModel.h"

#include <algorithm>
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

// A toplevel and what it has said: `pending` collects the events up to the next `done`, which
// makes them `shown`.
struct WaylandWindowModel::Toplevel {
    WaylandWindowModel* model = nullptr;
    zwlr_foreign_toplevel_handle_v1* proxy = nullptr;
    Window pending;
    bool pendingActivated = false;
    std::optional<Window> shown;
    bool isActivated = false;
    bool isOnShownWorkspace = true;
    // The outputs the window shows on, as the compositor entered it.
    std::vector<wl_output*> outputs;

    ~Toplevel() { zwlr_foreign_toplevel_handle_v1_destroy(proxy); }

    static Toplevel& of(void* data) { return *static_cast<Toplevel*>(data); }
    static void title(void* data, zwlr_foreign_toplevel_handle_v1*, const char* title) {
        of(data).pending.title = boundedText(title);
    }
    static void appId(void* data, zwlr_foreign_toplevel_handle_v1*, const char* appId) {
        auto& pending = of(data).pending;
        pending.windowClass = boundedText(appId);
        pending.windowInstance = pending.windowClass;
        pending.applicationName = pending.windowClass;
    }
    static void outputEnter(void* data, zwlr_foreign_toplevel_handle_v1*, wl_output* output) {
        auto& outputs = of(data).outputs;
        if (std::find(outputs.begin(), outputs.end(), output) == outputs.end()) {
            outputs.push_back(output);
        }
    }
    static void outputLeave(void* data, zwlr_foreign_toplevel_handle_v1*, wl_output* output) {
        std::erase(of(data).outputs, output);
    }
    static void state(void* data, zwlr_foreign_toplevel_handle_v1*, wl_array* states) {
        auto& toplevel = of(data);
        toplevel.pendingActivated = toplevel.pending.isHidden = false;
        const auto count = states->size / sizeof(std::uint32_t);
        for (std::size_t index = 0; index < count; ++index) {
            std::uint32_t value = 0;
            std::memcpy(&value, static_cast<const char*>(states->data) + index * sizeof value,
                        sizeof value);
            if (value == ZWLR_FOREIGN_TOPLEVEL_HANDLE_V1_STATE_ACTIVATED) {
                toplevel.pendingActivated = true;
            } else if (value == ZWLR_FOREIGN_TOPLEVEL_HANDLE_V1_STATE_MINIMIZED) {
                toplevel.pending.isHidden = true;
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

WaylandWindowModel::WaylandWindowModel(WaylandConnection& connection, EntryOfClass entryOfClass)
    : connection_(connection), entryOfClass_(std::move(entryOfClass)) {
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
    toplevels_.clear();
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
        &Toplevel::title, &Toplevel::appId, &Toplevel::outputEnter, &Toplevel::outputLeave,
        &Toplevel::state, &Toplevel::done,  &Toplevel::closed,      &Toplevel::parent};
    auto& self = *static_cast<WaylandWindowModel*>(data);
    auto toplevel = std::make_unique<Toplevel>();
    toplevel->model = &self;
    toplevel->proxy = proxy;
    toplevel->pending.window = self.nextHandle_++;
    toplevel->pending.identifier = toplevel->pending.window;
    zwlr_foreign_toplevel_handle_v1_add_listener(proxy, &listener, toplevel.get());
    self.toplevels_.emplace(toplevel->pending.window, std::move(toplevel));
}

void WaylandWindowModel::finished(void* data, zwlr_foreign_toplevel_manager_v1* manager) {
    auto& self = *static_cast<WaylandWindowModel*>(data);
    log().error("the compositor stopped telling of its windows; %{public}zu are forgotten",
                self.order_.size());
    auto toplevels = std::move(self.toplevels_);
    self.toplevels_.clear();
    self.order_.clear();
    self.active_.reset();
    ++self.revision_;
    for (auto& [handle, toplevel] : toplevels) {
        if (toplevel->shown) {
            self.tell(ChangeKind::removed, *toplevel->shown);
        }
    }
    zwlr_foreign_toplevel_manager_v1_destroy(manager);
    self.manager_ = nullptr;
}

void WaylandWindowModel::commit(Toplevel& toplevel) {
    ++revision_;
    auto& pending = toplevel.pending;
    pending.process = standInFor(pending.windowClass);
    const auto before = toplevel.shown;
    const bool wasActivated = toplevel.isActivated;
    toplevel.shown = pending;
    toplevel.isActivated = toplevel.pendingActivated;
    const auto& now = *toplevel.shown;
    if (!before) {
        log().debug("window %{public}u: \"%{public}s\" of %{public}s", now.window,
                    now.title.c_str(), now.windowClass.c_str());
        // Behind the windows focus has ordered; the focused one goes to the front below.
        order_.push_back(now.window);
        tell(ChangeKind::added, now);
    } else {
        if (before->title != now.title) {
            tell(ChangeKind::titled, now);
        }
        if (before->isHidden != now.isHidden) {
            tell(now.isHidden ? ChangeKind::minimized : ChangeKind::unminimized, now);
        }
    }
    if (toplevel.isActivated) {
        bringToFront(now.window);
        if (!wasActivated || active_ != now.window) {
            active_ = now.window;
            tell(ChangeKind::activated, now);
        }
    } else if (active_ == now.window) {
        active_.reset();
    }
}

void WaylandWindowModel::bringToFront(Handle window) {
    auto found = std::find(order_.begin(), order_.end(), window);
    if (found != order_.end()) {
        std::rotate(order_.begin(), found, found + 1);
    }
}

void WaylandWindowModel::close(Toplevel& toplevel) {
    const auto handle = toplevel.pending.window;
    auto found = toplevels_.find(handle);
    if (found == toplevels_.end()) {
        return;
    }
    ++revision_;
    // Out of the model first: a listener may look at the windows that are left.
    auto closing = std::move(found->second);
    toplevels_.erase(found);
    std::erase(order_, handle);
    if (active_ == handle) {
        active_.reset();
    }
    if (closing->shown) {
        tell(ChangeKind::removed, *closing->shown);
    }
}

ProcessIdentifier WaylandWindowModel::standInFor(const std::string& appId) {
    std::string key = "class " + appId;
    if (auto path = entryOfClass_ ? entryOfClass_(appId, appId) : std::nullopt) {
        key = "entry " + *path;
    }
    const auto standIn = static_cast<ProcessIdentifier>(applicationStandIns + applications_.size());
    return applications_.try_emplace(std::move(key), standIn).first->second;
}

bool WaylandWindowModel::isOnCurrentDesktop(const Window& window) const {
    auto found = toplevels_.find(window.window);
    return found == toplevels_.end() || found->second->isOnShownWorkspace;
}

void WaylandWindowModel::refreshGeometry() {
    for (auto& [handle, toplevel] : toplevels_) {
        if (!toplevel->shown || toplevel->shown->isFrameKnown) {
            continue;
        }
        const WaylandConnection::Output* area = nullptr;
        for (const auto& output : connection_.outputs()) {
            const auto& on = toplevel->outputs;
            if (std::find(on.begin(), on.end(), output->output) != on.end()) {
                area = output.get();
                break;
            }
            if (area == nullptr) {
                area = output.get();
            }
        }
        if (area == nullptr) {
            continue;
        }
        const Rect frame{{double(area->x), double(area->y)},
                         {double(area->width), double(area->height)}};
        if (toplevel->shown->frame != frame) {
            ++revision_;
            toplevel->shown->frame = toplevel->pending.frame = frame;
        }
    }
}

void WaylandWindowModel::learn(const std::vector<SwayTree::Window>& known, bool ordering) {
    ++revision_;
    std::vector<Handle> order;
    order.reserve(order_.size());
    for (const auto& entry : known) {
        for (auto handle : order_) {
            auto& toplevel = *toplevels_.at(handle);
            const auto& shown = *toplevel.shown;
            if (shown.windowClass != entry.appId || shown.title != entry.title ||
                std::find(order.begin(), order.end(), handle) != order.end()) {
                continue;
            }
            order.push_back(handle);
            // Kept in both: the next `done` makes the pending state the shown one.
            for (auto* window : {&toplevel.pending, &*toplevel.shown}) {
                window->frame = entry.frame;
                window->isFrameKnown = true;
                window->owner = entry.process;
            }
            toplevel.isOnShownWorkspace = entry.isOnShownWorkspace;
            break;
        }
    }
    if (!ordering) {
        return;
    }
    for (auto handle : order_) {
        if (std::find(order.begin(), order.end(), handle) == order.end()) {
            order.push_back(handle);
        }
    }
    order_ = std::move(order);
    // The protocol's focus is the latest word.
    if (active_) {
        bringToFront(*active_);
    }
}

const WaylandWindowModel::Window* WaylandWindowModel::window(Handle window) const {
    auto found = toplevels_.find(window);
    return found != toplevels_.end() && found->second->shown ? &*found->second->shown : nullptr;
}

WaylandWindowModel::Toplevel* WaylandWindowModel::actionable(const Window& window,
                                                             const char* action) {
    auto found = toplevels_.find(window.window);
    if (found == toplevels_.end() || connection_.seat() == nullptr) {
        log().error("window %{public}u cannot be %{public}s: %{public}s", window.window, action,
                    found == toplevels_.end() ? "it is gone" : "the compositor offers no seat");
        return nullptr;
    }
    return found->second.get();
}

void WaylandWindowModel::activate(const Window& window) {
    auto* toplevel = actionable(window, "activated");
    if (toplevel == nullptr) {
        return;
    }
    if (toplevel->shown && toplevel->shown->isHidden) {
        zwlr_foreign_toplevel_handle_v1_unset_minimized(toplevel->proxy);
    }
    zwlr_foreign_toplevel_handle_v1_activate(toplevel->proxy, connection_.seat());
    connection_.flush();
}

void WaylandWindowModel::setMinimized(const Window& window, bool minimized) {
    auto* toplevel = actionable(window, minimized ? "minimized" : "restored");
    if (toplevel == nullptr) {
        return;
    }
    if (minimized) {
        zwlr_foreign_toplevel_handle_v1_set_minimized(toplevel->proxy);
    } else {
        zwlr_foreign_toplevel_handle_v1_unset_minimized(toplevel->proxy);
    }
    connection_.flush();
}

}  // namespace orvane
