// The switcher on a headless sway, measured from outside: foot windows, and a probe that types
// through a virtual keyboard of its own, so it knows each key's moment. It takes the next damaged
// frame of the output through screencopy as the moment the screen changed, and the next toplevel
// activated as the moment the chosen window came forward. Orvane runs beside a minimal program
// that maps a prepared layer-shell surface of Orvane's panel size on the same binding.
//   orvane_wayland_benchmark [TRIALS]
// Prints for 6 and 30 windows the median and 90th percentile of: key to overlay on screen and Tab
// to repaint, for both; Orvane's release to the chosen window activated, and its own share of the
// first two (sway's binding event to its picture sent, from its debug log); then Orvane's CPU time
// and wake-ups over 30 idle seconds with 30 windows.

#include <linux/input-event-codes.h>
#include <poll.h>
#include <sys/mman.h>
#include <unistd.h>
#include <xkbcommon/xkbcommon.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <functional>
#include <optional>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "../../tests/common/ChildProcess.h"
#include "LatencySample.h"
#include "ProcessUsage.h"
#include "SwaySession.h"
#include "platform/wayland/WaylandConnection.h"
#include "platform/wayland/WaylandWindowModel.h"
#include "virtual-keyboard-unstable-v1-client-protocol.h"
#include "wlr-screencopy-unstable-v1-client-protocol.h"

namespace {

using Clock = std::chrono::steady_clock;
using orvane::testing::SwaySession;

using Sample = orvane::bench::LatencySample;
using orvane::bench::milliseconds;

// Types the gestures, and watches the screen and the toplevels for what they did.
class Probe {
  public:
    explicit Probe(SwaySession& sway)
        : connection_(orvane::WaylandConnection::connect(sway.display().c_str())) {
        if (!connection_ || connection_->seat() == nullptr) {
            return;
        }
        windows_ = std::make_unique<orvane::WaylandWindowModel>(*connection_);
        windows_->addListener([this](orvane::DesktopWindows::ChangeKind kind,
                                     const orvane::DesktopWindows::Window& window) {
            if (kind == orvane::DesktopWindows::ChangeKind::activated) {
                activated_ = {window.window, Clock::now()};
            }
        });
        auto* keyboards = static_cast<zwp_virtual_keyboard_manager_v1*>(
            connection_->bindGlobal(zwp_virtual_keyboard_manager_v1_interface, 1));
        if (keyboards != nullptr) {
            keyboard_ = zwp_virtual_keyboard_manager_v1_create_virtual_keyboard(
                keyboards, connection_->seat());
            zwp_virtual_keyboard_manager_v1_destroy(keyboards);
            giveKeymap();
        }
        connection_->roundtrip();
    }
    ~Probe() {
        release();
        if (keyboard_ != nullptr) {
            zwp_virtual_keyboard_v1_destroy(keyboard_);
            connection_->roundtrip();
        }
    }
    Probe(const Probe&) = delete;
    Probe& operator=(const Probe&) = delete;

    bool isReady() const {
        return keyboard_ != nullptr && altMask_ != 0 &&
               connection_->screencopyManager() != nullptr && !connection_->outputs().empty();
    }

    void holdAlt(bool down) {
        zwp_virtual_keyboard_v1_modifiers(keyboard_, down ? altMask_ : 0, 0, 0, 0);
    }
    void tapTab() {
        zwp_virtual_keyboard_v1_key(keyboard_, time(), KEY_TAB, WL_KEYBOARD_KEY_STATE_PRESSED);
        zwp_virtual_keyboard_v1_key(keyboard_, time(), KEY_TAB, WL_KEYBOARD_KEY_STATE_RELEASED);
    }
    void pause(std::chrono::milliseconds length) {
        pump(Clock::now() + length, [] { return false; });
    }

