// The switcher on a real X desktop, measured from outside as a user would feel it: Xvfb, Openbox
// and N clients, keys through XTest, and the DAMAGE extension telling when the screen was last
// drawn on. Orvane runs side by side with a minimal program that maps a prepared window on the
// same key.
//   orvane_desktop_benchmark [TRIALS]
// Prints, for 6 and 30 windows, the median and 90th percentile of: Tab press to overlay painted,
// previews painted when any are taken, Tab to repaint (Orvane only), Alt release to the chosen
// window active; then a keystroke to the launcher repainted with 2,000 desktop entries installed;
// then Orvane's CPU time and wake-ups over 30 idle seconds.

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
#include <vector>

#include "DesktopSession.h"

namespace {

using Clock = std::chrono::steady_clock;
using orvane::testing::DesktopSession;

double milliseconds(Clock::duration duration) {
    return std::chrono::duration<double, std::milli>(duration).count();
}

struct Sample {
    std::vector<double> values;
    std::string summary() const {
        if (values.empty()) {
            return "      -      -";
        }
        auto sorted = values;
        std::sort(sorted.begin(), sorted.end());
        char text[64];
        std::snprintf(text, sizeof text, "%7.2f %6.2f", sorted[sorted.size() / 2],
                      sorted[std::min(sorted.size() - 1, sorted.size() * 9 / 10)]);
        return text;
    }
};

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
};

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

struct Usage {
    double cpuSeconds = 0;
    long wakeUps = 0;
};

Usage usage(pid_t process) {
    Usage result;
    std::ifstream stat("/proc/" + std::to_string(process) + "/stat");
    std::string line;
    std::getline(stat, line);
    std::istringstream fields(line.substr(line.rfind(')') + 2));
    std::string field;
    for (int index = 3; index <= 15 && fields >> field; ++index) {
        if (index == 14 || index == 15) {
            result.cpuSeconds += std::stod(field) / static_cast<double>(sysconf(_SC_CLK_TCK));
        }
    }
    std::ifstream status("/proc/" + std::to_string(process) + "/status");
    while (std::getline(status, line)) {
        if (line.rfind("voluntary_ctxt_switches:", 0) == 0 ||
            line.rfind("nonvoluntary_ctxt_switches:", 0) == 0) {
            result.wakeUps += std::stol(line.substr(line.find(':') + 1));
        }
    }
    return result;
}

}  // namespace

int main(int argc, char** argv) {
    const int trials = argc > 1 ? std::max(3, std::atoi(argv[1])) : 20;
    DesktopSession session;
    if (!session.isReady()) {
        std::fprintf(stderr, "no X server could be started\n");
        return 1;
    }
    // "launcher" as a second argument measures only the launcher, for profiling it.
    const bool launcherOnly = argc > 2 && std::string_view(argv[2]) == "launcher";
    std::vector<DesktopSession::Client> clients;
    std::printf("Key to screen under Xvfb, %d trials, median and 90th percentile in ms\n", trials);
    std::printf("%-8s %-8s %-15s %-15s %-15s %-15s\n", "windows", "program", "press→painted",
                "press→previews", "Tab→repainted", "release→active");
    for (int windows : {6, 30}) {
        if (launcherOnly) {
            break;
        }
        while (static_cast<int>(clients.size()) < windows) {
            clients.push_back(session.startClient("Window " + std::to_string(clients.size() + 1),
                                                  0x202020u + 0x050301u * clients.size()));
        }
        auto minimal =
            session.spawn({ORVANE_MINIMAL_SWITCHER_PATH, std::to_string(session.keycode("Tab")),
                           std::to_string(session.keycode("Alt_L"))},
                          session.folder() / "minimal.log");
        std::this_thread::sleep_for(std::chrono::milliseconds(300));
        const auto yardstick = measure(session, trials, false);
        session.stopProcess(minimal);
        session.startProgram();
        const auto orvane = measure(session, trials, true);
        session.stopProgram();
        std::printf("%-8d %-8s %-15s %-15s %-15s %-15s\n", windows, "minimal",
                    yardstick.painted.summary().c_str(), "      -      -", "      -      -",
                    yardstick.activated.summary().c_str());
        std::printf("%-8d %-8s %-15s %-15s %-15s %-15s\n", windows, "orvane",
                    orvane.painted.summary().c_str(), orvane.previewed.summary().c_str(),
                    orvane.repainted.summary().c_str(), orvane.activated.summary().c_str());
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
    const auto start = usage(program);
    std::this_thread::sleep_for(std::chrono::seconds(30));
    const auto end = usage(program);
    std::printf("Idle for 30 s with %zu windows: %.2f s of CPU, %ld wake-ups\n", clients.size(),
                end.cpuSeconds - start.cpuSeconds, end.wakeUps - start.wakeUps);
    pid_t stopped = program;
    session.stopProcess(stopped);
    for (auto& client : clients) {
        session.stopProcess(client.process);
    }
    return 0;
}
