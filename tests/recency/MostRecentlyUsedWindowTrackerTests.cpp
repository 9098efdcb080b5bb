#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <memory>
#include <ostream>
#include <sstream>
#include <string>
#include <vector>

#include "core/ScopedLogCapture.h"
#include "platform/simulated/SimulatedAccessibilityElement.h"
#include "recency/MostRecentlyUsedWindowTracker.h"
#include "support/SimulatedDesktopBuilders.h"

namespace orvane {

static std::ostream& operator<<(std::ostream& out, const Date& date) {
    return out << date.secondsSinceReferenceDate;
}

namespace {

using Ids = std::vector<WindowIdentifier>;
using Lines = std::vector<std::string>;

struct CountingFocusEventSource final : WindowFocusEventSource {
    std::weak_ptr<WindowFocusEventObserving> observer() const override { return {}; }
    void setObserver(std::weak_ptr<WindowFocusEventObserving>) override {}
    void startObserving() override { ++startCount; }
    void stopObserving() override { ++stopCount; }
    int startCount = 0, stopCount = 0;
};

// A fresh object per call, as the platform hands out: equal by number alone.
std::shared_ptr<const AccessibilityWindowElement> element(int number) {
    return std::make_shared<const AccessibilityWindowElement>(
        std::make_shared<SimulatedAccessibilityElement>(1, number));
}
int numberOf(const AccessibilityWindowElement& element) {
    return static_cast<int>(
        dynamic_cast<const SimulatedAccessibilityElement&>(*element.underlyingElement())
            .windowIdentifier());
}

// Its element carries the window's own number.
SwitchableWindow window(WindowIdentifier identifier, ProcessIdentifier process = 7) {
    SwitchableWindow result;
    result.windowIdentifier = identifier;
    result.owningProcessIdentifier = process;
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
class MostRecentlyUsedWindowTrackerTest : public ::testing::Test {
  protected:
    // All the tracker knows, maps in key order, empty parts left out: "stack window@moment |
    // pending element@moment/process | activated process@moment | absent window x count |
    // owners window:process | elements element:window".
    std::string state() const {
        std::ostringstream out;
        const auto part = [&](const char* name, const auto& pairs, char separator) {
            if (!pairs.empty()) {
                out << (out.tellp() > 0 ? " | " : "") << name;
            }
            for (const auto& [key, value] : pairs) {
                out << ' ' << key << separator << value;
            }
        };
        const auto sorted = [](const auto& map) { return std::map(map.begin(), map.end()); };
        const auto& timestamps = tracker.lastFocusedTimestampsByWindowIdentifier();
        EXPECT_EQ(timestamps.size(), stack().size()) << "a timestamp off the stack";
        std::vector<std::pair<WindowIdentifier, Date>> onStack;
        for (auto window : stack()) {
            onStack.emplace_back(window, timestamps.at(window));
        }
        std::vector<std::pair<int, std::string>> pending;
        for (const auto& each : tracker.pendingFocusObservations()) {
            std::ostringstream seen;
            seen << each.observedTimestamp << '/' << each.processIdentifier;
            pending.emplace_back(numberOf(each.windowElement), seen.str());
        }
        std::map<int, WindowIdentifier> elements;
        for (const auto& [known, window] : tracker.windowIdentifiersByAccessibilityElement()) {
            elements.emplace(numberOf(known), window);
        }
        part("stack", onStack, '@');
        part("pending", pending, '@');
        part("activated", sorted(tracker.applicationActivationTimestampsByProcessIdentifier()),
             '@');
        part("absent", sorted(tracker.consecutiveAbsenceCountsByWindowIdentifier()), 'x');
        part("owners", sorted(tracker.owningProcessIdentifiersByWindowIdentifier()), ':');
        part("elements", elements, ':');
        return out.str();
    }

    Ids order(const std::vector<SwitchableWindow>& given) {
        return windowIdentifiers(tracker.orderedByRecency(given));
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
    void happen(const WindowFocusEvent& event) { tracker.windowFocusEventDidOccur(event); }
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
    const Ids& stack() const { return tracker.recencyOrderedWindowIdentifiers(); }
    // The lines logged since the last call.
    Lines logLines() {
        auto lines = capture.sink().messages(LogCategory::recencytracking);
        capture.sink().clear();
        return lines;
    }

    ScopedLogCapture capture;
    std::shared_ptr<CountingFocusEventSource> source = std::make_shared<CountingFocusEventSource>();
    Date now{1000};
    MostRecentlyUsedWindowTracker tracker{source, [this] { return now; }};
};

TEST_F(MostRecentlyUsedWindowTrackerTest, FreshTrackerAnswersTheListAsGivenAndOnlyLearnsIt) {
    auto given = std::vector{window(3), window(1, 8), window(2)};
    given[1].lastFocusedTimestamp = Date{5};

    auto ordered = tracker.orderedByRecency(given);

    EXPECT_EQ(windowIdentifiers(ordered), (Ids{3, 1, 2}));
    EXPECT_EQ(ordered[0].lastFocusedTimestamp, Date::distantPast());
    EXPECT_EQ(ordered[1].lastFocusedTimestamp, Date{5});
    EXPECT_EQ(ordered[1].accessibilityElement, given[1].accessibilityElement);
    EXPECT_EQ(state(), "owners 1:8 2:7 3:7 | elements 1:1 2:2 3:3");
    EXPECT_TRUE(logLines().empty());
}

// An empty enumeration says more about the enumeration than about the windows.
TEST_F(MostRecentlyUsedWindowTrackerTest, EmptyEnumerationsResolvePendingFocusButAgeNothing) {
    learnAndFocus(windows({1, 2}), {2, 1});
    focus(3, 20);
    now = Date{30};
    tracker.recordImmediateFocus(window(3));

    for (int enumeration = 0; enumeration < 10; ++enumeration) {
        EXPECT_TRUE(tracker.orderedByRecency({}).empty());
    }

    EXPECT_EQ(state(), "stack 3@20 1@2 2@1 | owners 1:7 2:7 3:7 | elements 1:1 2:2 3:3");
    EXPECT_EQ(logLines(), (Lines{"Recorded immediate focus of window 3",
                                 "Resolved pending focus observation to window 3"}));
    EXPECT_EQ(order(windows({2, 1, 3})), (Ids{3, 1, 2}));
}

// Focus often lands on a window before any enumeration shows it; pending focus resolves oldest
// first, above the stack, with the moment of the focus.
TEST_F(MostRecentlyUsedWindowTrackerTest, FocusOnUnseenWindowsWaitsThenResolvesInFocusOrder) {
    learnAndFocus(windows({1}), {1});
    focus(2, 20);
    EXPECT_EQ(state(), "stack 1@1 | pending 2@20/7 | owners 1:7 | elements 1:1");
    focus(3, 30);
    // A refocus replaces the element's observation, at the end.
    focus(2, 40);
    EXPECT_EQ(state(), "stack 1@1 | pending 3@30/7 2@40/7 | owners 1:7 | elements 1:1");
    now = Date{50};

    auto ordered = tracker.orderedByRecency(windows({1, 2, 3}));

    EXPECT_EQ(windowIdentifiers(ordered), (Ids{2, 3, 1}));
    EXPECT_EQ(ordered[0].lastFocusedTimestamp, Date{40});
    EXPECT_EQ(state(), "stack 2@40 3@30 1@1 | owners 1:7 2:7 3:7 | elements 1:1 2:2 3:3");
    EXPECT_EQ(logLines(), (Lines{"Resolved pending focus observation to window 3",
                                 "Resolved pending focus observation to window 2"}));
}

// Window 100 is never focused: the evicted window 1 must land after it, not on the stack.
TEST_F(MostRecentlyUsedWindowTrackerTest, ThirtyThirdPendingFocusEvictsTheOldest) {
    Ids enumerated{100}, expected;
    for (int identifier = 1; identifier <= 33; ++identifier) {
        focus(identifier, identifier);
        enumerated.push_back(identifier);
        expected.insert(expected.begin(), identifier);
    }
    ASSERT_EQ(tracker.pendingFocusObservations().size(), 32u);
    EXPECT_EQ(tracker.pendingFocusObservations().front().windowElement, *element(2));
    expected.back() = 100;
    expected.push_back(1);

    auto ordered = tracker.orderedByRecency(windows(enumerated));

    EXPECT_EQ(windowIdentifiers(ordered), expected);
    EXPECT_EQ(ordered.back().lastFocusedTimestamp, Date::distantPast());
    EXPECT_EQ(stack().size(), 32u);
    auto lines = logLines();
    ASSERT_EQ(lines.size(), 32u);
    EXPECT_EQ(lines.front(), "Resolved pending focus observation to window 2");
    EXPECT_EQ(lines.back(), "Resolved pending focus observation to window 33");
}

// Window 3 is only ever enumerated: absence ages every learned window, not just the stack.
TEST_F(MostRecentlyUsedWindowTrackerTest, TenConsecutiveAbsencesForgetTheWindowEverywhere) {
    learnAndFocus(windows({1, 2, 3}), {1, 2});
    for (int enumeration = 0; enumeration < 9; ++enumeration) {
        EXPECT_EQ(order(windows({2})), (Ids{2}));
    }
    EXPECT_EQ(state(),
              "stack 2@2 1@1 | absent 1x9 3x9 | owners 1:7 2:7 3:7 | elements 1:1 2:2 3:3");
    EXPECT_EQ(order(windows({1, 2, 3})), (Ids{2, 1, 3}));
    for (int enumeration = 0; enumeration < 9; ++enumeration) {
        order(windows({2}));
    }
    EXPECT_EQ(state(),
              "stack 2@2 1@1 | absent 1x9 3x9 | owners 1:7 2:7 3:7 | elements 1:1 2:2 3:3");
    EXPECT_TRUE(logLines().empty());

    EXPECT_EQ(order(windows({2})), (Ids{2}));

    EXPECT_EQ(logLines(),
              (Lines{"Reconciliation purged 2 windows absent from 10 consecutive enumerations"}));
    EXPECT_EQ(state(), "stack 2@2 | owners 2:7 | elements 2:2");
    focus(1, 50);
    EXPECT_EQ(order(windows({2})), (Ids{2}));
    EXPECT_EQ(state(), "stack 2@2 | pending 1@50/7 | owners 2:7 | elements 2:2");
}

// Off the stack, windows of activated applications come latest activation first, each
// application's in enumeration order, then the rest; activation raises nothing on the stack.
TEST_F(MostRecentlyUsedWindowTrackerTest, ActivatedApplicationsFollowTheStack) {
    learnAndFocus({window(1, 10), window(2, 20)}, {1, 2});
    activate(10, 50);
    activate(40, 55);
    activate(30, 60);
    // A second activation counts from its own moment.
    activate(40, 65);

    auto ordered = tracker.orderedByRecency(
        {window(6, 50), window(5, 30), window(4, 40), window(2, 20), window(3, 30), window(1, 10)});

    EXPECT_EQ(windowIdentifiers(ordered), (Ids{2, 1, 4, 5, 3, 6}));
    EXPECT_EQ(ordered[2].lastFocusedTimestamp, Date::distantPast());
    EXPECT_EQ(state(),
              "stack 2@2 1@1 | activated 10@50 30@60 40@65 | owners 1:10 2:20 3:30 4:40 5:30 6:50 "
              "| elements 1:1 2:2 3:3 4:4 5:5 6:6");
}

TEST_F(MostRecentlyUsedWindowTrackerTest, TerminationForgetsTheProcessWindowsActivationAndFocus) {
    // Window 2 was never focused, yet it belongs to the process and goes with it.
    learnAndFocus({window(1, 42), window(2, 42), window(3)}, {1, 3});
    activate(42, 10);
    activate(30, 11);
    focus(9, 20, 42);
    focus(8, 30, 30);
    focus(7, 40, 50);

    happen(WindowFocusEvent::applicationTerminated(42));
    EXPECT_EQ(logLines(), (Lines{"Purged 2 windows of terminated process 42"}));
    EXPECT_EQ(state(),
              "stack 3@2 | pending 8@30/30 7@40/50 | activated 30@11 | owners 3:7 | "
              "elements 3:3");

    // A process without known windows still loses its activation and pending focus, silently.
    happen(WindowFocusEvent::applicationTerminated(30));
    EXPECT_EQ(state(), "stack 3@2 | pending 7@40/50 | owners 3:7 | elements 3:3");
    EXPECT_TRUE(logLines().empty());
}

TEST_F(MostRecentlyUsedWindowTrackerTest, DestructionForgetsAKnownWindowOrDropsPendingFocus) {
    learnAndFocus(windows({1, 2}), {1, 2});
    for (int absence = 0; absence < 5; ++absence) {
        order(windows({1}));
    }
    focus(5, 20);
    focus(6, 30);

    happen(WindowFocusEvent::windowDestroyed(element(5)));
    EXPECT_EQ(state(),
              "stack 2@2 1@1 | pending 6@30/7 | absent 2x5 | owners 1:7 2:7 | elements 1:1 2:2");
    EXPECT_TRUE(logLines().empty());

    happen(WindowFocusEvent::windowDestroyed(element(2)));
    EXPECT_EQ(state(), "stack 1@1 | pending 6@30/7 | owners 1:7 | elements 1:1");
    EXPECT_EQ(logLines(), (Lines{"Purged destroyed window 2 from the recency stack"}));
    focus(2, 40);
    EXPECT_EQ(state(), "stack 1@1 | pending 6@30/7 2@40/7 | owners 1:7 | elements 1:1");

    // The identifier returns: its earlier absences must not count against it.
    tracker.recordImmediateFocus(window(2));
    for (int absence = 0; absence < 9; ++absence) {
        order(windows({1}));
    }
    EXPECT_EQ(stack(), (Ids{2, 1}));
    order(windows({1}));
    EXPECT_EQ(stack(), (Ids{1}));
}

TEST_F(MostRecentlyUsedWindowTrackerTest, RecordingRaisesWithTheClocksTimeAndTeachesTheElement) {
    learnAndFocus(windows({1, 2}), {1, 2});
    now = Date{50};
    tracker.recordImmediateFocus(window(2));
    EXPECT_EQ(state(), "stack 2@50 1@1 | owners 1:7 2:7 | elements 1:1 2:2");
    EXPECT_EQ(logLines(), (Lines{"Recorded immediate focus of window 2"}));

    now = Date{60};
    tracker.recordImmediateFocus(window(5, 9));
    focus(5, 70, 9);
    EXPECT_EQ(state(), "stack 5@70 2@50 1@1 | owners 1:7 2:7 5:9 | elements 1:1 2:2 5:5");

    // Without an element the window is still ordered, its element never learned.
    auto bare = window(6);
    bare.accessibilityElement = nullptr;
    tracker.recordImmediateFocus(bare);
    EXPECT_EQ(order({window(1), bare}), (Ids{6, 1}));
    EXPECT_EQ(state(),
              "stack 6@70 5@70 2@50 1@1 | absent 2x1 5x1 | owners 1:7 2:7 5:9 6:7 | "
              "elements 1:1 2:2 5:5");
}

// Creation and minimizing are not uses of a window.
TEST_F(MostRecentlyUsedWindowTrackerTest, StartStopAndInertEventsLeaveTheOrderAlone) {
    learnAndFocus(windows({1, 2}), {2, 1});
    focus(9, 20);
    const auto before = state();
    now = Date{500};

    tracker.startTracking();
    EXPECT_EQ(std::pair(source->startCount, source->stopCount), std::pair(1, 0));
    tracker.stopTracking();
    EXPECT_EQ(std::pair(source->startCount, source->stopCount), std::pair(1, 1));
    EXPECT_EQ(logLines(), (Lines{"Started most-recently-used window tracking",
                                 "Stopped most-recently-used window tracking"}));
    for (const auto& event : {WindowFocusEvent::windowCreated(7, element(2)),
                              WindowFocusEvent::windowMiniaturized(7, element(2)),
                              WindowFocusEvent::windowDeminiaturized(7, element(2)),
                              WindowFocusEvent::focusedWindowChanged(7, nullptr),
                              WindowFocusEvent::windowDestroyed(nullptr)}) {
        SCOPED_TRACE(static_cast<int>(event.kind));
        happen(event);
        EXPECT_EQ(state(), before);
        EXPECT_TRUE(logLines().empty());
    }
    EXPECT_EQ(before, "stack 1@2 2@1 | pending 9@20/7 | owners 1:7 2:7 | elements 1:1 2:2");
}

// Each focus comes at t=0, before every earlier one: timestamps never decide the order.
TEST_F(MostRecentlyUsedWindowTrackerTest, FocusPutsTheWindowOnTopWithTheClocksTime) {
    learnAndFocus(windows({1, 2, 3, 4}), {1, 2, 3});
    const std::pair<int, std::string> steps[] = {
        {3, "3@0 2@2 1@1"}, {2, "2@0 3@0 1@1"}, {1, "1@0 2@0 3@0"}, {4, "4@0 1@0 2@0 3@0"}};
    for (const auto& [focused, expected] : steps) {
        focus(focused, 0);
        EXPECT_EQ(state(),
                  "stack " + expected + " | owners 1:7 2:7 3:7 4:7 | elements 1:1 2:2 3:3 4:4");
    }
}

}  // namespace
}  // namespace orvane
