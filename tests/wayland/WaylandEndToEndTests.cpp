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

TEST(WaylandWindowModelTest, FollowsSwaysWindowsTheirFocusAndActivatesThem) {
    SwaySession sway;
    ASSERT_TRUE(sway.isReady()) << sway.problem();
    auto one = sway.startClient("One", "orvane.one");
    auto two = sway.startClient("Two", "orvane.two");
    auto three = sway.startClient("Three", "orvane.two");
    ASSERT_EQ(sway.focusedTitle(), "Three");

    auto connection = WaylandConnection::connect(sway.display().c_str());
    ASSERT_NE(connection, nullptr);
    EXPECT_THAT(connection->missingProtocols(), ElementsAre());
    EXPECT_NE(connection->screencopyManager(), nullptr);
    WaylandWindowModel model(*connection);
    std::vector<std::pair<WaylandWindowModel::ChangeKind, std::string>> changes;
    model.addListener(
        [&](auto kind, const auto& window) { changes.emplace_back(kind, window.title); });

    // The windows there before the model are all told, with their application and focus.
    std::map<std::string, const WaylandWindowModel::Toplevel*> byTitle;
    for (const auto* window : model.windows()) {
        byTitle[window->title] = window;
    }
    ASSERT_THAT(byTitle, UnorderedElementsAre(Pair("One", ::testing::_), Pair("Two", ::testing::_),
                                              Pair("Three", ::testing::_)));
    EXPECT_EQ(byTitle["One"]->appId, "orvane.one");
    EXPECT_EQ(byTitle["Two"]->process, byTitle["Three"]->process);
    EXPECT_NE(byTitle["One"]->process, byTitle["Two"]->process);
    EXPECT_EQ(titleOf(model, model.activeWindow()), "Three");

    // A focus change made by someone else is an activation.
    sway.swaymsg({"[title=\"^One$\"]", "focus"});
    EXPECT_TRUE(
        pumpUntil(*connection, [&] { return titleOf(model, model.activeWindow()) == "One"; }));
    EXPECT_THAT(changes, ElementsAre(Pair(WaylandWindowModel::ChangeKind::activated, "One")));

    // Orvane's own activation reaches sway.
    ASSERT_TRUE(model.activate(byTitle["Two"]->identifier));
    EXPECT_TRUE(pumpUntil(*connection, [&] { return sway.focusedTitle() == "Two"; }));
    EXPECT_TRUE(
        pumpUntil(*connection, [&] { return titleOf(model, model.activeWindow()) == "Two"; }));

    // A window that closes is told once and is gone; activating it now is refused.
    const auto closing = byTitle["Three"]->identifier;
    changes.clear();
    sway.stopProcess(three);
    EXPECT_TRUE(pumpUntil(*connection, [&] { return model.windows().size() == 2; }));
    EXPECT_THAT(changes,
                ::testing::Contains(Pair(WaylandWindowModel::ChangeKind::removed, "Three")));
    EXPECT_EQ(model.window(closing), nullptr);
    EXPECT_FALSE(model.activate(closing));
    sway.stopProcess(one);
    sway.stopProcess(two);
}

}  // namespace
}  // namespace orvane
