// The Wayland backend against a real compositor: a headless sway, foot windows, and sway's own
// word (its IPC) on what is focused.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>

#include <chrono>
#include <fstream>
#include <functional>
#include <map>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "SwaySession.h"
#include "platform/wayland/SwayIpc.h"
#include "platform/wayland/SwayTree.h"
#include "platform/wayland/WaylandConnection.h"
#include "platform/wayland/WaylandWindowModel.h"

namespace orvane {
namespace {

using orvane::testing::SwaySession;
using ::testing::ElementsAre;
using ::testing::Pair;
using ::testing::UnorderedElementsAre;

// Dispatches what the compositor sends until `condition` holds, for at most three seconds.
bool pumpUntil(WaylandConnection& connection, const std::function<bool()>& condition) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(3);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end || !connection.dispatchAvailable()) {
            return false;
        }
        pollfd descriptor{connection.fileDescriptor(), POLLIN, 0};
        ::poll(&descriptor, 1, 20);
    }
    return true;
}

std::string titleOf(const WaylandWindowModel& model, std::optional<WindowIdentifier> identifier) {
    const auto* window = identifier ? model.window(*identifier) : nullptr;
    return window != nullptr ? window->title : "";
}

std::vector<std::string> titlesFrontToBack(const WaylandWindowModel& model) {
    std::vector<std::string> titles;
    for (auto handle : model.frontToBack()) {
        titles.push_back(titleOf(model, handle));
    }
    return titles;
}

TEST(WaylandWindowModelTest, FollowsSwaysWindowsTheirFocusAndActivatesThem) {
    SwaySession sway;
    ASSERT_TRUE(sway.isReady()) << sway.problem();
    auto one = sway.startClient("One", "orvane.one");
    auto two = sway.startClient("Two", "orvane.two");
    auto three = sway.startClient("Three", "orvane.two");
    // A history from before Orvane: One was focused after Two, and Two went to workspace 2.
    sway.swaymsg({"[title=\"^One$\"]", "focus"});
    sway.swaymsg({"[title=\"^Two$\"]", "move", "to", "workspace", "2"});
    sway.swaymsg({"[title=\"^Three$\"]", "focus"});
    ASSERT_EQ(sway.focusedTitle(), "Three");

    auto connection = WaylandConnection::connect(sway.display().c_str());
    ASSERT_NE(connection, nullptr);
    EXPECT_THAT(connection->missingProtocols(), ElementsAre());
    EXPECT_NE(connection->screencopyManager(), nullptr);
    WaylandWindowModel model(*connection);
    std::vector<std::pair<WaylandWindowModel::ChangeKind, std::string>> changes;
    model.addListener(
        [&](auto kind, const auto& window) { changes.emplace_back(kind, window.title); });

    // The windows there before the model are all told, with their application and focus, and
    // sway's tree tells the focus order from before, each window's process, frame and workspace.
    // Until an IPC tells its frame, a window fills the output the protocol says it is on.
    ASSERT_THAT(titlesFrontToBack(model), ElementsAre("Three", ::testing::_, ::testing::_));
    model.refreshGeometry();
    const auto& output = *connection->outputs().front();
    EXPECT_EQ(model.window(model.frontToBack().front())->frame,
              (Rect{{double(output.x), double(output.y)},
                    {double(output.width), double(output.height)}}));
    EXPECT_GT(output.width, 0);
    auto ipc = SwayIpc::connect(sway.ipcSocket());
    ASSERT_NE(ipc, nullptr);
    const auto tree = ipc->request(SwayIpc::Request::getTree);
    ASSERT_TRUE(tree.has_value());
    model.learn(SwayTree::windowsByFocus(*tree), true);
    EXPECT_THAT(titlesFrontToBack(model), ElementsAre("Three", "One", "Two"));
    std::map<std::string, const WaylandWindowModel::Window*> byTitle;
    for (auto handle : model.frontToBack()) {
        byTitle[model.window(handle)->title] = model.window(handle);
    }
    ASSERT_TRUE(byTitle.contains("One") && byTitle.contains("Two"));
    EXPECT_EQ(byTitle["One"]->applicationName, "orvane.one");
    EXPECT_EQ(byTitle["Two"]->process, byTitle["Three"]->process);
    EXPECT_NE(byTitle["One"]->process, byTitle["Two"]->process);
    EXPECT_EQ(titleOf(model, model.activeWindow()), "Three");
    EXPECT_EQ(byTitle["One"]->owner, one);
    EXPECT_TRUE(byTitle["One"]->isFrameKnown && byTitle["One"]->frame.size.width > 100);
    EXPECT_TRUE(model.isOnCurrentDesktop(*byTitle["One"]));
    EXPECT_FALSE(model.isOnCurrentDesktop(*byTitle["Two"]));
    EXPECT_THAT(ipc->run("nop first; no_such_command"),
                ElementsAre(::testing::HasSubstr("Unknown")));

    // A focus change made by someone else is an activation, and brings the window to the front.
    const auto revision = model.revision();
    sway.swaymsg({"[title=\"^One$\"]", "focus"});
    EXPECT_TRUE(
        pumpUntil(*connection, [&] { return titleOf(model, model.activeWindow()) == "One"; }));
    EXPECT_THAT(changes, ElementsAre(Pair(WaylandWindowModel::ChangeKind::activated, "One")));
    EXPECT_THAT(titlesFrontToBack(model), ElementsAre("One", "Three", ::testing::_));
    EXPECT_NE(model.revision(), revision);

    // Orvane's own activation reaches sway.
    model.activate(*byTitle["Two"]);
    EXPECT_TRUE(pumpUntil(*connection, [&] { return sway.focusedTitle() == "Two"; }));
    EXPECT_TRUE(
        pumpUntil(*connection, [&] { return titleOf(model, model.activeWindow()) == "Two"; }));

    // A window that closes is told once and is gone; activating its last copy asks nothing.
    const auto closing = *byTitle["Three"];
    changes.clear();
    sway.stopProcess(three);
    EXPECT_TRUE(pumpUntil(*connection, [&] { return model.frontToBack().size() == 2; }));
    EXPECT_THAT(changes,
                ::testing::Contains(Pair(WaylandWindowModel::ChangeKind::removed, "Three")));
    EXPECT_EQ(model.window(closing.window), nullptr);
    model.activate(closing);
    EXPECT_THAT(titlesFrontToBack(model), ElementsAre("Two", "One"));

    // An absurd title comes cut (foot and sway cut it before Orvane's own bound), in whole
    // characters, and the window is there like any other.
    std::string absurd;
    while (absurd.size() < 20000) {
        absurd += "Überlänge ";
    }
    auto long_ = sway.startClient(absurd, "orvane.long");
    EXPECT_TRUE(pumpUntil(*connection, [&] { return model.frontToBack().size() == 3; }));
    const auto* longest = model.window(model.frontToBack().front());
    ASSERT_NE(longest, nullptr);
    EXPECT_LE(longest->title.size(), 4096u);
    EXPECT_GT(longest->title.size(), 1000u);
    EXPECT_EQ(absurd.compare(0, longest->title.size(), longest->title), 0);
    EXPECT_NE(static_cast<unsigned char>(longest->title.back()), 0xC3);
    sway.stopProcess(long_);
    sway.stopProcess(one);
    sway.stopProcess(two);
}

