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

using Output = WaylandConnection::Output;

Output& outputOf(void* data) {
    return *static_cast<Output*>(data);
}

const wl_output_listener outputListener{
    [](void*, wl_output*, std::int32_t, std::int32_t, std::int32_t, std::int32_t, std::int32_t,
       const char*, const char*, std::int32_t) {},
    [](void*, wl_output*, std::uint32_t, std::int32_t, std::int32_t, std::int32_t) {},
    [](void*, wl_output*) {},
    [](void* data, wl_output*, std::int32_t factor) { outputOf(data).scale = std::max(1, factor); },
    [](void*, wl_output*, const char*) {},
    [](void*, wl_output*, const char*) {}};

const zxdg_output_v1_listener descriptionListener{
    [](void* data, zxdg_output_v1*, std::int32_t x, std::int32_t y) {
        outputOf(data).x = x;
        outputOf(data).y = y;
    },
    [](void* data, zxdg_output_v1*, std::int32_t width, std::int32_t height) {
        outputOf(data).width = width;
        outputOf(data).height = height;
    },
    [](void*, zxdg_output_v1*) {}, [](void*, zxdg_output_v1*, const char*) {},
    [](void*, zxdg_output_v1*, const char*) {}};

}  // namespace

std::unique_ptr<WaylandConnection> WaylandConnection::connect(const char* name) {
    wl_display* display = wl_display_connect(name);
    if (display == nullptr) {
        return nullptr;
    }
    std::unique_ptr<WaylandConnection> connection(new WaylandConnection(display));
    // The globals come in the first answer; the ones bound then speak first in the second.
    if (!connection->roundtrip()) {
        return nullptr;
    }
    auto& self = *connection;
    self.seat_ = static_cast<wl_seat*>(self.bindGlobal(wl_seat_interface, 7));
    self.sharedMemory_ = static_cast<wl_shm*>(self.bindGlobal(wl_shm_interface, 1));
    self.compositor_ = static_cast<wl_compositor*>(self.bindGlobal(wl_compositor_interface, 4));
    self.layerShell_ =
        static_cast<zwlr_layer_shell_v1*>(self.bindGlobal(zwlr_layer_shell_v1_interface, 4));
    self.screencopyManager_ = static_cast<zwlr_screencopy_manager_v1*>(
        self.bindGlobal(zwlr_screencopy_manager_v1_interface, 3));
    self.outputManager_ =
        static_cast<zxdg_output_manager_v1*>(self.bindGlobal(zxdg_output_manager_v1_interface, 3));
    for (auto& output : self.outputs_) {
        self.describe(*output);
    }
    if (!connection->roundtrip()) {
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
    for (auto& output : outputs_) {
        release(*output);
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
    // Outputs, of which there may be several, are bound as they come; every other global once,
    // by `connect` or by its user.
    if (std::string_view(interface) != wl_output_interface.name) {
        self.offered_.try_emplace(interface, name, version);
        return;
    }
    auto output = std::make_unique<Output>();
    output->name = name;
    output->output = static_cast<wl_output*>(
        wl_registry_bind(registry, name, &wl_output_interface, std::min(version, 4u)));
    wl_output_add_listener(output->output, &outputListener, output.get());
    self.describe(*output);
    self.outputs_.push_back(std::move(output));
}

void WaylandConnection::describe(Output& output) {
    if (outputManager_ != nullptr && output.description == nullptr) {
        output.description = zxdg_output_manager_v1_get_xdg_output(outputManager_, output.output);
        zxdg_output_v1_add_listener(output.description, &descriptionListener, &output);
    }
}

void WaylandConnection::release(Output& output) {
    if (output.description != nullptr) {
        zxdg_output_v1_destroy(output.description);
    }
    wl_output_release(output.output);
}

void WaylandConnection::globalRemoved(void* data, wl_registry*, std::uint32_t name) {
    auto& self = *static_cast<WaylandConnection*>(data);
    // Only outputs come and go while a compositor runs.
    std::erase_if(self.outputs_, [name](const std::unique_ptr<Output>& output) {
        if (output->name != name) {
            return false;
        }
        release(*output);
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
