// The switcher on a real X desktop, measured from outside as a user would feel it: Xvfb, Openbox
// and N clients, keys through XTest, and the DAMAGE extension telling when the screen was last
// drawn on. Orvane runs side by side with a minimal program that maps a prepared window on the
// same key.
//   orvane_desktop_benchmark [TRIALS]
// On a 1920x1080 screen, prints for 6, 30 and 150 windows the median and 90th percentile of: Tab
// press to overlay painted, previews painted when any are taken, Tab to repaint (Orvane only), Alt
// release to the chosen window active, for Orvane and for two minimal programs: one that maps a
// small window and draws a card, one that maps a window of Orvane's panel size whose picture is
// already on the server. Then a keystroke to the launcher repainted with 2,000 desktop entries
// installed; Orvane's memory after 50 and after 1,000 gestures with previews; and its CPU time
// and wake-ups over 30 idle seconds.

#include <poll.h>
#include <signal.h>
#include <xcb/damage.h>
#include <xcb/xcb.h>
#include <xcb/xtest.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <optional>
#include <sstream>
#include <string>
#include <string_view>
#include <thread>
#include <tuple>
#include <utility>
#include <vector>

#include "DesktopSession.h"
#include "LatencySample.h"
#include "ProcessUsage.h"

namespace {

using Clock = std::chrono::steady_clock;
using orvane::testing::DesktopSession;

using Sample = orvane::bench::LatencySample;
using orvane::bench::milliseconds;

class Probe {
  public:
    explicit Probe(DesktopSession& session) : session_(session) {
        auto* connection = session_.connection();
        std::free(xcb_damage_query_version_reply(
            connection, xcb_damage_query_version(connection, 1, 1), nullptr));
        damage_ = xcb_generate_id(connection);
        xcb_damage_create(connection, damage_, session_.root(),
                          XCB_DAMAGE_REPORT_LEVEL_RAW_RECTANGLES);
        xcb_flush(connection);
        const auto* extension = xcb_get_extension_data(connection, &xcb_damage_id);
        damageEvent_ = extension->first_event + XCB_DAMAGE_NOTIFY;
    }
    ~Probe() {
        xcb_damage_destroy(session_.connection(), damage_);
        xcb_flush(session_.connection());
    }

    void key(std::uint8_t type, std::uint8_t keycode) {
        xcb_test_fake_input(session_.connection(), type, keycode, XCB_CURRENT_TIME, XCB_NONE, 0, 0,
                            0);
        xcb_flush(session_.connection());
    }
    // Forgets the drawing reported so far.
    void settle() {
        while (lastDamage(Clock::now(), std::chrono::milliseconds(50)) >= 0) {
        }
    }
    // Milliseconds from `start` to the last drawing on the screen, once it has been quiet for
    // `quiet`; negative when nothing was drawn within a second. `firstDamage()` then tells when
    // the first drawing came.
    double lastDamage(Clock::time_point start, std::chrono::milliseconds quiet) {
        auto* connection = session_.connection();
        std::optional<Clock::time_point> last;
        first_ = -1;
        while (true) {
            while (auto* event = xcb_poll_for_event(connection)) {
                if ((event->response_type & 0x7f) == damageEvent_) {
                    last = Clock::now();
                    if (first_ < 0) {
                        first_ = milliseconds(*last - start);
                    }
                }
                std::free(event);
            }
            const auto now = Clock::now();
            if (last ? now - *last > quiet : now - start > std::chrono::seconds(1)) {
                break;
            }
            pollfd descriptor{xcb_get_file_descriptor(connection), POLLIN, 0};
            ::poll(&descriptor, 1, 1);
        }
        return last ? milliseconds(*last - start) : -1;
    }
    template <typename Changed>
    double until(Clock::time_point start, Changed changed) {
        while (!changed()) {
            if (Clock::now() - start > std::chrono::seconds(2)) {
                return -1;
            }
        }
        return milliseconds(Clock::now() - start);
    }

    double firstDamage() const { return first_; }