    // Milliseconds from typing `keys` to the first frame whose pixels differ from the screen
    // before them; nothing within two seconds. A frame the compositor made for another change
    // (a window's cursor, say) is passed over.
    std::optional<double> toFrame(const std::function<void()>& keys) {
        arm(false);
        pump(Clock::now() + std::chrono::seconds(1), [&] { return readyAt_.has_value(); });
        const auto before = pixels();
        release();
        if (before.empty()) {
            return std::nullopt;
        }
        arm(true);
        const auto typed = type(keys);
        const auto end = typed + std::chrono::seconds(2);
        while (Clock::now() < end) {
            pump(end, [&] { return readyAt_.has_value(); });
            if (!isCopied()) {
                release();
                return std::nullopt;
            }
            // Compared where the compositor copied it: the probe shares two cores with sway and
            // the programs it measures.
            const bool changed =
                bytes_ != before.size() || std::memcmp(memory_, before.data(), before.size()) != 0;
            const auto readyAt = *readyAt_;
            release();
            if (changed) {
                return milliseconds(readyAt - typed);
            }
            arm(true);
        }
        release();
        return std::nullopt;
    }
    // Milliseconds from typing `keys` to another window than the one active before `since`
    // activated; nothing within two seconds.
    std::optional<double> toActivated(std::optional<orvane::DesktopWindows::Handle> since,
                                      const std::function<void()>& keys) {
        activated_.reset();
        const auto typed = type(keys);
        pump(typed + std::chrono::seconds(2),
             [&] { return activated_ && activated_->first != since; });
        if (!activated_ || activated_->first == since) {
            return std::nullopt;
        }
        return milliseconds(activated_->second - typed);
    }
    std::optional<orvane::DesktopWindows::Handle> activeWindow() {
        connection_->dispatchAvailable();
        return windows_->activeWindow();
    }

  private:
    // The keymap the virtual keyboard speaks: the system's default layout.
    void giveKeymap() {
        auto* context = xkb_context_new(XKB_CONTEXT_NO_FLAGS);
        auto* keymap = context == nullptr ? nullptr
                                          : xkb_keymap_new_from_names(context, nullptr,
                                                                      XKB_KEYMAP_COMPILE_NO_FLAGS);
        char* text = keymap == nullptr
                         ? nullptr
                         : xkb_keymap_get_as_string(keymap, XKB_KEYMAP_FORMAT_TEXT_V1);
        const int descriptor = ::memfd_create("keymap", MFD_CLOEXEC);
        if (text != nullptr && descriptor >= 0) {
            const auto size = std::strlen(text) + 1;
            if (::write(descriptor, text, size) == static_cast<ssize_t>(size)) {
                zwp_virtual_keyboard_v1_keymap(keyboard_, WL_KEYBOARD_KEYMAP_FORMAT_XKB_V1,
                                               descriptor, static_cast<std::uint32_t>(size));
                altMask_ = 1u << xkb_keymap_mod_get_index(keymap, XKB_MOD_NAME_ALT);
            }
        }
        if (descriptor >= 0) {
            ::close(descriptor);
        }
        std::free(text);
        xkb_keymap_unref(keymap);
        xkb_context_unref(context);
    }
    Clock::time_point type(const std::function<void()>& keys) {
        connection_->dispatchAvailable();
        const auto typed = Clock::now();
        keys();
        connection_->flush();
        return typed;
    }
    static std::uint32_t time() {
        return static_cast<std::uint32_t>(
            std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now().time_since_epoch())
                .count());
    }
    bool isCopied() const {
        return readyAt_ && *readyAt_ != Clock::time_point{} && memory_ != nullptr;
    }
    // What the last copy holds; nothing when it failed or is not there.
    std::vector<std::uint8_t> pixels() const {
        if (!isCopied()) {
            return {};
        }
        const auto* bytes = static_cast<const std::uint8_t*>(memory_);
        return std::vector<std::uint8_t>(bytes, bytes + bytes_);
    }
    // Asks for a copy of the next frame, or with `onChange` of the next one with damage.
    void arm(bool onChange) {
        onChange_ = onChange;
        frame_ = zwlr_screencopy_manager_v1_capture_output(connection_->screencopyManager(), 0,
                                                           connection_->outputs().front()->output);
        static const zwlr_screencopy_frame_v1_listener listener{
            [](void* data, zwlr_screencopy_frame_v1*, std::uint32_t format, std::uint32_t width,
               std::uint32_t height, std::uint32_t stride) {
                auto& probe = *static_cast<Probe*>(data);
                probe.format_ = format;
                probe.width_ = static_cast<int>(width);
                probe.height_ = static_cast<int>(height);
                probe.stride_ = static_cast<int>(stride);
            },
            [](void*, zwlr_screencopy_frame_v1*, std::uint32_t) {},
            [](void* data, zwlr_screencopy_frame_v1*, std::uint32_t, std::uint32_t, std::uint32_t) {
                static_cast<Probe*>(data)->readyAt_ = Clock::now();
            },
            [](void* data, zwlr_screencopy_frame_v1*) {
                static_cast<Probe*>(data)->readyAt_ = Clock::time_point{};
            },
            [](void*, zwlr_screencopy_frame_v1*, std::uint32_t, std::uint32_t, std::uint32_t,
               std::uint32_t) {},
            [](void*, zwlr_screencopy_frame_v1*, std::uint32_t, std::uint32_t, std::uint32_t) {},
            [](void* data, zwlr_screencopy_frame_v1* frame) {
                static_cast<Probe*>(data)->copyInto(frame);
            }};
        readyAt_.reset();
        zwlr_screencopy_frame_v1_add_listener(frame_, &listener, this);
        connection_->flush();
        // The buffer's offer comes first; the copy waits for damage from then on.
        pump(Clock::now() + std::chrono::milliseconds(200), [&] { return copying_; });
    }
    template <typename Done>
    void pump(Clock::time_point end, Done done) {
        while (!done() && Clock::now() < end) {
            pollfd descriptor{connection_->fileDescriptor(), POLLIN, 0};
            ::poll(&descriptor, 1, 5);
            connection_->dispatchAvailable();
        }
    }
    void copyInto(zwlr_screencopy_frame_v1* frame) {
        bytes_ = static_cast<std::size_t>(stride_) * static_cast<std::size_t>(height_);
        const int descriptor = ::memfd_create("probe", MFD_CLOEXEC);
        if (descriptor < 0 || ::ftruncate(descriptor, static_cast<off_t>(bytes_)) != 0) {
            return;
        }
        memory_ = ::mmap(nullptr, bytes_, PROT_READ, MAP_SHARED, descriptor, 0);
        if (memory_ == MAP_FAILED) {
            memory_ = nullptr;
        }
        auto* pool = wl_shm_create_pool(connection_->sharedMemory(), descriptor,
                                        static_cast<std::int32_t>(bytes_));
        buffer_ = wl_shm_pool_create_buffer(pool, 0, width_, height_, stride_, format_);
        wl_shm_pool_destroy(pool);
        ::close(descriptor);
        if (onChange_) {
            zwlr_screencopy_frame_v1_copy_with_damage(frame, buffer_);
        } else {
            zwlr_screencopy_frame_v1_copy(frame, buffer_);
        }
        connection_->flush();
        copying_ = true;
    }
    void release() {
        if (frame_ != nullptr) {
            zwlr_screencopy_frame_v1_destroy(frame_);
            frame_ = nullptr;
        }
        if (buffer_ != nullptr) {
            wl_buffer_destroy(buffer_);
            buffer_ = nullptr;
        }
        if (memory_ != nullptr) {
            ::munmap(memory_, bytes_);
            memory_ = nullptr;
        }
        copying_ = false;
    }

