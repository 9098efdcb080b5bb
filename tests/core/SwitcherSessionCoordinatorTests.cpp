#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "core/ScopedLogCapture.h"
#include "core/SwitcherSessionCoordinator.h"
#include "support/SimulatedDesktopBuilders.h"

namespace orvane {
namespace {

using Ids = std::vector<WindowIdentifier>;

SwitchableWindow window(WindowIdentifier identifier, ProcessIdentifier process = 100) {
    SwitchableWindow result;
    result.windowIdentifier = identifier;
    result.owningProcessIdentifier = process;
    result.windowTitle = "window " + std::to_string(identifier);
    return result;
}

// Every collaborator of the coordinator, noting what it is asked as words: "enumerate",
// "present 1 2 @1", "select 0", "dismiss", "activate 3 (window 3)".
class Collaborators final : public WindowEnumerationService,
                            public MostRecentlyUsedWindowOrdering,
                            public SwitcherOverlayPresenting,
                            public WindowActivationService {
  public:
    std::vector<SwitchableWindow> enumerateSwitchableWindows() override {
        note("enumerate");
        return enumerated;
    }
    void startTracking() override {}
    void stopTracking() override {}
    // Reverses what it is given, so a test can tell ordered output from enumeration order, and
    // keeps it: the ordering learns from every window it sees.
    std::vector<SwitchableWindow> orderedByRecency(std::vector<SwitchableWindow> windows) override {
        lastOrdered = windows;
        std::reverse(windows.begin(), windows.end());
        return windows;
    }
    void recordImmediateFocus(const SwitchableWindow&) override { note("record"); }
    bool isPresented() const override { return false; }
    void presentSwitcher(const std::vector<SwitchableWindow>& windows,
                         std::ptrdiff_t selectedIndex) override {
        std::string shown = "present";
        for (auto identifier : windowIdentifiers(windows)) {
            shown += " " + std::to_string(identifier);
        }
        note(shown + " @" + std::to_string(selectedIndex));
    }
    void updateSelection(std::ptrdiff_t selectedIndex) override {
        note("select " + std::to_string(selectedIndex));
    }
    void presentLauncher(const LauncherOverlayPresentation&) override { note("launcher"); }
    void dismiss() override { note("dismiss"); }
    void activate(const SwitchableWindow& chosen) override {
        note("activate " + std::to_string(chosen.windowIdentifier) + " (" + chosen.windowTitle +
             ")");
    }

    // The calls since the last take, comma separated.
    std::string take() { return std::exchange(calls, ""); }

    std::vector<SwitchableWindow> enumerated, lastOrdered;

  private:
    void note(const std::string& call) { calls += (calls.empty() ? "" : ", ") + call; }

    std::string calls;
};

class SwitcherSessionCoordinatorTest : public ::testing::Test {
  protected:
    // The enumeration answers in reverse recency, so after ordering the ids come out ascending.
    void enumerate(const Ids& mostRecentFirst) {
        fakes->enumerated.clear();
        for (auto identifier : mostRecentFirst) {
            fakes->enumerated.insert(fakes->enumerated.begin(), window(identifier));
        }
    }

