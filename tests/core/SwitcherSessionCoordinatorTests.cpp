#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <optional>
#include <vector>

#include "core/ScopedLogCapture.h"
#include "core/SwitcherSessionCoordinator.h"

namespace orvane {
namespace {

using ::testing::_;
using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::Field;
using ::testing::InSequence;
using ::testing::NiceMock;
using ::testing::Return;
using ::testing::StrictMock;

class MockEnumeration : public WindowEnumerationService {
  public:
    MOCK_METHOD(std::vector<SwitchableWindow>, enumerateSwitchableWindows, (), (override));
};

// Reverses what it is given, so a test can tell ordered output from enumeration order, and keeps
// what it was given: the ordering learns from every window it sees.
class ReversingOrdering : public MostRecentlyUsedWindowOrdering {
  public:
    std::vector<SwitchableWindow> lastGiven;

    void startTracking() override {}
    void stopTracking() override {}
    std::vector<SwitchableWindow> orderedByRecency(std::vector<SwitchableWindow> windows) override {
        lastGiven = windows;
        std::reverse(windows.begin(), windows.end());
        return windows;
    }
    void recordImmediateFocus(const SwitchableWindow&) override {}
};

class MockOverlay : public SwitcherOverlayPresenting {
  public:
    MOCK_METHOD(bool, isPresented, (), (const, override));
    MOCK_METHOD(void, presentSwitcher, (const std::vector<SwitchableWindow>&, std::ptrdiff_t),
                (override));
    MOCK_METHOD(void, updateSelection, (std::ptrdiff_t), (override));
    MOCK_METHOD(void, presentLauncher, (const LauncherOverlayPresentation&), (override));
    MOCK_METHOD(void, dismiss, (), (override));
};

class MockActivation : public WindowActivationService {
  public:
    MOCK_METHOD(void, activate, (const SwitchableWindow&), (override));
};

SwitchableWindow window(WindowIdentifier identifier, ProcessIdentifier process = 100) {
    SwitchableWindow result;
    result.windowIdentifier = identifier;
    result.owningProcessIdentifier = process;
    result.windowTitle = "window " + std::to_string(identifier);
    return result;
}

std::vector<WindowIdentifier> identifiers(const std::vector<SwitchableWindow>& windows) {
    std::vector<WindowIdentifier> result;
    for (const auto& each : windows) {
        result.push_back(each.windowIdentifier);
    }
    return result;
}

auto hasIdentifier(WindowIdentifier identifier) {
    return Field(&SwitchableWindow::windowIdentifier, identifier);
}

class SwitcherSessionCoordinatorTest : public ::testing::Test {
  protected:
    // The enumeration answers in reverse recency, so after ordering the ids come out ascending.
    void enumerate(std::vector<WindowIdentifier> mostRecentFirst, ProcessIdentifier process = 100) {
        std::vector<SwitchableWindow> windows;
        for (auto identifier : mostRecentFirst) {
            windows.insert(windows.begin(), window(identifier, process));
        }
        ON_CALL(*enumeration, enumerateSwitchableWindows()).WillByDefault(Return(windows));
    }

