// The Wayland backend against a real compositor: a headless sway, foot windows, and sway's own
// word (its IPC) on what is focused.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>

#include <chrono>
#include <functional>
#include <map>
#include <string>
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
    ASSERT_THAT(titlesFrontToBack(model), ElementsAre("Three", ::testing::_, ::testing::_));
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
    sway.stopProcess(one);
    sway.stopProcess(two);
}

}  // namespace
}  // namespace orvane