// Orvane itself on sway, keys typed through a virtual keyboard as a person types them.
TEST(WaylandProgramTest, SwitchesLaunchesAndLetsGoOfItsKeysOnSway) {
    SwaySession sway;
    ASSERT_TRUE(sway.isReady()) << sway.problem();
    auto one = sway.startClient("One", "orvane.one");
    auto two = sway.startClient("Two", "orvane.two");
    auto three = sway.startClient("Three", "orvane.three");
    // Focused before Orvane started: Two, then One, then Three.
    sway.swaymsg({"[title=\"^Two$\"]", "focus"});
    sway.swaymsg({"[title=\"^One$\"]", "focus"});
    sway.swaymsg({"[title=\"^Three$\"]", "focus"});
    ASSERT_TRUE(sway.startProgram()) << sway.programLog();
    EXPECT_THAT(sway.programLog(), ::testing::HasSubstr("Alt+Tab and its companions are bound"));
    // The focus once the gesture is over: a window has it again (the overlay had it meanwhile).
    const auto focusAfter = [&](const std::vector<std::string>& keys) {
        sway.type(keys);
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(3);
        std::this_thread::sleep_for(std::chrono::milliseconds(150));
        while (!sway.focusedTitle() && std::chrono::steady_clock::now() < end) {
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
        }
        return sway.focusedTitle().value_or("");
    };

    // Alt+Tab once goes to the window focused before Orvane started, as sway's tree tells.
    EXPECT_EQ(focusAfter({"-M", "alt", "-k", "Tab", "-s", "300", "-m", "alt"}), "One");
    // Twice and three times down the recency; a fast tap, released at once, still commits.
    EXPECT_EQ(
        focusAfter({"-M", "alt", "-k", "Tab", "-s", "150", "-k", "Tab", "-s", "150", "-m", "alt"}),
        "Two");
    EXPECT_EQ(
        focusAfter({"-M", "alt", "-k", "Tab", "-k", "Tab", "-k", "Tab", "-s", "200", "-m", "alt"}),
        "Two");
    EXPECT_EQ(focusAfter({"-M", "alt", "-k", "Tab", "-m", "alt"}), "One");
    // Shift goes back up; Escape changes nothing.
    EXPECT_EQ(focusAfter({"-M", "alt", "-k", "Tab", "-s", "150", "-M", "shift", "-k", "Tab", "-m",
                          "shift", "-s", "150", "-m", "alt"}),
              "One");
    EXPECT_EQ(focusAfter({"-M", "alt", "-k", "Tab", "-s", "150", "-k", "Escape", "-s", "150", "-m",
                          "alt"}),
              "One");
    // A held arrow repeats at the compositor's pace: here once in 0.8 s (after 0.3 s, then one a
    // second), which takes the selection round the three windows back to the first.
    sway.swaymsg({"input", "type:keyboard", "repeat_delay", "300"});
    sway.swaymsg({"input", "type:keyboard", "repeat_rate", "1"});
    EXPECT_EQ(focusAfter({"-M", "alt", "-k", "Tab", "-s", "150", "-P", "Right", "-s", "800", "-p",
                          "Right", "-s", "150", "-m", "alt"}),
              "One");

    // While the overlay is up it has the keyboard: no window has the focus.
    std::thread gesture([&] { sway.type({"-M", "alt", "-k", "Tab", "-s", "900", "-m", "alt"}); });
    std::this_thread::sleep_for(std::chrono::milliseconds(450));
    const auto focusedMidGesture = sway.focusedTitle();
    gesture.join();
    EXPECT_EQ(focusedMidGesture, std::nullopt);
    EXPECT_EQ(focusAfter({}), "Two");

    // A window on another workspace comes forward with its workspace.
    sway.swaymsg({"[title=\"^Three$\"]", "move", "to", "workspace", "2"});
    std::this_thread::sleep_for(std::chrono::milliseconds(200));
    EXPECT_EQ(focusAfter({"-M", "alt", "-k", "Tab", "-k", "Tab", "-s", "200", "-m", "alt"}),
              "Three");

    // The launcher finds a window by typed text and brings it forward with Return.
    sway.type({"-M", "alt", "-k", "space", "-m", "alt", "-s", "200", "-k", "o", "-k", "n", "-k",
               "e", "-s", "200", "-k", "Return"});
    EXPECT_EQ(focusAfter({}), "One");

    // A window closed between two gestures is simply gone from the next one.
    sway.stopProcess(two);
    EXPECT_EQ(focusAfter({"-M", "alt", "-k", "Tab", "-s", "200", "-m", "alt"}), "Three");

    // Keys outside a gesture reach the focused window untouched, Tab and Alt with another key too.
    const auto typed = sway.folder() / "typed.txt";
    auto keys = sway.startClient("Keys", "orvane.keys", {"sh", "-c", "cat > " + typed.string()});
    ASSERT_EQ(sway.focusedTitleOnceIt("Keys"), "Keys");
    // wtype's keymap first reaches the window, which may otherwise drop the first key.
    sway.type({"-s", "200", "hello there", "-k", "Tab", "-M", "alt", "-k", "x", "-m", "alt", "-k",
               "Return"});
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    std::ifstream typedFile(typed);
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(typedFile), {}), "hello there\t\x1bx\n");
    sway.stopProcess(keys);

    // Alt+Tab is Orvane's binding while it runs; once it quits, the binding is gone and Alt+Tab
    // reaches the focused window again.
    const auto altTab = [&] { sway.type({"-M", "alt", "-k", "Tab", "-s", "100", "-m", "alt"}); };
    EXPECT_THAT(sway.bindingEventsWhile(altTab), ::testing::HasSubstr("nop orvane next"));
    EXPECT_THAT(sway.bindingEventsWhile([&] {
        sway.type({"-M", "alt", "-M", "shift", "-k", "grave", "-m", "shift", "-m", "alt"});
    }),
                ::testing::HasSubstr("nop orvane same-application-previous"));
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    sway.stopProgram();
    EXPECT_THAT(sway.bindingEventsWhile(altTab), ::testing::Not(::testing::HasSubstr("orvane")));
    // Under the sanitizers, the program's own faults and leaks would be in its log.
    EXPECT_THAT(sway.programLog(), ::testing::Not(::testing::HasSubstr("Sanitizer")));
    sway.stopProcess(one);
    sway.stopProcess(three);
}

