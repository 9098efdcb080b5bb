#include "platform/wayland/WaylandConnection.h"

#include <poll.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <string_view>

#include "core/Logger.h"
#include "wlr-foreign-toplevel-management-unstable-v1-client-protocol.h"
#include "wlr-layer-shell-unstable-v1-client-protocol.h"
#include "wlr-screencopy-unstable-v1-client-protocol.h"
#include "xdg-output-unstable-v1-client-protocol.h"

namespace orvane {

namespace {

const Logger& log() {
    return Logger::forCategory(LogCategory::lifecycle);
}

template <typename Proxy>
Proxy* bind(wl_registry* registry, std::uint32_t name, const wl_interface& interface,
            std::uint32_t offered, std::uint32_t known) {
    return static_cast<Proxy*>(
        wl_registry_bind(registry, name, &interface, std::min(offered, known)));
}

}  // namespace

std::unique_ptr<WaylandConnection> WaylandConnection::connect(const char* name) {
    wl_display* display = wl_display_connect(name);
    if (display == nullptr) {
        return nullptr;
    }
    std::unique_ptr<WaylandConnection> connection(new WaylandConnection(display));
    // The globals come in the first answer, the outputs' and seat's first events in the second.
    if (!connection->roundtrip() || !connection->roundtrip()) {
        return nullptr;
    }
    return connection;
}

WaylandConnection::WaylandConnection(wl_display* display) : display_(display) {
    static const wl_registry_listener listener{&WaylandConnection::global,
                                               &WaylandConnection::globalRemoved};
    registry_ = wl_display_get_registry(display_);
    wl_registry_add_listener(registry_, &listener, this);
}

WaylandConnection::~WaylandConnection() {
    for (auto* output : outputs_) {
        wl_output_release(output);
    }
    if (seat_ != nullptr) {
        wl_seat_release(seat_);
    }
    if (layerShell_ != nullptr) {
        zwlr_layer_shell_v1_destroy(layerShell_);
    }
    if (screencopyManager_ != nullptr) {
        zwlr_screencopy_manager_v1_destroy(screencopyManager_);
    }
    if (outputManager_ != nullptr) {
        zxdg_output_manager_v1_destroy(outputManager_);
    }
    if (sharedMemory_ != nullptr) {
        wl_shm_destroy(sharedMemory_);
    }
    if (compositor_ != nullptr) {
        wl_compositor_destroy(compositor_);
    }
    wl_registry_destroy(registry_);
    wl_display_disconnect(display_);
}

void WaylandConnection::global(void* data, wl_registry* registry, std::uint32_t name,
                               const char* interface, std::uint32_t version) {
    auto& self = *static_cast<WaylandConnection*>(data);
    const std::string_view offered(interface);
    self.offered_.try_emplace(interface, name, version);
    if (offered == wl_seat_interface.name && self.seat_ == nullptr) {
        self.seat_ = bind<wl_seat>(registry, name, wl_seat_interface, version, 7);
    } else if (offered == wl_shm_interface.name) {
        self.sharedMemory_ = bind<wl_shm>(registry, name, wl_shm_interface, version, 1);
    } else if (offered == wl_compositor_interface.name) {
        self.compositor_ = bind<wl_compositor>(registry, name, wl_compositor_interface, version, 4);
    } else if (offered == zwlr_layer_shell_v1_interface.name) {
        self.layerShell_ =
            bind<zwlr_layer_shell_v1>(registry, name, zwlr_layer_shell_v1_interface, version, 4);
    } else if (offered == zwlr_screencopy_manager_v1_interface.name) {
        self.screencopyManager_ = bind<zwlr_screencopy_manager_v1>(
            registry, name, zwlr_screencopy_manager_v1_interface, version, 3);
    } else if (offered == zxdg_output_manager_v1_interface.name) {
        self.outputManager_ = bind<zxdg_output_manager_v1>(
            registry, name, zxdg_output_manager_v1_interface, version, 3);
    } else if (offered == wl_output_interface.name) {
        auto* output = bind<wl_output>(registry, name, wl_output_interface, version, 4);
        wl_proxy_set_user_data(reinterpret_cast<wl_proxy*>(output),
                               reinterpret_cast<void*>(static_cast<std::uintptr_t>(name)));
        self.outputs_.push_back(output);
    }
}

void WaylandConnection::globalRemoved(void* data, wl_registry*, std::uint32_t name) {
    auto& self = *static_cast<WaylandConnection*>(data);
    // Only outputs come and go while a compositor runs.
    std::erase_if(self.outputs_, [name](wl_output* output) {
        if (reinterpret_cast<std::uintptr_t>(
                wl_proxy_get_user_data(reinterpret_cast<wl_proxy*>(output))) != name) {
            return false;
        }
        wl_output_release(output);
        return true;
    });
}

std::vector<std::string> WaylandConnection::missingProtocols() const {
    std::vector<std::string> missing;
    if (!offered_.contains(zwlr_foreign_toplevel_manager_v1_interface.name)) {
        missing.emplace_back(zwlr_foreign_toplevel_manager_v1_interface.name);
    }
    if (layerShell_ == nullptr) {
        missing.emplace_back(zwlr_layer_shell_v1_interface.name);
    }
    if (seat_ == nullptr) {
        missing.emplace_back(wl_seat_interface.name);
    }
    return missing;
}

void* WaylandConnection::bindGlobal(const wl_interface& interface, std::uint32_t knownVersion) {
    const auto found = offered_.find(interface.name);
    if (found == offered_.end()) {
        return nullptr;
    }
    const auto [name, version] = found->second;
    return wl_registry_bind(registry_, name, &interface, std::min(version, knownVersion));
}

bool WaylandConnection::roundtrip() {
    if (!isLost_ && wl_display_roundtrip(display_) < 0) {
        isLost_ = true;
        log().error("the Wayland compositor closed the connection (%{public}s)",
                    std::strerror(wl_display_get_error(display_)));
    }
    return !isLost_;
}

bool WaylandConnection::dispatchAvailable() {
    if (isLost_) {
        return false;
    }
    while (wl_display_prepare_read(display_) != 0) {
        wl_display_dispatch_pending(display_);
    }
    wl_display_flush(display_);
    pollfd descriptor{fileDescriptor(), POLLIN, 0};
    if (::poll(&descriptor, 1, 0) > 0) {
        if (wl_display_read_events(display_) < 0) {
            isLost_ = true;
        }
    } else {
        wl_display_cancel_read(display_);
    }
    if (!isLost_ && wl_display_dispatch_pending(display_) < 0) {
        isLost_ = true;
    }
    if (isLost_) {
        log().error("the Wayland compositor closed the connection (%{public}s)",
                    std::strerror(wl_display_get_error(display_)));
    }
    return !isLost_;
}

void WaylandConnection::flush() {
    wl_display_flush(display_);
}

}  // namespace orvane
