// The least a program can do on sway to show a picture on a key: a binding of its own, heard as
// an IPC event, maps a layer-shell surface on the overlay layer with a picture painted beforehand;
// the binding again while it is up shows a second prepared picture; it unmaps a moment later. The
// yardstick of the Wayland benchmark.
//   orvane-minimal-layer-switcher WIDTH HEIGHT
// Needs WAYLAND_DISPLAY and SWAYSOCK.

#include <poll.h>
#include <sys/mman.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <utility>

#include "platform/wayland/SwayIpc.h"
#include "platform/wayland/WaylandConnection.h"
#include "wlr-layer-shell-unstable-v1-client-protocol.h"

namespace {

struct Panel {
    orvane::WaylandConnection* connection = nullptr;
    wl_buffer* buffer = nullptr;
    wl_buffer* otherBuffer = nullptr;
    wl_surface* surface = nullptr;
    zwlr_layer_surface_v1* layer = nullptr;
    int width = 0, height = 0;
    std::chrono::steady_clock::time_point shownAt;

    void show() {
        static const zwlr_layer_surface_v1_listener listener{
            [](void* data, zwlr_layer_surface_v1* layer, std::uint32_t serial, std::uint32_t,
               std::uint32_t) {
                auto& panel = *static_cast<Panel*>(data);
                zwlr_layer_surface_v1_ack_configure(layer, serial);
                wl_surface_attach(panel.surface, panel.buffer, 0, 0);
                wl_surface_damage_buffer(panel.surface, 0, 0, panel.width, panel.height);
                wl_surface_commit(panel.surface);
                panel.connection->flush();
            },
            [](void*, zwlr_layer_surface_v1*) {}};
        surface = wl_compositor_create_surface(connection->compositor());
        layer = zwlr_layer_shell_v1_get_layer_surface(connection->layerShell(), surface, nullptr,
                                                      ZWLR_LAYER_SHELL_V1_LAYER_OVERLAY, "minimal");
        zwlr_layer_surface_v1_add_listener(layer, &listener, this);
        zwlr_layer_surface_v1_set_size(layer, static_cast<std::uint32_t>(width),
                                       static_cast<std::uint32_t>(height));
        zwlr_layer_surface_v1_set_keyboard_interactivity(layer, 1);
        wl_surface_commit(surface);
        connection->flush();
        shownAt = std::chrono::steady_clock::now();
    }
    // The other picture, as a switcher shows the next card selected.
    void swap() {
        std::swap(buffer, otherBuffer);
        wl_surface_attach(surface, buffer, 0, 0);
        wl_surface_damage_buffer(surface, 0, 0, width, height);
        wl_surface_commit(surface);
        connection->flush();
    }
    void hide() {
        if (layer != nullptr) {
            zwlr_layer_surface_v1_destroy(layer);
            wl_surface_destroy(surface);
            layer = nullptr;
            surface = nullptr;
            connection->flush();
        }
    }
};

wl_buffer* preparedPicture(orvane::WaylandConnection& connection, int width, int height,
                           std::uint32_t cardColour) {
    const int stride = width * 4;
    const auto bytes = static_cast<std::size_t>(stride) * static_cast<std::size_t>(height);
    const int descriptor = ::memfd_create("minimal", MFD_CLOEXEC);
    if (descriptor < 0 || ::ftruncate(descriptor, static_cast<off_t>(bytes)) != 0) {
        return nullptr;
    }
    auto* pixels = static_cast<std::uint32_t*>(
        ::mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_SHARED, descriptor, 0));
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const bool card = (x % 220) >= 20 && (y % 180) >= 20;
            pixels[y * width + x] = card ? cardColour : 0xff262628u;
        }
    }
    auto* pool =
        wl_shm_create_pool(connection.sharedMemory(), descriptor, static_cast<std::int32_t>(bytes));
    auto* buffer =
        wl_shm_pool_create_buffer(pool, 0, width, height, stride, WL_SHM_FORMAT_ARGB8888);
    wl_shm_pool_destroy(pool);
    ::close(descriptor);
    return buffer;
}

}  // namespace

int main(int argc, char** argv) {
    const char* sway = std::getenv("SWAYSOCK");
    auto connection = orvane::WaylandConnection::connect();
    if (argc < 3 || sway == nullptr || !connection || connection->layerShell() == nullptr) {
        std::fprintf(stderr, "usage: orvane-minimal-layer-switcher WIDTH HEIGHT, on sway\n");
        return 1;
    }
    auto commands = orvane::SwayIpc::connect(sway);
    auto events = orvane::SwayIpc::connect(sway);
    if (!commands || !events ||
        !events->request(orvane::SwayIpc::Request::subscribe, R"(["binding"])")) {
        return 1;
    }
    commands->run("bindsym --no-repeat Mod1+Tab nop minimal");
    Panel panel;
    panel.connection = connection.get();
    panel.width = std::atoi(argv[1]);
    panel.height = std::atoi(argv[2]);
    panel.buffer = preparedPicture(*connection, panel.width, panel.height, 0xff0a84ffu);
    panel.otherBuffer = preparedPicture(*connection, panel.width, panel.height, 0xff3a3a3cu);
    connection->roundtrip();
    while (true) {
        pollfd descriptors[2] = {{connection->fileDescriptor(), POLLIN, 0},
                                 {events->fileDescriptor(), POLLIN, 0}};
        ::poll(descriptors, 2, 50);
        if (!connection->dispatchAvailable()) {
            return 0;
        }
        const bool open =
            events->readEvents([&](orvane::SwayIpc::Event, const nlohmann::json& event) {
                if (event.dump().find("nop minimal") == std::string::npos) {
                    return;
                }
                if (panel.layer == nullptr) {
                    panel.show();
                } else {
                    panel.swap();
                }
            });
        if (!open) {
            return 0;
        }
        if (panel.layer != nullptr &&
            std::chrono::steady_clock::now() - panel.shownAt > std::chrono::milliseconds(600)) {
            panel.hide();
        }
    }
}