    std::unique_ptr<orvane::WaylandConnection> connection_;
    std::unique_ptr<orvane::WaylandWindowModel> windows_;
    zwp_virtual_keyboard_v1* keyboard_ = nullptr;
    std::uint32_t altMask_ = 0;
    std::optional<std::pair<orvane::DesktopWindows::Handle, Clock::time_point>> activated_;
    zwlr_screencopy_frame_v1* frame_ = nullptr;
    wl_buffer* buffer_ = nullptr;
    std::uint32_t format_ = 0;
    int width_ = 0, height_ = 0, stride_ = 0;
    void* memory_ = nullptr;
    std::size_t bytes_ = 0;
    bool onChange_ = false;
    bool copying_ = false;
    std::optional<Clock::time_point> readyAt_;
};

struct Results {
    Sample shown, repainted, activated;
    // Orvane's own share, as its debug log tells it: from sway's binding event to its picture
    // sent, for the first Tab and the second.
    Sample sentShown, sentRepainted;
};

// The milliseconds of the program's newest "picture sent" line, when there are more than `seen`.
std::optional<double> newestPictureSent(const SwaySession& sway, std::size_t& seen) {
    const auto log = sway.programLog();
    const std::string marker = "picture sent ";
    std::size_t count = 0;
    std::optional<double> newest;
    for (auto at = log.find(marker); at != std::string::npos; at = log.find(marker, at + 1)) {
        ++count;
        newest = std::strtod(log.c_str() + at + marker.size(), nullptr) / 1000.0;
    }
    if (count <= seen) {
        return std::nullopt;
    }
    seen = count;
    return newest;
}