    std::shared_ptr<Collaborators> fakes = std::make_shared<Collaborators>();
    std::optional<ProcessIdentifier> frontmost = 100;
    SwitcherSessionCoordinator coordinator{fakes, fakes, fakes, fakes,
                                           [this] { return frontmost; }};
};

// Forward starts on the previous window, so a plain tap goes back to it; backward on the last.
// Left and up step back, right and down forward.
TEST_F(SwitcherSessionCoordinatorTest, StartSelectsThePreviousOrTheLastAndStepsWrapBothWays) {
    using Direction = SwitcherSelectionDirection;
    struct Case {
        Ids windows;
        bool backward;
        std::vector<std::variant<std::ptrdiff_t, Direction>> steps;
        std::string calls;
        std::ptrdiff_t selected = 0;
    };
    const Case cases[] = {
        {{1}, false, {+1}, "enumerate, present 1 @0, select 0"},
        {{1, 2}, false, {+1}, "enumerate, present 1 2 @1, select 0"},
        // A negative remainder must not leak into the index.
        {{1, 2, 3},
         true,
         {+1, -1, -1, -8, +7},
         "enumerate, present 1 2 3 @2, select 0, select 2, select 1, select 2, select 0"},
        {{1, 2, 3, 4, 5},
         false,
         {Direction::left, Direction::up, Direction::right, Direction::down},
         "enumerate, present 1 2 3 4 5 @1, select 0, select 4, select 0, select 1",
         1},
    };
    for (const auto& testCase : cases) {
        SCOPED_TRACE(testCase.calls);
        enumerate(testCase.windows);
        ASSERT_TRUE(coordinator.startSession(testCase.backward));
        for (const auto& step : testCase.steps) {
            std::visit([&](auto by) { coordinator.moveSelection(by); }, step);
        }
        EXPECT_EQ(fakes->take(), testCase.calls);
        EXPECT_EQ(coordinator.selectedIndex(), testCase.selected);
        coordinator.cancelSession();
        fakes->take();
    }
}

TEST_F(SwitcherSessionCoordinatorTest, StartDuringASessionKeepsItUntouched) {
    enumerate({1, 2, 3});
    ASSERT_TRUE(coordinator.startSession(false));
    fakes->take();
    EXPECT_TRUE(coordinator.startSession(true));
    EXPECT_TRUE(coordinator.startSameApplicationSession(false));
    EXPECT_EQ(fakes->take(), "");
    EXPECT_EQ(coordinator.selectedIndex(), 1);
}

TEST_F(SwitcherSessionCoordinatorTest, NothingToOfferLogsOnceAndLeavesTheOverlayAlone) {
    struct Case {
        const char* name;
        std::optional<ProcessIdentifier> frontmost;
        bool sameApplication;
        Ids windows;
        std::vector<std::string> expectedLog;
    };
    const std::vector<std::string> notStarted{
        "switcher session not started — no switchable windows"};
    const Case cases[] = {
        {"empty enumeration", 100, false, {}, notStarted},
        {"empty enumeration, same application", 100, true, {}, notStarted},
        {"frontmost owns no listed window", 999, true, {1, 2}, notStarted},
        {"no frontmost process", std::nullopt, true, {1, 2}, {}},
    };
    for (const auto& testCase : cases) {
        SCOPED_TRACE(testCase.name);
        enumerate(testCase.windows);
        frontmost = testCase.frontmost;
        ScopedLogCapture capture;
        EXPECT_FALSE(testCase.sameApplication ? coordinator.startSameApplicationSession(false)
                                              : coordinator.startSession(false));
        EXPECT_FALSE(coordinator.isSessionActive());
        EXPECT_EQ(fakes->take(), "enumerate");
        EXPECT_EQ(capture.sink().messages(), testCase.expectedLog);
        for (const auto& record : capture.sink().records()) {
            EXPECT_EQ(record.category, LogCategory::overlay);
            EXPECT_EQ(record.level, LogLevel::info);
        }
    }
}

TEST_F(SwitcherSessionCoordinatorTest, SameApplicationFiltersTheOrderedListKeepingItsOrder) {
    fakes->enumerated = {window(10, 1), window(11, 2), window(12, 1), window(13, 2)};
    frontmost = 2;
    ASSERT_TRUE(coordinator.startSameApplicationSession(false));
    EXPECT_EQ(fakes->take(), "enumerate, present 13 11 @1");
    EXPECT_EQ(windowIdentifiers(coordinator.sessionWindows()), (Ids{13, 11}));
    EXPECT_EQ(windowIdentifiers(fakes->lastOrdered), (Ids{10, 11, 12, 13}));
}

// The overlay is gone before anything comes forward; once a session ends, nothing acts on it.
TEST_F(SwitcherSessionCoordinatorTest, CommitActivatesTheSnapshotRecordAndCancelOnlyDismisses) {
    enumerate({1, 2, 3});
    ASSERT_TRUE(coordinator.startSession(false));
    coordinator.moveSelection(std::ptrdiff_t{1});
    // The desktop changed since the start; the snapshot still decides.
    enumerate({7, 8, 9});
    fakes->take();
    for (bool commit : {true, false}) {
        SCOPED_TRACE(commit ? "commit" : "cancel");
        commit ? coordinator.commitSession() : coordinator.cancelSession();
        EXPECT_EQ(fakes->take(), commit ? "dismiss, activate 3 (window 3)" : "dismiss");
        EXPECT_FALSE(coordinator.isSessionActive());
        EXPECT_TRUE(coordinator.sessionWindows().empty());
        EXPECT_EQ(coordinator.selectedIndex(), 0);
        coordinator.commitSession();
        coordinator.cancelSession();
        coordinator.moveSelection(std::ptrdiff_t{1});
        EXPECT_EQ(fakes->take(), "");
        EXPECT_EQ(coordinator.selectedIndex(), 0);
        ASSERT_TRUE(coordinator.startSession(true));
        EXPECT_EQ(fakes->take(), "enumerate, present 7 8 9 @2");
    }
}

}  // namespace
}  // namespace orvane