// Where Orvane cannot bind its keys (no sway IPC, as on Hyprland, labwc or river), a binding of
// the compositor's own runs `orvane --gesture`: with Alt held across two of them the switcher
// walks down the recency, and letting go of Alt commits.
TEST(WaylandProgramTest, TakesGesturesByCommandWhereItCannotBind) {
    SwaySession sway;
    ASSERT_TRUE(sway.isReady()) << sway.problem();
    auto one = sway.startClient("One", "orvane.one");
    auto two = sway.startClient("Two", "orvane.two");
    ASSERT_TRUE(sway.startProgram({.withIpc = false, .wholeStacks = true})) << sway.programLog();
    // Nothing binds the keys yet: the welcome window says how, and has the focus.
    EXPECT_EQ(sway.focusedTitleOnceIt("Welcome to Orvane"), "Welcome to Orvane");

    std::thread held([&] { sway.type({"-M", "alt", "-s", "1200", "-m", "alt"}); });
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    sway.sendGesture("next");
    std::this_thread::sleep_for(std::chrono::milliseconds(200));
    sway.sendGesture("next");
    held.join();
    EXPECT_EQ(sway.focusedTitleOnceIt("One"), "One");
    EXPECT_THAT(sway.programLog(), ::testing::HasSubstr("keyboard shortcut -> granted"));
    sway.stopProgram();
    EXPECT_THAT(sway.programLog(), ::testing::Not(::testing::HasSubstr("Sanitizer")));
    sway.stopProcess(one);
    sway.stopProcess(two);
}

}  // namespace
}  // namespace orvane