    std::shared_ptr<NiceMock<MockEnumeration>> enumeration =
        std::make_shared<NiceMock<MockEnumeration>>();
    std::shared_ptr<NiceMock<MockOverlay>> overlay = std::make_shared<NiceMock<MockOverlay>>();
    std::shared_ptr<StrictMock<MockActivation>> activation =
        std::make_shared<StrictMock<MockActivation>>();
    std::optional<ProcessIdentifier> frontmost = 100;
    std::shared_ptr<ReversingOrdering> ordering = std::make_shared<ReversingOrdering>();
    SwitcherSessionCoordinator coordinator{enumeration, ordering, overlay, activation,
                                           [this] { return frontmost; }};
};

TEST_F(SwitcherSessionCoordinatorTest, OneWindowForwardSelectsItAndStepsStayOnIt) {
    enumerate({1});
    EXPECT_CALL(*overlay, presentSwitcher(ElementsAre(hasIdentifier(1)), 0));
    EXPECT_CALL(*overlay, updateSelection(0));
    ASSERT_TRUE(coordinator.startSession(false));
    EXPECT_EQ(coordinator.selectedIndex(), 0);
    coordinator.moveSelection(std::ptrdiff_t{1});
    EXPECT_EQ(coordinator.selectedIndex(), 0);
}

TEST_F(SwitcherSessionCoordinatorTest, TwoWindowsForwardSelectsThePreviousThenWraps) {
    enumerate({1, 2});
    EXPECT_CALL(*overlay, presentSwitcher(ElementsAre(hasIdentifier(1), hasIdentifier(2)), 1));
    EXPECT_CALL(*overlay, updateSelection(0));
    ASSERT_TRUE(coordinator.startSession(false));
    EXPECT_EQ(coordinator.selectedIndex(), 1);
    coordinator.moveSelection(std::ptrdiff_t{1});
    EXPECT_EQ(coordinator.selectedIndex(), 0);
}

TEST_F(SwitcherSessionCoordinatorTest, BackwardStartsOnTheLastAndWrapsBothWays) {
    enumerate({1, 2, 3});
    {
        InSequence order;
        EXPECT_CALL(*overlay, presentSwitcher(_, 2));
        EXPECT_CALL(*overlay, updateSelection(0));
        EXPECT_CALL(*overlay, updateSelection(2));
        EXPECT_CALL(*overlay, updateSelection(1));
        EXPECT_CALL(*overlay, updateSelection(2));
        EXPECT_CALL(*overlay, updateSelection(0));
    }
    ASSERT_TRUE(coordinator.startSession(true));
    EXPECT_EQ(coordinator.selectedIndex(), 2);
    coordinator.moveSelection(std::ptrdiff_t{1});
    coordinator.moveSelection(std::ptrdiff_t{-1});
    coordinator.moveSelection(std::ptrdiff_t{-1});
    EXPECT_EQ(coordinator.selectedIndex(), 1);
    // A negative remainder must not leak into the index.
    coordinator.moveSelection(std::ptrdiff_t{-8});
    EXPECT_EQ(coordinator.selectedIndex(), 2);
    coordinator.moveSelection(std::ptrdiff_t{+7});
    EXPECT_EQ(coordinator.selectedIndex(), 0);
}

TEST_F(SwitcherSessionCoordinatorTest, DirectionsStepLeftAndUpBackRightAndDownForward) {
    enumerate({1, 2, 3, 4, 5});
    ASSERT_TRUE(coordinator.startSession(false));  // index 1
    coordinator.moveSelection(SwitcherSelectionDirection::left);
    EXPECT_EQ(coordinator.selectedIndex(), 0);
    coordinator.moveSelection(SwitcherSelectionDirection::up);
    EXPECT_EQ(coordinator.selectedIndex(), 4);
    coordinator.moveSelection(SwitcherSelectionDirection::right);
    EXPECT_EQ(coordinator.selectedIndex(), 0);
    coordinator.moveSelection(SwitcherSelectionDirection::down);
    EXPECT_EQ(coordinator.selectedIndex(), 1);
}

TEST_F(SwitcherSessionCoordinatorTest, StartDuringASessionKeepsItUntouched) {
    enumerate({1, 2, 3});
    ASSERT_TRUE(coordinator.startSession(false));
    EXPECT_CALL(*enumeration, enumerateSwitchableWindows()).Times(0);
    EXPECT_CALL(*overlay, presentSwitcher(_, _)).Times(0);
    EXPECT_CALL(*overlay, updateSelection(_)).Times(0);
    EXPECT_TRUE(coordinator.startSession(true));
    EXPECT_TRUE(coordinator.startSameApplicationSession(false));
    EXPECT_EQ(coordinator.selectedIndex(), 1);
}

TEST_F(SwitcherSessionCoordinatorTest, NothingToOfferLogsOnceAndLeavesTheOverlayAlone) {
    struct Case {
        const char* name;
        std::optional<ProcessIdentifier> frontmost;
        bool sameApplication;
        std::vector<WindowIdentifier> windows;
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
    EXPECT_CALL(*overlay, presentSwitcher(_, _)).Times(0);
    EXPECT_CALL(*overlay, dismiss()).Times(0);
    for (const auto& each : cases) {
        SCOPED_TRACE(each.name);
        enumerate(each.windows);
        frontmost = each.frontmost;
        ScopedLogCapture capture;
        EXPECT_FALSE(each.sameApplication ? coordinator.startSameApplicationSession(false)
                                          : coordinator.startSession(false));
        EXPECT_FALSE(coordinator.isSessionActive());
        EXPECT_EQ(capture.sink().messages(), each.expectedLog);
        for (const auto& record : capture.sink().records()) {
            EXPECT_EQ(record.category, LogCategory::overlay);
            EXPECT_EQ(record.level, LogLevel::info);
        }
    }
}

TEST_F(SwitcherSessionCoordinatorTest, SameApplicationFiltersTheOrderedListKeepingItsOrder) {
    // Enumeration order 10(p1), 11(p2), 12(p1), 13(p2); the ordering reverses it.
    ON_CALL(*enumeration, enumerateSwitchableWindows())
        .WillByDefault(
            Return(std::vector{window(10, 1), window(11, 2), window(12, 1), window(13, 2)}));
    frontmost = 2;
    EXPECT_CALL(*overlay, presentSwitcher(ElementsAre(hasIdentifier(13), hasIdentifier(11)), 1));
    ASSERT_TRUE(coordinator.startSameApplicationSession(false));
    EXPECT_EQ(identifiers(coordinator.sessionWindows()), (std::vector<WindowIdentifier>{13, 11}));
    EXPECT_EQ(identifiers(ordering->lastGiven), (std::vector<WindowIdentifier>{10, 11, 12, 13}));
}

TEST_F(SwitcherSessionCoordinatorTest, CommitDismissesThenActivatesTheSnapshotRecord) {
    enumerate({1, 2, 3});
    ASSERT_TRUE(coordinator.startSession(false));
    coordinator.moveSelection(std::ptrdiff_t{1});
    // The desktop changed since the start; the snapshot still decides.
    enumerate({7, 8, 9});
    {
        InSequence order;
        EXPECT_CALL(*overlay, dismiss());
        EXPECT_CALL(
            *activation,
            activate(AllOf(hasIdentifier(3), Field(&SwitchableWindow::windowTitle, "window 3"))));
    }
    coordinator.commitSession();
    EXPECT_FALSE(coordinator.isSessionActive());
    EXPECT_TRUE(coordinator.sessionWindows().empty());
    EXPECT_EQ(coordinator.selectedIndex(), 0);
    coordinator.commitSession();
    coordinator.cancelSession();
}

TEST_F(SwitcherSessionCoordinatorTest, CancelDismissesOnceAndNeverActivates) {
    enumerate({1, 2, 3});
    ASSERT_TRUE(coordinator.startSession(true));
    EXPECT_CALL(*overlay, dismiss()).Times(1);
    EXPECT_CALL(*overlay, updateSelection(_)).Times(0);
    coordinator.cancelSession();
    EXPECT_FALSE(coordinator.isSessionActive());
    EXPECT_TRUE(coordinator.sessionWindows().empty());
    EXPECT_EQ(coordinator.selectedIndex(), 0);
    coordinator.cancelSession();
    coordinator.commitSession();
    coordinator.moveSelection(std::ptrdiff_t{1});
    EXPECT_EQ(coordinator.selectedIndex(), 0);
}

}  // namespace
}  // namespace orvane