// Each trial: Alt down and Tab, a pause, Tab again, a pause, Alt up. Only Orvane is asked for the
// release: the minimal program hides by itself.
Results measure(SwaySession& sway, int trials, bool switcher) {
    Probe probe(sway);
    Results results;
    if (!probe.isReady()) {
        std::fprintf(stderr, "the probe could not type or watch the screen\n");
        return results;
    }
    const auto record = [](Sample& sample, std::optional<double> value) {
        if (value) {
            sample.values.push_back(*value);
        }
    };
    std::size_t seen = 0;
    if (switcher) {
        newestPictureSent(sway, seen);
    }
    for (int trial = 0; trial < trials; ++trial) {
        probe.pause(std::chrono::milliseconds(200));
        const auto before = probe.activeWindow();
        record(results.shown, probe.toFrame([&] {
            probe.holdAlt(true);
            probe.tapTab();
        }));
        probe.pause(std::chrono::milliseconds(300));
        if (switcher) {
            record(results.sentShown, newestPictureSent(sway, seen));
        }
        record(results.repainted, probe.toFrame([&] { probe.tapTab(); }));
        probe.pause(std::chrono::milliseconds(300));
        if (switcher) {
            record(results.sentRepainted, newestPictureSent(sway, seen));
        }
        if (!switcher) {
            probe.holdAlt(false);
            continue;
        }
        record(results.activated, probe.toActivated(before, [&] { probe.holdAlt(false); }));
    }
    return results;
}

using Usage = orvane::bench::ProcessUsage;

}  // namespace

int main(int argc, char** argv) {
    const int trials = argc > 1 ? std::max(3, std::atoi(argv[1])) : 20;
    SwaySession sway("1920x1080");
    if (!sway.isReady()) {
        std::fprintf(stderr, "no sway could be started: %s\n", sway.problem().c_str());
        return 1;
    }
    std::printf(
        "Keys to screen on a headless sway (1920x1080), %d trials, median and 90th "
        "percentile in ms\n",
        trials);
    std::printf("%-8s %-24s %-16s %-16s %-16s\n", "windows", "program", "key→shown",
                "Tab→repainted", "release→activated");
    std::vector<pid_t> clients;
    for (int windows : {6, 30}) {
        while (static_cast<int>(clients.size()) < windows) {
            const auto number = std::to_string(clients.size() + 1);
            clients.push_back(sway.startClient("Window " + number, "bench.w" + number));
        }
        if (!sway.startProgram()) {
            std::fprintf(stderr, "Orvane did not start: %s\n", sway.programLog().c_str());
            return 1;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(500));
        const auto orvane = measure(sway, trials, true);
        sway.stopProgram();
        // The panel's size, as the program's log says it.
        int width = 0, height = 0;
        const auto log = sway.programLog();
        if (const auto at = log.rfind("overlay panel "); at != std::string::npos) {
            std::sscanf(log.c_str() + at, "overlay panel %dx%d", &width, &height);
        }
        auto minimal = orvane::testing::spawnLogged(
            {ORVANE_MINIMAL_LAYER_SWITCHER_PATH, std::to_string(std::max(width, 1)),
             std::to_string(std::max(height, 1))},
            sway.folder() / "minimal.log",
            {"WAYLAND_DISPLAY=" + sway.display(), "SWAYSOCK=" + sway.ipcSocket()});
        std::this_thread::sleep_for(std::chrono::milliseconds(500));
        const auto yardstick = measure(sway, trials, false);
        orvane::testing::stopChild(minimal);
        sway.swaymsg({"unbindsym", "Mod1+Tab"});
        std::printf("%-8d %-24s %-16s %-16s\n", windows,
                    ("minimal " + std::to_string(width) + "x" + std::to_string(height)).c_str(),
                    yardstick.shown.summary().c_str(), yardstick.repainted.summary().c_str());
        std::printf("%-8d %-24s %-16s %-16s %-16s\n", windows, "orvane",
                    orvane.shown.summary().c_str(), orvane.repainted.summary().c_str(),
                    orvane.activated.summary().c_str());
        std::printf("%-8d %-24s %-16s %-16s\n", windows, "  inside: binding→sent",
                    orvane.sentShown.summary().c_str(), orvane.sentRepainted.summary().c_str());
    }
    if (!sway.startProgram()) {
        return 1;
    }
    // The previews' copies after start (one at once, one on change two seconds later) are over.
    std::this_thread::sleep_for(std::chrono::seconds(6));
    const auto program = sway.programProcess();
    const auto start = Usage::of(program);
    std::this_thread::sleep_for(std::chrono::seconds(30));
    const auto end = Usage::of(program);
    std::printf("Idle for 30 s with %zu windows: %.2f s of CPU, %ld wake-ups\n", clients.size(),
                end.cpuSeconds - start.cpuSeconds, end.wakeUps - start.wakeUps);
    sway.stopProgram();
    for (auto& client : clients) {
        sway.stopProcess(client);
    }
    return 0;
}
