// The program on a real X desktop: Xvfb, Openbox, tiny clients and keys through XTest. Each test
// brings its own clients; the program runs across them, as it does all day.

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>

#include <algorithm>
#include <cstdlib>
#include <deque>
#include <fstream>
#include <iterator>
#include <memory>
#include <optional>
#include <regex>
#include <thread>

#include "DesktopSession.h"

namespace orvane::testing {
namespace {

class DesktopEndToEndTest : public ::testing::Test {
  protected:
    static void SetUpTestSuite() {
        session = new DesktopSession();
        if (session->isReady()) {
            session->startProgram();
        }
    }
    static void TearDownTestSuite() {
        delete session;
        session = nullptr;
    }
    void SetUp() override {
        ASSERT_TRUE(session->isReady()) << "no X server could be started";
        ASSERT_NE(session->programLog().find("global shortcut interception active"),
                  std::string::npos)
            << session->programLog();
    }
    void TearDown() override {
        for (auto& client : clients) {
            session->stopClient(client);
        }
        EXPECT_EQ(session->programLog().find("AddressSanitizer"), std::string::npos)
            << session->programLog();
    }
    DesktopSession::Client& start(const std::string& title, std::uint32_t colour,
                                  bool absurd = false, const std::string& windowClass = "") {
        clients.push_back(session->startClient(title, colour, absurd, windowClass));
        return clients.back();
    }
    void altTab() {
        session->press("Alt_L");
        session->tap("Tab");
        session->release("Alt_L");
    }
    // Runs the program with these arguments to its end: its exit status.
    int runProgram(const std::vector<std::string>& arguments) {
        std::vector<std::string> command{ORVANE_PROGRAM_PATH};
        command.insert(command.end(), arguments.begin(), arguments.end());
        const auto process = session->spawn(command, session->folder() / "command.log");
        int status = -1;
        ::waitpid(process, &status, 0);
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }
    bool becomesActive(xcb_window_t window) {
        return DesktopSession::waitFor(
            [&] { return session->activeWindow() == window && session->inputFocus() == window; });
    }