  private:
    DesktopSession& session_;
    double first_ = -1;
    xcb_damage_damage_t damage_ = 0;
    std::uint8_t damageEvent_ = 0;
};

struct Results {
    Sample painted, previewed, repainted, activated;
    // The overlay window's size, as last seen on screen.
    std::uint16_t width = 0, height = 0;
};

std::pair<std::uint16_t, std::uint16_t> sizeOf(DesktopSession& session, xcb_window_t window) {
    auto* reply = xcb_get_geometry_reply(session.connection(),
                                         xcb_get_geometry(session.connection(), window), nullptr);
    std::pair<std::uint16_t, std::uint16_t> size{0, 0};
    if (reply != nullptr) {
        size = {reply->width, reply->height};
    }
    std::free(reply);
    return size;
}

Results measure(DesktopSession& session, int trials, bool measureRepaint) {
    Probe probe(session);
    const auto alt = session.keycode("Alt_L");
    const auto tab = session.keycode("Tab");
    const auto quiet = std::chrono::milliseconds(40);
    Results results;
    for (int trial = 0; trial < trials; ++trial) {
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        probe.key(XCB_KEY_PRESS, alt);
        probe.settle();
        auto start = Clock::now();
        probe.key(XCB_KEY_PRESS, tab);
        probe.key(XCB_KEY_RELEASE, tab);
        // The overlay comes in one drawing; previews, when any are taken, follow it.
        if (const double previewed = probe.lastDamage(start, quiet); previewed >= 0) {
            results.painted.values.push_back(probe.firstDamage());
            results.previewed.values.push_back(previewed);
        }
        if (const auto overlay = session.overlayWindow()) {
            std::tie(results.width, results.height) = sizeOf(session, *overlay);
        }
        if (measureRepaint) {
            start = Clock::now();
            probe.key(XCB_KEY_PRESS, tab);
            probe.key(XCB_KEY_RELEASE, tab);
            if (const double repainted = probe.lastDamage(start, quiet); repainted >= 0) {
                results.repainted.values.push_back(repainted);
            }
        }
        const auto active = session.activeWindow();
        start = Clock::now();
        probe.key(XCB_KEY_RELEASE, alt);
        const double activated =
            probe.until(start, [&] { return session.activeWindow() != active; });
        if (activated >= 0) {
            results.activated.values.push_back(activated);
        }
        probe.settle();
    }
    return results;
}

// Desktop entries with names like a real menu's: two words of a small vocabulary and a number.
void installEntries(const std::filesystem::path& folder, int count) {
    const char* words[] = {"Text",  "Photo", "Music", "Mail",    "Disk",  "Video",  "System",
                           "Game",  "Note",  "Paint", "Network", "Clock", "Office", "Terminal",
                           "Chess", "Maps",  "Font",  "Backup",  "Print", "Screen"};
    for (int index = 0; index < count; ++index) {
        std::ofstream(folder / ("bench-" + std::to_string(index) + ".desktop"))
            << "[Desktop Entry]\nType=Application\nName=" << words[index % 20] << " "
            << words[(index / 20) % 20] << " " << index << "\nExec=true\nIcon=bench-" << index % 50
            << "\n";
    }
}

// Keystroke to the launcher repainted, over the installed applications: a letter, a second one,
// and two backspaces, each measured.
Sample measureLauncher(DesktopSession& session, int trials) {
    Probe probe(session);
    const auto alt = session.keycode("Alt_L");
    const auto space = session.keycode("space");
    const auto quiet = std::chrono::milliseconds(40);
    probe.key(XCB_KEY_PRESS, alt);
    for (int tap = 0; tap < 2; ++tap) {
        probe.key(XCB_KEY_PRESS, space);
        probe.key(XCB_KEY_RELEASE, space);
    }
    probe.key(XCB_KEY_RELEASE, alt);
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    probe.settle();
    Sample sample;
    for (int trial = 0; trial < trials; ++trial) {
        for (const auto* key : {"e", "r", "BackSpace", "BackSpace"}) {
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
            probe.settle();
            const auto start = Clock::now();
            probe.key(XCB_KEY_PRESS, session.keycode(key));
            probe.key(XCB_KEY_RELEASE, session.keycode(key));
            if (const double repainted = probe.lastDamage(start, quiet); repainted >= 0) {
                sample.values.push_back(repainted);
            }
        }
    }
    probe.key(XCB_KEY_PRESS, session.keycode("Escape"));
    probe.key(XCB_KEY_RELEASE, session.keycode("Escape"));
    probe.settle();
    return sample;
}

using Usage = orvane::bench::ProcessUsage;

// Resident memory after 50 and after 1,000 quick gestures with previews, among the clients there
// are now.
void measureMemory(DesktopSession& session) {
    session.startProgram();
    std::this_thread::sleep_for(std::chrono::seconds(1));
    const auto alt = session.keycode("Alt_L");
    const auto tab = session.keycode("Tab");
    Probe probe(session);
    double after50 = 0;
    for (int gesture = 1; gesture <= 1000; ++gesture) {
        probe.key(XCB_KEY_PRESS, alt);
        probe.key(XCB_KEY_PRESS, tab);
        probe.key(XCB_KEY_RELEASE, tab);
        // Long enough for the previews to be taken and drawn.
        std::this_thread::sleep_for(std::chrono::milliseconds(40));
        probe.key(XCB_KEY_RELEASE, alt);
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        if (gesture == 50) {
            std::this_thread::sleep_for(std::chrono::milliseconds(500));
            after50 = Usage::of(session.programProcess()).residentMegabytes;
        }
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(500));
    const double after1000 = Usage::of(session.programProcess()).residentMegabytes;
    std::printf("Memory with previews: %.1f MB after 50 gestures, %.1f MB after 1,000 (%+.1f MB)\n",
                after50, after1000, after1000 - after50);
    session.stopProgram();
}

}  // namespace

