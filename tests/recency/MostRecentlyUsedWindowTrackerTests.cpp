#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <unordered_set>
#include <vector>

#include "core/ScopedLogCapture.h"
#include "recency/MostRecentlyUsedWindowTracker.h"

namespace orvane {

static void PrintTo(const Date& date, std::ostream* stream) {
    *stream << "Date{" << date.secondsSinceReferenceDate << "}";
}

namespace {

using Ids = std::vector<WindowIdentifier>;
using Lines = std::vector<std::string>;

class CountingFocusEventSource final : public WindowFocusEventSource {
  public:
    std::weak_ptr<WindowFocusEventObserving> observer() const override { return observer_; }
    void setObserver(std::weak_ptr<WindowFocusEventObserving> observer) override {
        observer_ = std::move(observer);
    }
    void startObserving() override { ++startCount; }
    void stopObserving() override { ++stopCount; }

    int startCount = 0;
    int stopCount = 0;

  private:
    std::weak_ptr<WindowFocusEventObserving> observer_;
};

// Equal by number alone, so every wrapper made for the same number is the same window.
class FakeElement final : public AccessibilityElementObject {
  public:
    explicit FakeElement(int identifier) : identifier_(identifier) {}

    bool isEqualTo(const AccessibilityElementObject& other) const override {
        const auto* fake = dynamic_cast<const FakeElement*>(&other);
        return fake != nullptr && fake->identifier_ == identifier_;
    }
    std::size_t hashValue() const override { return std::hash<int>{}(identifier_); }

  private:
    int identifier_;
};

std::shared_ptr<const AccessibilityWindowElement> element(int identifier) {
    return std::make_shared<const AccessibilityWindowElement>(
        std::make_shared<FakeElement>(identifier));
}

// Its element carries the window's own number.
SwitchableWindow window(WindowIdentifier identifier, ProcessIdentifier process = 7) {
    SwitchableWindow result;
    result.windowIdentifier = identifier;
    result.owningProcessIdentifier = process;
    result.windowTitle = "window " + std::to_string(identifier);
    result.accessibilityElement = element(static_cast<int>(identifier));
    return result;
}

std::vector<SwitchableWindow> windows(const Ids& identifiers) {
    std::vector<SwitchableWindow> result;
    for (auto identifier : identifiers) {
        result.push_back(window(identifier));
    }
    return result;
}

Ids identifiers(const std::vector<SwitchableWindow>& ordered) {
    Ids result;
    for (const auto& each : ordered) {
        result.push_back(each.windowIdentifier);
    }
    return result;
}

class MostRecentlyUsedWindowTrackerTest : public ::testing::Test {
  protected:
    void TearDown() override {
        const auto& stack = tracker.recencyOrderedWindowIdentifiers();
        const auto& timestamps = tracker.lastFocusedTimestampsByWindowIdentifier();
        EXPECT_EQ(std::unordered_set<WindowIdentifier>(stack.begin(), stack.end()).size(),
                  stack.size())
            << "duplicates on the stack";
        EXPECT_EQ(timestamps.size(), stack.size()) << "a timestamp without a stack place";
        for (auto identifier : stack) {
            EXPECT_TRUE(timestamps.contains(identifier)) << identifier;
            EXPECT_TRUE(tracker.owningProcessIdentifiersByWindowIdentifier().contains(identifier))
                << identifier;
        }
        const auto& pending = tracker.pendingFocusObservations();
        EXPECT_LE(pending.size(), 32u);
        std::unordered_set<AccessibilityWindowElement> pendingElements;
        for (const auto& observation : pending) {
            EXPECT_TRUE(pendingElements.insert(observation.windowElement).second)
                << "two pending observations of one element";
        }
    }