    static DesktopSession* session;
    // A deque: the references `start` hands out stay valid as clients are added.
    std::deque<DesktopSession::Client> clients;
};

DesktopSession* DesktopEndToEndTest::session = nullptr;

// The first word of the log that names a macOS thing or call, if any; empty for none.
std::string macOSWordIn(const std::string& log) {
    static const std::regex words(
        R"(\b(Option|Command|Mac|macOS|System Settings|System Preferences|menu bar|Bundle|Finder|)"
        R"(Dock|Spotlight|Sparkle|SkyLight|[Aa]ccessibility|[Ss]creen ?[Rr]ecording|event tap|)"
        R"(application(Did|Will)\w+|(AX|CG|NS|SL)[A-Z]\w+)\b|⌘|⌥)");
    std::smatch match;
    return std::regex_search(log, match, words) ? match.str() : std::string();
}

// Recency, not stacking: the previous window comes forward, the focus follows it, a window
// focused by other means moves to the front, the gesture also comes by command, and keys outside a
// gesture reach the client whole.
TEST_F(DesktopEndToEndTest, AltTabBringsThePreviousWindowForwardInRecencyOrder) {
    // A healthy desktop's start: nothing at error level, nothing of macOS.
    const auto started = session->programLog();
    EXPECT_EQ(started.find(" error: "), std::string::npos) << started;
    EXPECT_EQ(macOSWordIn(started), "") << started;
    auto& first = start("First", 0xcc3333);
    auto& second = start("Second", 0x33cc33);
    auto& third = start("Third", 0x3333cc);
    ASSERT_EQ(session->activeWindow(), third.window);

    altTab();
    EXPECT_TRUE(becomesActive(second.window));
    // The overlay leaves once the window manager has answered.
    EXPECT_TRUE(DesktopSession::waitFor([&] { return !session->overlayWindow(); }));
    altTab();
    EXPECT_TRUE(becomesActive(third.window));

    // A taskbar click on the first window makes it the most recent one.
    session->activate(first.window);
    altTab();
    EXPECT_TRUE(becomesActive(third.window));

    // The gesture sent by command, as a window manager's own shortcut would: a held Alt keeps the
    // overlay up until it is released; with nothing held it switches at once.
    session->press("Alt_L");
    EXPECT_EQ(runProgram({"--gesture", "next"}), 0);
    EXPECT_TRUE(DesktopSession::waitFor([&] { return session->overlayWindow().has_value(); }));
    EXPECT_EQ(session->activeWindow(), third.window);
    session->release("Alt_L");
    EXPECT_TRUE(becomesActive(first.window));
    EXPECT_EQ(runProgram({"--gesture", "next"}), 0);
    EXPECT_TRUE(becomesActive(third.window));
    EXPECT_EQ(runProgram({"--gesture", "sideways"}), 2);

    // Outside a gesture the client gets every key itself; the Tab of a gesture it never sees.
    session->tap("a");
    session->press("Alt_L");
    session->tap("b");
    session->release("Alt_L");
    const auto a = session->keycode("a");
    const auto b = session->keycode("b");
    const auto tab = session->keycode("Tab");
    ASSERT_TRUE(DesktopSession::waitFor([&] {
        const auto keys = session->receivedKeycodes(third.window);
        return std::count(keys.begin(), keys.end(), b) == 1;
    }));
    const auto keys = session->receivedKeycodes(third.window);
    EXPECT_EQ(std::count(keys.begin(), keys.end(), a), 1);
    EXPECT_EQ(std::count(keys.begin(), keys.end(), tab), 0);
}

// Tab, Shift-Tab and the arrows move the selection on the overlay, which never takes the focus;
// Escape leaves the focus where it was. The overlay's pixels show the panel, the selection, a
// preview of each window's contents, and the icon of the minimized one, which has none; a window
// minimized after it was seen keeps its preview.
TEST_F(DesktopEndToEndTest, TheOverlayShowsPreviewsAndEscapeLeavesTheFocusAlone) {
    // An application of its own, so that its icon is its window's.
    auto& red = start("Red", 0xdd2222, false, "Red");
    start("Green", 0x22dd22);
    auto& blue = start("Blue", 0x2222dd);
    session->minimize(red.window);
    session->activate(blue.window);
    ASSERT_TRUE(becomesActive(blue.window));
    // The list of capturable windows is kept 2 s: windows newer than the last gesture's list get
    // previews once it has aged.
    std::this_thread::sleep_for(std::chrono::milliseconds(2100));

    session->press("Alt_L");
    session->tap("Tab");
    ASSERT_TRUE(DesktopSession::waitFor([&] { return session->overlayWindow().has_value(); }));
    session->tap("Tab");
    session->press("Shift_L");
    session->tap("Tab");
    session->release("Shift_L");
    session->tap("Right");
    EXPECT_EQ(session->inputFocus(), blue.window);
    EXPECT_EQ(session->activeWindow(), blue.window);

    const auto overlay = session->overlayWindow();
    ASSERT_TRUE(overlay.has_value());
    const char* folder = std::getenv("ORVANE_SCREENSHOT_DIR");
    DesktopSession::Capture capture;
    auto count = [&](std::uint32_t colour) {
        return std::count(capture.pixels.begin(), capture.pixels.end(), colour);
    };
    // A client's icon is the inverse of its colour, and an icon fills far less of a card than a
    // preview does. Previews arrive once captured.
    const auto previewed = [&] { return count(0x22dd22) > 5000 && count(0x2222dd) > 5000; };
    DesktopSession::waitFor([&] {
        capture = session->capture(
            *overlay,
            (folder ? std::filesystem::path(folder) : session->folder()) / "switcher.png");
        return previewed();
    });
    ASSERT_GT(capture.width, 200);
    EXPECT_GT(count(0x262628), capture.width * capture.height / 8) << "the panel";
    EXPECT_GT(count(0x0a84ff), 100) << "the selection's outline";
    EXPECT_TRUE(previewed()) << count(0x22dd22) << " green, " << count(0x2222dd) << " blue";
    EXPECT_EQ(count(0xdd2222), 0) << "no preview of a minimized window";
    // Dimmed, as a minimized window's is, and under the selection.
    const auto cyan = std::count_if(capture.pixels.begin(), capture.pixels.end(), [](auto pixel) {
        return (pixel >> 16) < 0x50 && ((pixel >> 8) & 0xff) > 0x80 && (pixel & 0xff) > 0x80;
    });
    EXPECT_GT(cyan, 2000) << "its icon instead";

    session->tap("Escape");
    EXPECT_TRUE(DesktopSession::waitFor([&] { return !session->overlayWindow(); }));
    session->release("Alt_L");
    EXPECT_TRUE(becomesActive(blue.window));

    // Minimized once it has been seen, a window keeps its last preview, dimmed, long after the
    // previews the switcher remembers itself (3 s) are gone.
    session->minimize(*session->windowTitled("Green"));
    std::this_thread::sleep_for(std::chrono::milliseconds(3100));
    session->press("Alt_L");
    session->tap("Tab");
    const auto dimmedGreen = [&] {
        return std::count_if(capture.pixels.begin(), capture.pixels.end(), [](auto pixel) {
            const auto red = pixel >> 16, green = (pixel >> 8) & 0xff, blue = pixel & 0xff;
            return green > 0x60 && green > red + 0x40 && green > blue + 0x40;
        });
    };
    EXPECT_TRUE(DesktopSession::waitFor([&] {
        const auto shown = session->overlayWindow();
        capture = shown ? session->capture(*shown, session->folder() / "minimized.png")
                        : DesktopSession::Capture{};
        return dimmedGreen() > 5000;
    })) << dimmedGreen();
    EXPECT_EQ(count(0x22dd22), 0) << "dimmed, as a minimized window's card is";
    session->tap("Escape");
    session->release("Alt_L");
}

// Alt-Space twice searches the installed applications; keys type through the user's layout (here
// Danish, whose key right of L types "æ"); Return opens the entry, whose window takes the focus.
// A malformed entry beside it is skipped with one line.
TEST_F(DesktopEndToEndTest, TheLauncherOpensAnInstalledApplicationTypedInAnyLayout) {
    auto& open = start("Open", 0x446688);
    const auto entries = session->applicationsFolder();
    std::ofstream(entries / "orvane-test-aeble.desktop")
        << "[Desktop Entry]\nType=Application\nName=Æble Pad\nExec=" << ORVANE_TEST_CLIENT_PATH
        << " \"Æble Pad\" 338866\n";
    std::ofstream(entries / "orvane-test-broken.desktop") << "[Desktop Entry\nName=Broken\n";
    session->setLayout("dk");

    session->press("Alt_L");
    session->tap("space");
    session->tap("space");
    session->release("Alt_L");
    for (const auto* key : {"ae", "b", "l"}) {
        session->tap(key);
    }
    session->tap("Return");
    const auto opened = session->windowTitled("Æble Pad");
    session->setLayout("us");
    ASSERT_TRUE(opened.has_value()) << session->programLog();
    EXPECT_TRUE(becomesActive(*opened));
    // It runs in the environment Orvane was given, not the one Orvane set for its own Qt.
    const auto pid = session->cardinalProperty(*opened, "_NET_WM_PID");
    ASSERT_EQ(pid.size(), 1u);
    std::ifstream environ("/proc/" + std::to_string(pid[0]) + "/environ");
    const std::string environment((std::istreambuf_iterator<char>(environ)),
                                  std::istreambuf_iterator<char>());
    EXPECT_NE(environment.find("DISPLAY="), std::string::npos);
    EXPECT_EQ(environment.find("QT_QPA_PLATFORM"), std::string::npos);
    const auto log = session->programLog();
    EXPECT_NE(log.find("launching application Æble Pad"), std::string::npos);
    EXPECT_NE(
        log.find("skipped desktop entry " + (entries / "orvane-test-broken.desktop").string()),
        std::string::npos);
    session->close(*opened);
    EXPECT_TRUE(becomesActive(open.window));
}

// A minimized window comes back when chosen; a window that closes while the overlay shows it is
// absorbed, and the next gesture works.
TEST_F(DesktopEndToEndTest, MinimizedWindowsAreRestoredAndClosedOnesAbsorbed) {
    auto& hidden = start("Hidden", 0x888800);
    auto& shown = start("Shown", 0x008888);
    session->minimize(hidden.window);
    session->activate(shown.window);

    altTab();
    EXPECT_TRUE(becomesActive(hidden.window));
    EXPECT_FALSE(session->isMinimized(hidden.window));

    auto& doomed = start("Doomed", 0x880088);
    session->press("Alt_L");
    session->tap("Tab");
    session->stopClient(doomed);
    clients.pop_back();
    session->release("Alt_L");
    // The selection was the window before the closed one; the next gestures go on as usual.
    EXPECT_TRUE(becomesActive(hidden.window));
    altTab();
    EXPECT_TRUE(becomesActive(shown.window));
    altTab();
    EXPECT_TRUE(becomesActive(hidden.window));
}

// A restart of the window manager forgets nothing: the minimized window that was the most recent
// one before it still is. Windows of one class are one application, whatever process owns each:
// the key above Tab goes between them.
TEST_F(DesktopEndToEndTest, AWindowManagerRestartKeepsTheOrderAndOneClassIsOneApplication) {
    start("Oldest", 0x446688);
    auto& middle = start("Middle", 0x664488);
    auto& newest = start("Newest", 0x886644);
    session->minimize(newest.window);
    session->activate(middle.window);
    ASSERT_TRUE(becomesActive(middle.window));

    const std::string kept = "left the client list but is still managed";
    const auto keptBefore = session->countInProgramLog(kept);
    session->spawn({"openbox", "--restart"}, session->folder() / "openbox.log");
    ASSERT_TRUE(DesktopSession::waitFor([&] {
        return session->countInProgramLog(kept) >= keptBefore + 3 &&
               session->activeWindow() == middle.window;
    })) << session->programLog();

    altTab();
    EXPECT_TRUE(becomesActive(newest.window));
    EXPECT_FALSE(session->isMinimized(newest.window));
    session->press("Alt_L");
    session->tap("grave");
    session->release("Alt_L");
    EXPECT_TRUE(becomesActive(middle.window));
}

// More windows than the screen has room for: the panel is cut to the screen, the most recent
// windows first, and scrolls so that the selection is always in sight, down to the oldest window.
TEST_F(DesktopEndToEndTest, ManyWindowsOnASmallScreenKeepTheSelectionInSight) {
    for (int index = 0; index < 40; ++index) {
        start("Many " + std::to_string(index), 0x303030 + 0x010203 * index);
    }
    // The mean row of the selection's outline in the overlay's pixels; negative without one.
    const auto selectionRow = [&](DesktopSession::Capture& capture) {
        const auto overlay = session->overlayWindow();
        if (!overlay) {
            return -1.0;
        }
        capture = session->capture(*overlay, session->folder() / "many.png");
        double rows = 0, count = 0;
        for (std::size_t index = 0; index < capture.pixels.size(); ++index) {
            if (capture.pixels[index] == 0x0a84ff) {
                rows += static_cast<double>(index / static_cast<std::size_t>(capture.width));
                ++count;
            }
        }
        return count > 100 ? rows / count : -1.0;
    };
    DesktopSession::Capture capture;
    session->press("Alt_L");
    session->tap("Tab");
    EXPECT_TRUE(DesktopSession::waitFor([&] { return selectionRow(capture) >= 0; }));
    EXPECT_EQ(capture.height, 800) << "cut to the screen";
    EXPECT_LT(selectionRow(capture), capture.height / 4);
    session->press("Shift_L");
    session->tap("Tab");
    session->tap("Tab");
    session->release("Shift_L");
    EXPECT_TRUE(DesktopSession::waitFor([&] {
        return selectionRow(capture) > capture.height * 3 / 4;
    })) << selectionRow(capture);
    session->tap("Escape");
    session->release("Alt_L");
}

// A window on another virtual desktop comes forward with its desktop; a client with an impossible
// process, a 200 KB title and a lying icon is listed like any other and breaks nothing.
TEST_F(DesktopEndToEndTest, OtherDesktopsAndAbsurdClients) {
    auto& elsewhere = start("Elsewhere", 0x224466);
    session->moveToDesktop(elsewhere.window, 1);
    auto& absurd = start("Absurd", 0x664422, true);
    ASSERT_EQ(session->currentDesktop(), 0u);
    ASSERT_EQ(session->activeWindow(), absurd.window);

    altTab();
    EXPECT_TRUE(becomesActive(elsewhere.window));
    EXPECT_EQ(session->currentDesktop(), 1u);
    altTab();
    EXPECT_TRUE(becomesActive(absurd.window));
    EXPECT_EQ(session->currentDesktop(), 0u);
    EXPECT_NE(session->programLog().find("claims process 4294967295; ignored"), std::string::npos);
}

// Another program holding Alt-Tab gets one clear line and the welcome window, which can't be
// minimized or maximized; once the chord is let go, the polling sees it, the retry takes it, and
// Return closes the welcome window. The log never names a macOS thing on the way.
TEST_F(DesktopEndToEndTest, AChordHeldElsewhereComesUpOnceFreed) {
    auto& one = start("One", 0x444444);
    auto& two = start("Two", 0x666666);
    session->stopProgram();
    auto holder = session->startChordHolder("Tab");
    session->startProgram();
    const auto taken = "Alt+Tab is already taken by another program";
    ASSERT_TRUE(DesktopSession::waitFor(
        [&] { return session->programLog().find(taken) != std::string::npos; }));
    std::optional<xcb_window_t> welcome;
    ASSERT_TRUE(DesktopSession::waitFor([&] {
        welcome = session->windowTitled("Welcome to Orvane");
        return welcome.has_value();
    })) << session->programLog();
    // Functions and decorations asked of the window manager: neither minimize nor maximize.
    const auto motif = session->cardinalProperty(*welcome, "_MOTIF_WM_HINTS");
    ASSERT_GE(motif.size(), 3u);
    EXPECT_EQ(motif[1] & (8u | 16u), 0u) << "functions " << motif[1];
    EXPECT_EQ(motif[2] & (32u | 64u), 0u) << "decorations " << motif[2];
    EXPECT_NE(session->programLog().find("keyboard shortcut -> notGranted"), std::string::npos);

    session->stopProcess(holder);
    EXPECT_TRUE(DesktopSession::waitFor(
        [&] {
            return session->programLog().find("keyboard shortcut -> granted") != std::string::npos;
        },
        std::chrono::milliseconds(2000)))
        << "the welcome window's polling sees the chord free\n"
        << session->programLog();
    EXPECT_TRUE(DesktopSession::waitFor(
        [&] { return session->programLog().find("Alt+Tab is free again") != std::string::npos; },
        std::chrono::milliseconds(8000)))
        << session->programLog();
    const auto log = session->programLog();
    EXPECT_EQ(log.find(taken), log.rfind(taken)) << "said once, not at every retry";
    // The user focusing the welcome window makes the program active, as any of its windows does.
    session->activate(two.window);
    ASSERT_TRUE(becomesActive(two.window));
    std::this_thread::sleep_for(std::chrono::milliseconds(600));
    const auto active = "the program is active";
    const auto activations = [&] { return session->countInProgramLog(active); };
    const auto before = activations();
    session->activate(*welcome);
    ASSERT_TRUE(becomesActive(*welcome));
    EXPECT_TRUE(DesktopSession::waitFor([&] { return activations() == before + 1; }))
        << session->programLog();
    session->tap("Return");
    EXPECT_TRUE(DesktopSession::waitFor([&] {
        return session->programLog().find("welcome window closed") != std::string::npos;
    })) << session->programLog();
    session->activate(two.window);
    ASSERT_TRUE(becomesActive(two.window));
    altTab();
    EXPECT_TRUE(becomesActive(one.window)) << session->programLog();
    EXPECT_EQ(macOSWordIn(session->programLog()), "");
}

// A compositor that stops between two gestures: the very next one draws the square panel that a
// desktop without one needs, never one with black corners.
TEST_F(DesktopEndToEndTest, TheFirstGestureAfterTheCompositorStopsHasNoBlackCorners) {
    start("One", 0x446644);
    start("Two", 0x664444);
    const auto compositing = [] {
        auto* connection = session->connection();
        auto* atom = xcb_intern_atom_reply(
            connection, xcb_intern_atom(connection, 0, 13, "_NET_WM_CM_S0"), nullptr);
        auto* reply = xcb_get_selection_owner_reply(
            connection, xcb_get_selection_owner(connection, atom ? atom->atom : XCB_NONE), nullptr);
        const bool owned = reply != nullptr && reply->owner != XCB_NONE;
        std::free(reply);
        std::free(atom);
        return owned;
    };
    const auto gesture = [](const char* picture) {
        session->press("Alt_L");
        session->tap("Tab");
        DesktopSession::Capture capture;
        if (DesktopSession::waitFor([] { return session->overlayWindow().has_value(); })) {
            capture = session->capture(*session->overlayWindow(), session->folder() / picture);
        }
        session->tap("Escape");
        session->release("Alt_L");
        DesktopSession::waitFor([] { return !session->overlayWindow(); });
        return capture;
    };
    auto compositor = session->spawn({"xcompmgr"}, session->folder() / "xcompmgr.log");
    ASSERT_TRUE(DesktopSession::waitFor(compositing));
    gesture("composited.png");
    session->stopProcess(compositor);
    ASSERT_TRUE(DesktopSession::waitFor([&] { return !compositing(); }));
    const auto capture = gesture("after-compositor.png");
    ASSERT_GT(capture.width, 10);
    EXPECT_EQ(capture.pixels[capture.width + 1], 0x262628u) << "the panel's own colour at a corner";
}

// A chord beside the required one, held elsewhere (i3's Mod1+space), is tried again by itself:
// once it is let go, the launcher opens on it.
TEST_F(DesktopEndToEndTest, AnOptionalChordHeldElsewhereComesUpOnceFreed) {
    auto& one = start("One", 0x444444);
    session->stopProgram();
    auto holder = session->startChordHolder("space");
    session->startProgram();
    ASSERT_TRUE(DesktopSession::waitFor([&] {
        return session->programLog().find("Alt+Space is already taken") != std::string::npos;
    })) << session->programLog();
    session->stopProcess(holder);
    EXPECT_TRUE(DesktopSession::waitFor(
        [&] { return session->programLog().find("Alt+Space is free again") != std::string::npos; },
        std::chrono::milliseconds(8000)))
        << session->programLog();
    const auto launcherSessions = [] {
        return session->countInProgramLog("launcher session began");
    };
    const auto before = launcherSessions();
    session->press("Alt_L");
    session->tap("space");
    session->release("Alt_L");
    EXPECT_TRUE(DesktopSession::waitFor([&] { return launcherSessions() == before + 1; }))
        << session->programLog();
    session->tap("Escape");
    (void)one;
}

// Two starts at the same moment (autostart and a click in the menu): one runs, the other hands
// its start over to it and ends.
TEST_F(DesktopEndToEndTest, TwoStartsAtOnceLeaveOneRunning) {
    session->stopProgram();
    std::vector<pid_t> starts;
    for (const auto* log : {"first.log", "second.log"}) {
        starts.push_back(session->spawn({ORVANE_PROGRAM_PATH}, session->folder() / log));
    }
    int status = -1;
    pid_t ended = 0;
    ASSERT_TRUE(DesktopSession::waitFor(
        [&] {
            for (auto start : starts) {
                if (::waitpid(start, &status, WNOHANG) == start) {
                    ended = start;
                }
            }
            return ended != 0;
        },
        std::chrono::milliseconds(8000)));
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    const auto running = starts[0] == ended ? starts[1] : starts[0];
    std::this_thread::sleep_for(std::chrono::milliseconds(500));
    EXPECT_EQ(::waitpid(running, &status, WNOHANG), 0) << "the other one runs on";
    ::kill(running, SIGTERM);
    ::waitpid(running, &status, 0);
    session->startProgram();
}

}  // namespace
}  // namespace orvane::testing