int main(int argc, char** argv) {
    const int trials = argc > 1 ? std::max(3, std::atoi(argv[1])) : 20;
    DesktopSession session("1920x1080");
    if (!session.isReady()) {
        std::fprintf(stderr, "no X server could be started\n");
        return 1;
    }
    // "launcher" as a second argument measures only the launcher, a number only the switcher at
    // that many windows: for profiling one of them.
    const bool launcherOnly = argc > 2 && std::string_view(argv[2]) == "launcher";
    const int onlyWindows = argc > 2 && !launcherOnly ? std::atoi(argv[2]) : 0;
    std::vector<DesktopSession::Client> clients;
    std::printf(
        "Key to screen under Xvfb (1920x1080), %d trials, median and 90th percentile in ms\n",
        trials);
    std::printf("%-8s %-18s %-15s %-15s %-15s %-15s\n", "windows", "program", "press→painted",
                "press→previews", "Tab→repainted", "release→active");
    const auto tab = std::to_string(session.keycode("Tab"));
    const auto alt = std::to_string(session.keycode("Alt_L"));
    auto print = [](int windows, const std::string& program, const Results& results) {
        std::printf("%-8d %-18s %-15s %-15s %-15s %-15s\n", windows, program.c_str(),
                    results.painted.summary().c_str(), results.previewed.summary().c_str(),
                    results.repainted.summary().c_str(), results.activated.summary().c_str());
    };
    for (int windows : {6, 30, 150}) {
        if (launcherOnly || (onlyWindows > 0 && windows != onlyWindows)) {
            continue;
        }
        while (static_cast<int>(clients.size()) < windows) {
            clients.push_back(session.startClient("Window " + std::to_string(clients.size() + 1),
                                                  0x202020u + 0x050301u * (clients.size() % 40)));
        }
        auto minimal = session.spawn({ORVANE_MINIMAL_SWITCHER_PATH, tab, alt},
                                     session.folder() / "minimal.log");
        std::this_thread::sleep_for(std::chrono::milliseconds(300));
        const auto yardstick = measure(session, trials, false);
        session.stopProcess(minimal);
        session.startProgram();
        const auto orvane = measure(session, trials, true);
        session.stopProgram();
        // The least any program can do to show a picture of Orvane's size.
        auto prepared = session.spawn({ORVANE_MINIMAL_SWITCHER_PATH, tab, alt,
                                       std::to_string(orvane.width), std::to_string(orvane.height)},
                                      session.folder() / "minimal.log");
        std::this_thread::sleep_for(std::chrono::milliseconds(300));
        const auto sameSize = measure(session, trials, false);
        session.stopProcess(prepared);
        print(windows, "minimal 680x200", yardstick);
        print(windows,
              "minimal " + std::to_string(orvane.width) + "x" + std::to_string(orvane.height),
              sameSize);
        print(windows, "orvane", orvane);
        if (!orvane.painted.values.empty() && !sameSize.painted.values.empty()) {
            std::printf("%-8d painted, orvane / same-size minimal: %.2fx\n", windows,
                        orvane.painted.median() / sameSize.painted.median());
        }
        if (windows == 30 && onlyWindows == 0) {
            measureMemory(session);
        }
    }

    if (onlyWindows > 0) {
        return 0;
    }
    installEntries(session.applicationsFolder(), 2000);
    session.startProgram();
    // The entries are read once the program runs.
    std::this_thread::sleep_for(std::chrono::seconds(2));
    std::printf("Keystroke to launcher repainted, 2,000 desktop entries: %s\n",
                measureLauncher(session, trials).summary().c_str());
    session.stopProgram();
    if (launcherOnly) {
        return 0;
    }

    const auto program =
        session.spawn({ORVANE_PROGRAM_PATH, "--log-level", "error"}, session.folder() / "idle.log");
    std::this_thread::sleep_for(std::chrono::seconds(3));
    const auto start = Usage::of(program);
    std::this_thread::sleep_for(std::chrono::seconds(30));
    const auto end = Usage::of(program);
    std::printf("Idle for 30 s with %zu windows: %.2f s of CPU, %ld wake-ups\n", clients.size(),
                end.cpuSeconds - start.cpuSeconds, end.wakeUps - start.wakeUps);
    pid_t stopped = program;
    session.stopProcess(stopped);
    for (auto& client : clients) {
        session.stopProcess(client.process);
    }
    return 0;
}