    Ids order(const std::vector<SwitchableWindow>& given) {
        return identifiers(tracker.orderedByRecency(given));
    }
    void focus(int elementIdentifier, double at, ProcessIdentifier process = 7) {
        now = Date{at};
        tracker.windowFocusEventDidOccur(
            WindowFocusEvent::focusedWindowChanged(process, element(elementIdentifier)));
    }
    void activate(ProcessIdentifier process, double at) {
        now = Date{at};
        tracker.windowFocusEventDidOccur(WindowFocusEvent::applicationActivated(process));
    }
    // Learns the windows, then focuses them one second apart from t=1, so the last is on top;
    // each focus comes from the window's own process.
    void learnAndFocus(const std::vector<SwitchableWindow>& known, const Ids& oldestFirst) {
        tracker.orderedByRecency(known);
        double at = 1;
        for (auto identifier : oldestFirst) {
            auto focused = std::find(known.begin(), known.end(), window(identifier));
            focus(static_cast<int>(identifier), at++, focused->owningProcessIdentifier);
        }
        capture.sink().clear();
    }
    std::optional<Date> timestampOf(WindowIdentifier identifier) const {
        const auto& timestamps = tracker.lastFocusedTimestampsByWindowIdentifier();
        auto found = timestamps.find(identifier);
        return found == timestamps.end() ? std::nullopt : std::optional(found->second);
    }
    const Ids& stack() const { return tracker.recencyOrderedWindowIdentifiers(); }
    Lines logLines() { return capture.sink().messages(LogCategory::recencytracking); }

