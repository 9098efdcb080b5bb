// Orvane's own connection to a Wayland compositor, and the globals it offers that Orvane uses,
// each bound at the highest version both sides know. Main thread only.
#pragma once

#include <wayland-client.h>

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

struct zwlr_layer_shell_v1;
struct zwlr_screencopy_manager_v1;
struct zxdg_output_manager_v1;
struct zxdg_output_v1;

namespace orvane {

class WaylandConnection final {
  public:
    // The compositor named by WAYLAND_DISPLAY (or `name`), its globals known; nothing when none
    // answers.
    static std::unique_ptr<WaylandConnection> connect(const char* name = nullptr);
    ~WaylandConnection();
    WaylandConnection(const WaylandConnection&) = delete;
    WaylandConnection& operator=(const WaylandConnection&) = delete;

    // A screen, in the compositor's logical coordinates (what xdg-output tells), with its scale.
    struct Output {
        wl_output* output = nullptr;
        zxdg_output_v1* description = nullptr;
        std::uint32_t name = 0;
        std::int32_t scale = 1;
        std::int32_t x = 0, y = 0, width = 0, height = 0;
    };

    wl_display* display() const { return display_; }
    int fileDescriptor() const { return wl_display_get_fd(display_); }

    // Each is null when the compositor does not offer it.
    wl_seat* seat() const { return seat_; }
    wl_shm* sharedMemory() const { return sharedMemory_; }
    wl_compositor* compositor() const { return compositor_; }
    zwlr_layer_shell_v1* layerShell() const { return layerShell_; }
    zwlr_screencopy_manager_v1* screencopyManager() const { return screencopyManager_; }
    zxdg_output_manager_v1* outputManager() const { return outputManager_; }
    // In the order the compositor offered them; each one's geometry once it has been told.
    const std::vector<std::unique_ptr<Output>>& outputs() const { return outputs_; }

    // The protocols Orvane cannot run without that this compositor lacks, by name.
    std::vector<std::string> missingProtocols() const;
    // A new binding of the global offered under that interface, at the highest version both know;
    // null when none is offered. Globals that speak at once when bound are bound by their user,
    // once it listens.
    void* bindGlobal(const wl_interface& interface, std::uint32_t knownVersion);

    // Sends what is queued, waits until the compositor has answered all of it and dispatches the
    // answers; false once the connection is lost.
    bool roundtrip();
    // Reads what the compositor sent, without waiting, and dispatches it; false once the
    // connection is lost.
    bool dispatchAvailable();
    void flush();

  private:
    explicit WaylandConnection(wl_display* display);
    static void global(void* data, wl_registry* registry, std::uint32_t name, const char* interface,
                       std::uint32_t version);
    static void globalRemoved(void* data, wl_registry* registry, std::uint32_t name);
    // Asks for the output's logical geometry, once there is someone to ask.
    void describe(Output& output);
    static void release(Output& output);

    wl_display* display_ = nullptr;
    wl_registry* registry_ = nullptr;
    wl_seat* seat_ = nullptr;
    wl_shm* sharedMemory_ = nullptr;
    wl_compositor* compositor_ = nullptr;
    zwlr_layer_shell_v1* layerShell_ = nullptr;
    zwlr_screencopy_manager_v1* screencopyManager_ = nullptr;
    zxdg_output_manager_v1* outputManager_ = nullptr;
    std::vector<std::unique_ptr<Output>> outputs_;
    // Every global offered: interface, then its name and version.
    std::map<std::string, std::pair<std::uint32_t, std::uint32_t>> offered_;
    bool isLost_ = false;
};

}  // namespace orvane