namespace orvane::testing {
namespace {

// Last: it quits the program through its menu, and starts it again for whatever follows.
TEST_F(DesktopEndToEndTest, TheTrayMenuOpensSettingsAndQuitsAndASecondStartReopensSettings) {
    auto tray = session->spawn({"trayer", "--edge", "top", "--align", "right", "--widthtype",
                                "request", "--height", "24", "--SetDockType", "true"},
                               session->folder() / "trayer.log");
    // The icon docks into a tray that is there when the program starts.
    session->stopProgram();
    std::this_thread::sleep_for(std::chrono::milliseconds(500));
    session->startProgram();
    const auto settingsTitled = [](const char* pane) {
        return DesktopSession::waitFor([pane] {
            return session->windowTitled(std::string("Orvane Settings — ") + pane).has_value();
        });
    };
    // Right of the tray at the top right corner, keyboard through the menu: Down to "About
    // Orvane", Down past the disabled status line to "Settings…".
    const auto chooseFromTray = [](std::initializer_list<const char*> keys) {
        std::this_thread::sleep_for(std::chrono::milliseconds(300));
        session->click(1280 - 12, 12, 3);
        std::this_thread::sleep_for(std::chrono::milliseconds(300));
        for (const auto* key : keys) {
            session->tap(key);
        }
    };
    chooseFromTray({"Down", "Down", "Return"});
    ASSERT_TRUE(settingsTitled("General")) << session->programLog();
    session->close(*session->windowTitled("Orvane Settings — General"));
    ASSERT_TRUE(DesktopSession::waitFor(
        [] { return !session->windowTitled("Orvane Settings — General").has_value(); }));

    // Started again, Orvane hands over to the running one, which shows its Settings.
    auto second = session->spawn({ORVANE_PROGRAM_PATH}, session->folder() / "second.log");
    int status = -1;
    ASSERT_TRUE(
        DesktopSession::waitFor([&] { return ::waitpid(second, &status, WNOHANG) == second; }));
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    EXPECT_TRUE(settingsTitled("General"));

    // "About Orvane" asked twice shows one About box, brought forward again.
    chooseFromTray({"Down", "Return"});
    ASSERT_TRUE(session->windowTitled("About Orvane").has_value()) << session->programLog();
    chooseFromTray({"Down", "Return"});
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    EXPECT_EQ(session->windowsTitled("About Orvane").size(), 1u);

    // Up wraps round to the last entry, "Quit Orvane": the program ends, Settings open or not.
    chooseFromTray({"Up", "Return"});
    EXPECT_TRUE(DesktopSession::waitFor([] { return session->programEnded(); }))
        << session->programLog();
    session->stopProcess(tray);
    session->stopProgram();
    session->startProgram();
}

}  // namespace
}  // namespace orvane::testing