    ScopedLogCapture capture;
    std::shared_ptr<CountingFocusEventSource> source = std::make_shared<CountingFocusEventSource>();
    Date now{1000};
    MostRecentlyUsedWindowTracker tracker{source, [this] { return now; }};
};

TEST_F(MostRecentlyUsedWindowTrackerTest, FreshTrackerAnswersTheListAsGivenAndOnlyLearnsIt) {
    auto given = std::vector{window(3), window(1, 8), window(2)};
    given[1].lastFocusedTimestamp = Date{5};

    auto ordered = tracker.orderedByRecency(given);

    EXPECT_EQ(identifiers(ordered), (Ids{3, 1, 2}));
    EXPECT_EQ(ordered[0].lastFocusedTimestamp, Date::distantPast());
    EXPECT_EQ(ordered[1].lastFocusedTimestamp, Date{5});
    EXPECT_EQ(ordered[1].accessibilityElement, given[1].accessibilityElement);
    EXPECT_TRUE(stack().empty());
    EXPECT_EQ(tracker.owningProcessIdentifiersByWindowIdentifier().at(1), 8);
    EXPECT_EQ(tracker.windowIdentifiersByAccessibilityElement().at(*element(2)), 2u);
    EXPECT_TRUE(logLines().empty());
}

TEST_F(MostRecentlyUsedWindowTrackerTest, EmptyEnumerationStillResolvesPendingFocusButAgesNothing) {
    learnAndFocus(windows({1, 2}), {1});
    focus(3, 20);
    now = Date{30};
    tracker.recordImmediateFocus(window(3));

    EXPECT_TRUE(tracker.orderedByRecency({}).empty());

    EXPECT_EQ(stack(), (Ids{3, 1}));
    EXPECT_EQ(timestampOf(3), Date{20});
    EXPECT_TRUE(tracker.pendingFocusObservations().empty());
    EXPECT_TRUE(tracker.consecutiveAbsenceCountsByWindowIdentifier().empty());
    EXPECT_EQ(logLines(), (Lines{"Recorded immediate focus of window 3",
                                 "Resolved pending focus observation to window 3"}));
}

TEST_F(MostRecentlyUsedWindowTrackerTest, TenEmptyEnumerationsChangeNothing) {
    learnAndFocus(windows({1, 2}), {2, 1});
    for (int enumeration = 0; enumeration < 10; ++enumeration) {
        EXPECT_TRUE(tracker.orderedByRecency({}).empty());
    }
    EXPECT_EQ(stack(), (Ids{1, 2}));
    EXPECT_TRUE(tracker.consecutiveAbsenceCountsByWindowIdentifier().empty());
    EXPECT_EQ(tracker.owningProcessIdentifiersByWindowIdentifier().size(), 2u);
    EXPECT_EQ(tracker.windowIdentifiersByAccessibilityElement().size(), 2u);
    EXPECT_EQ(order(windows({2, 1})), (Ids{1, 2}));
    EXPECT_TRUE(logLines().empty());
}

TEST_F(MostRecentlyUsedWindowTrackerTest, FocusOnAnUnseenWindowWaitsThenResolvesWithItsOwnMoment) {
    learnAndFocus(windows({1}), {1});
    focus(2, 20);
    EXPECT_EQ(tracker.pendingFocusObservations().size(), 1u);
    EXPECT_EQ(stack(), (Ids{1}));
    EXPECT_FALSE(timestampOf(2));

    now = Date{30};
    auto ordered = tracker.orderedByRecency(windows({1, 2}));

    EXPECT_EQ(identifiers(ordered), (Ids{2, 1}));
    EXPECT_EQ(ordered[0].lastFocusedTimestamp, Date{20});
    EXPECT_EQ(ordered[1].lastFocusedTimestamp, Date{1});
    EXPECT_TRUE(tracker.pendingFocusObservations().empty());
    EXPECT_EQ(logLines(), (Lines{"Resolved pending focus observation to window 2"}));
}

TEST_F(MostRecentlyUsedWindowTrackerTest, PendingFocusResolvesOldestFirstAboveTheStack) {
    learnAndFocus(windows({1}), {1});
    focus(2, 20);
    focus(3, 30);

    EXPECT_EQ(order(windows({1, 2, 3})), (Ids{3, 2, 1}));
    EXPECT_EQ(logLines(), (Lines{"Resolved pending focus observation to window 2",
                                 "Resolved pending focus observation to window 3"}));
}

TEST_F(MostRecentlyUsedWindowTrackerTest, RefocusOfAnUnseenElementReplacesItsObservationAtTheEnd) {
    learnAndFocus(windows({1}), {1});
    focus(2, 20);
    focus(3, 30);
    focus(2, 40);

    const auto& pending = tracker.pendingFocusObservations();
    ASSERT_EQ(pending.size(), 2u);
    EXPECT_EQ(pending[0].windowElement, *element(3));
    EXPECT_EQ(pending[1].windowElement, *element(2));
    EXPECT_EQ(pending[1].observedTimestamp, Date{40});

    EXPECT_EQ(order(windows({1, 2, 3})), (Ids{2, 3, 1}));
    EXPECT_EQ(timestampOf(2), Date{40});
    EXPECT_EQ(logLines(), (Lines{"Resolved pending focus observation to window 3",
                                 "Resolved pending focus observation to window 2"}));
}

TEST_F(MostRecentlyUsedWindowTrackerTest, ThirtyThirdPendingFocusEvictsTheOldest) {
    for (int identifier = 1; identifier <= 33; ++identifier) {
        focus(identifier, identifier);
    }
    ASSERT_EQ(tracker.pendingFocusObservations().size(), 32u);
    EXPECT_EQ(tracker.pendingFocusObservations().front().windowElement, *element(2));

    // Window 100 is never focused: the evicted window 1 must land after it, not on the stack.
    Ids enumerated{100};
    Ids expected;
    for (WindowIdentifier identifier = 1; identifier <= 33; ++identifier) {
        enumerated.push_back(identifier);
        expected.insert(expected.begin(), identifier);
    }
    expected.pop_back();
    expected.insert(expected.end(), {100, 1});

    auto ordered = tracker.orderedByRecency(windows(enumerated));

    EXPECT_EQ(identifiers(ordered), expected);
    EXPECT_EQ(ordered.back().lastFocusedTimestamp, Date::distantPast());
    EXPECT_EQ(stack().size(), 32u);
    auto lines = logLines();
    ASSERT_EQ(lines.size(), 32u);
    EXPECT_EQ(lines.front(), "Resolved pending focus observation to window 2");
    EXPECT_EQ(lines.back(), "Resolved pending focus observation to window 33");
}

TEST_F(MostRecentlyUsedWindowTrackerTest,
       NineAbsencesKeepTheStackPlaceAndBeingSeenRestartsTheCount) {
    learnAndFocus(windows({1, 2}), {1, 2});
    for (int enumeration = 0; enumeration < 9; ++enumeration) {
        EXPECT_EQ(order(windows({2})), (Ids{2}));
    }
    EXPECT_EQ(tracker.consecutiveAbsenceCountsByWindowIdentifier().at(1), 9);
    EXPECT_EQ(stack(), (Ids{2, 1}));

    EXPECT_EQ(order(windows({1, 2})), (Ids{2, 1}));
    EXPECT_FALSE(tracker.consecutiveAbsenceCountsByWindowIdentifier().contains(1));

    order(windows({2}));
    EXPECT_EQ(tracker.consecutiveAbsenceCountsByWindowIdentifier().at(1), 1);
    for (int enumeration = 0; enumeration < 8; ++enumeration) {
        order(windows({2}));
    }
    EXPECT_EQ(stack(), (Ids{2, 1}));
    EXPECT_EQ(timestampOf(1), Date{1});
    EXPECT_TRUE(logLines().empty());
}

TEST_F(MostRecentlyUsedWindowTrackerTest, TenAbsencesForgetTheWindowEverywhere) {
    // Window 3 was only ever enumerated: absence ages every learned window, not just the stack.
    learnAndFocus(windows({1, 2, 3}), {1, 2});
    for (int enumeration = 0; enumeration < 9; ++enumeration) {
        order(windows({2}));
    }
    EXPECT_TRUE(logLines().empty());

    EXPECT_EQ(order(windows({2})), (Ids{2}));

    EXPECT_EQ(logLines(),
              (Lines{"Reconciliation purged 2 windows absent from 10 consecutive enumerations"}));
    EXPECT_EQ(stack(), (Ids{2}));
    EXPECT_FALSE(timestampOf(1));
    EXPECT_FALSE(tracker.owningProcessIdentifiersByWindowIdentifier().contains(1));
    EXPECT_FALSE(tracker.owningProcessIdentifiersByWindowIdentifier().contains(3));
    EXPECT_TRUE(tracker.consecutiveAbsenceCountsByWindowIdentifier().empty());
    EXPECT_EQ(tracker.windowIdentifiersByAccessibilityElement().size(), 1u);
    EXPECT_TRUE(tracker.windowIdentifiersByAccessibilityElement().contains(*element(2)));

    focus(1, 50);
    EXPECT_EQ(order(windows({2})), (Ids{2}));
    EXPECT_EQ(tracker.pendingFocusObservations().size(), 1u);
    EXPECT_EQ(stack(), (Ids{2}));
}

TEST_F(MostRecentlyUsedWindowTrackerTest, ActivationDoesNotRaiseAWindowLowerOnTheStack) {
    learnAndFocus({window(1, 10), window(2, 20)}, {1, 2});
    activate(10, 50);

    EXPECT_EQ(order({window(1, 10), window(2, 20)}), (Ids{2, 1}));
    EXPECT_EQ(timestampOf(1), Date{1});
    EXPECT_EQ(tracker.applicationActivationTimestampsByProcessIdentifier().at(10), Date{50});
}

TEST_F(MostRecentlyUsedWindowTrackerTest,
       ActivatedApplicationsFollowTheStackLatestActivationFirst) {
    learnAndFocus({window(1, 10)}, {1});
    activate(20, 50);
    activate(30, 60);

    auto ordered =
        tracker.orderedByRecency({window(4, 40), window(2, 20), window(3, 30), window(1, 10)});

    EXPECT_EQ(identifiers(ordered), (Ids{1, 3, 2, 4}));
    EXPECT_EQ(ordered[1].lastFocusedTimestamp, Date::distantPast());
}

TEST_F(MostRecentlyUsedWindowTrackerTest, UnfocusedWindowsOfOneApplicationKeepEnumerationOrder) {
    activate(30, 40);
    activate(20, 50);

    EXPECT_EQ(order({window(6, 20), window(5, 30), window(2, 20)}), (Ids{6, 2, 5}));
}

TEST_F(MostRecentlyUsedWindowTrackerTest, TerminationWithoutKnownWindowsDropsActivationAndPending) {
    activate(20, 10);
    focus(9, 20, 20);
    focus(8, 30, 30);

    tracker.windowFocusEventDidOccur(WindowFocusEvent::applicationTerminated(20));

    EXPECT_TRUE(tracker.applicationActivationTimestampsByProcessIdentifier().empty());
    ASSERT_EQ(tracker.pendingFocusObservations().size(), 1u);
    EXPECT_EQ(tracker.pendingFocusObservations().front().processIdentifier, 30);
    EXPECT_EQ(order({window(3, 30), window(2, 20)}), (Ids{3, 2}));
    EXPECT_TRUE(logLines().empty());
}

TEST_F(MostRecentlyUsedWindowTrackerTest, TerminationForgetsEveryWindowTheProcessOwned) {
    // Window 2 was never focused, yet it belongs to the process and goes with it.
    learnAndFocus({window(1, 42), window(2, 42), window(3)}, {1, 3});
    activate(42, 10);

    tracker.windowFocusEventDidOccur(WindowFocusEvent::applicationTerminated(42));

    EXPECT_EQ(logLines(), (Lines{"Purged 2 windows of terminated process 42"}));
    EXPECT_EQ(stack(), (Ids{3}));
    EXPECT_FALSE(timestampOf(1));
    EXPECT_EQ(tracker.owningProcessIdentifiersByWindowIdentifier().size(), 1u);
    EXPECT_EQ(tracker.windowIdentifiersByAccessibilityElement().size(), 1u);
    EXPECT_TRUE(tracker.windowIdentifiersByAccessibilityElement().contains(*element(3)));
    EXPECT_TRUE(tracker.applicationActivationTimestampsByProcessIdentifier().empty());
}

TEST_F(MostRecentlyUsedWindowTrackerTest, DestroyingAnUnseenElementOnlyDropsItsPendingFocus) {
    learnAndFocus(windows({1}), {1});
    focus(5, 20);
    focus(6, 30);

    tracker.windowFocusEventDidOccur(WindowFocusEvent::windowDestroyed(element(5)));

    ASSERT_EQ(tracker.pendingFocusObservations().size(), 1u);
    EXPECT_EQ(tracker.pendingFocusObservations().front().windowElement, *element(6));
    EXPECT_EQ(stack(), (Ids{1}));
    EXPECT_TRUE(logLines().empty());
    EXPECT_EQ(order(windows({1, 5, 6})), (Ids{6, 1, 5}));
}

TEST_F(MostRecentlyUsedWindowTrackerTest, DestroyingAKnownWindowForgetsIt) {
    learnAndFocus(windows({1, 2}), {1, 2});

    tracker.windowFocusEventDidOccur(WindowFocusEvent::windowDestroyed(element(2)));

    EXPECT_EQ(logLines(), (Lines{"Purged destroyed window 2 from the recency stack"}));
    EXPECT_EQ(stack(), (Ids{1}));
    EXPECT_FALSE(timestampOf(2));
    EXPECT_FALSE(tracker.owningProcessIdentifiersByWindowIdentifier().contains(2));
    EXPECT_FALSE(tracker.windowIdentifiersByAccessibilityElement().contains(*element(2)));
    focus(2, 40);
    EXPECT_EQ(tracker.pendingFocusObservations().size(), 1u);
}

TEST_F(MostRecentlyUsedWindowTrackerTest, AWindowForgottenByItsDestructionComesBackAsNew) {
    learnAndFocus(windows({1, 2}), {1, 2});
    for (int absence = 0; absence < 5; ++absence) {
        tracker.orderedByRecency(windows({1}));
    }
    tracker.windowFocusEventDidOccur(WindowFocusEvent::windowDestroyed(element(2)));
    EXPECT_FALSE(tracker.consecutiveAbsenceCountsByWindowIdentifier().contains(2));

    // The identifier returns: its earlier absences must not count against it.
    tracker.recordImmediateFocus(window(2));
    for (int absence = 0; absence < 9; ++absence) {
        tracker.orderedByRecency(windows({1}));
    }
    EXPECT_EQ(stack(), (Ids{2, 1}));
    tracker.orderedByRecency(windows({1}));
    EXPECT_EQ(stack(), (Ids{1}));
}

TEST_F(MostRecentlyUsedWindowTrackerTest, RecordingTheTopWindowRefreshesOnlyItsTimestamp) {
    learnAndFocus(windows({1, 2}), {1, 2});
    now = Date{50};

    tracker.recordImmediateFocus(window(2));

    EXPECT_EQ(stack(), (Ids{2, 1}));
    EXPECT_EQ(timestampOf(2), Date{50});
    EXPECT_EQ(timestampOf(1), Date{1});
    EXPECT_EQ(logLines(), (Lines{"Recorded immediate focus of window 2"}));
}

TEST_F(MostRecentlyUsedWindowTrackerTest, RecordingAnUnseenWindowTeachesItsElement) {
    now = Date{10};
    tracker.recordImmediateFocus(window(5, 9));
    EXPECT_EQ(stack(), (Ids{5}));
    EXPECT_EQ(tracker.owningProcessIdentifiersByWindowIdentifier().at(5), 9);

    focus(5, 20, 9);
    EXPECT_TRUE(tracker.pendingFocusObservations().empty());
    EXPECT_EQ(timestampOf(5), Date{20});
}

TEST_F(MostRecentlyUsedWindowTrackerTest, StartAndStopDriveTheSourceAndLogOnly) {
    learnAndFocus(windows({1, 2}), {1, 2});
    focus(9, 20);

    tracker.startTracking();
    EXPECT_EQ(source->startCount, 1);
    EXPECT_EQ(source->stopCount, 0);
    tracker.stopTracking();
    EXPECT_EQ(source->startCount, 1);
    EXPECT_EQ(source->stopCount, 1);

    EXPECT_EQ(logLines(), (Lines{"Started most-recently-used window tracking",
                                 "Stopped most-recently-used window tracking"}));
    EXPECT_EQ(stack(), (Ids{2, 1}));
    EXPECT_EQ(tracker.pendingFocusObservations().size(), 1u);
}

TEST_F(MostRecentlyUsedWindowTrackerTest, WindowWithoutAnElementIsOrderedButItsElementNotLearned) {
    auto bare = window(1);
    bare.accessibilityElement = nullptr;
    now = Date{10};
    tracker.recordImmediateFocus(bare);

    EXPECT_EQ(order({window(2), bare}), (Ids{1, 2}));
    EXPECT_EQ(tracker.windowIdentifiersByAccessibilityElement().size(), 1u);
    EXPECT_EQ(tracker.owningProcessIdentifiersByWindowIdentifier().at(1), 7);
}

struct InertEventCase {
    const char* name;
    WindowFocusEvent event;
};

class InertEventTest : public MostRecentlyUsedWindowTrackerTest,
                       public ::testing::WithParamInterface<InertEventCase> {};

TEST_P(InertEventTest, LeavesStackTimestampsPendingAndLogAlone) {
    learnAndFocus(windows({1, 2}), {2, 1});
    focus(9, 20);
    capture.sink().clear();
    now = Date{500};

    tracker.windowFocusEventDidOccur(GetParam().event);

    EXPECT_EQ(stack(), (Ids{1, 2}));
    EXPECT_EQ(timestampOf(1), Date{2});
    EXPECT_EQ(timestampOf(2), Date{1});
    ASSERT_EQ(tracker.pendingFocusObservations().size(), 1u);
    EXPECT_EQ(tracker.pendingFocusObservations().front().observedTimestamp, Date{20});
    EXPECT_EQ(tracker.windowIdentifiersByAccessibilityElement().size(), 2u);
    EXPECT_EQ(tracker.owningProcessIdentifiersByWindowIdentifier().size(), 2u);
    EXPECT_TRUE(tracker.applicationActivationTimestampsByProcessIdentifier().empty());
    EXPECT_TRUE(logLines().empty());
}

INSTANTIATE_TEST_SUITE_P(
    Kinds, InertEventTest,
    ::testing::Values(
        InertEventCase{"created", WindowFocusEvent::windowCreated(7, element(2))},
        InertEventCase{"miniaturized", WindowFocusEvent::windowMiniaturized(7, element(2))},
        InertEventCase{"deminiaturized", WindowFocusEvent::windowDeminiaturized(7, element(2))},
        InertEventCase{"focusWithoutElement", WindowFocusEvent::focusedWindowChanged(7, nullptr)},
        InertEventCase{"destroyedWithoutElement", WindowFocusEvent::windowDestroyed(nullptr)}),
    [](const auto& info) { return std::string(info.param.name); });

struct MoveToFrontCase {
    const char* name;
    WindowIdentifier focused;
    Ids expectedStack;
};

class MoveToFrontTest : public MostRecentlyUsedWindowTrackerTest,
                        public ::testing::WithParamInterface<MoveToFrontCase> {};

// The focus comes at t=0, before every earlier one: timestamps never decide the order.
TEST_P(MoveToFrontTest, FocusPutsTheWindowOnTopWithTheClocksTime) {
    learnAndFocus(windows({1, 2, 3, 4}), {1, 2, 3});

    focus(static_cast<int>(GetParam().focused), 0);

    EXPECT_EQ(stack(), GetParam().expectedStack);
    EXPECT_EQ(timestampOf(GetParam().focused), Date{0});
}

INSTANTIATE_TEST_SUITE_P(Positions, MoveToFrontTest,
                         ::testing::Values(MoveToFrontCase{"top", 3, {3, 2, 1}},
                                           MoveToFrontCase{"middle", 2, {2, 3, 1}},
                                           MoveToFrontCase{"bottom", 1, {1, 3, 2}},
                                           MoveToFrontCase{"learnedOnly", 4, {4, 3, 2, 1}}),
                         [](const auto& info) { return std::string(info.param.name); });

}  // namespace
}  // namespace orvane
