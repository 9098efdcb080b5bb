#include <gtest/gtest.h>

#include <optional>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "enumeration/WindowCorrelation.h"
#include "enumeration/WindowTitleComparison.h"

namespace orvane {
namespace {

using Snapshot = AccessibilityWindowSnapshot<int>;
using Snapshots = WindowCorrelation<int>::SnapshotsByProcessIdentifier;
using Entry = CoreGraphicsWindowListEntry;
using Reason = WindowExclusionReason;
using OptionalText = std::optional<std::string>;

constexpr ProcessIdentifier ownProcess = 7;
constexpr ProcessIdentifier editor = 100;
constexpr ProcessIdentifier browser = 200;
const Rect frameA{{100, 200}, {800, 600}};
const Rect frameB{{1000, 50}, {400, 300}};
const Rect frameC{{20, 20}, {640, 480}};

Entry entry(WindowIdentifier identifier, ProcessIdentifier process, Rect bounds,
            OptionalText title = std::nullopt) {
    return Entry{.windowIdentifier = identifier,
                 .owningProcessIdentifier = process,
                 .owningApplicationName = "App",
                 .windowTitle = std::move(title),
                 .bounds = bounds};
}

Snapshot snapshot(int handle, std::optional<Rect> frame, OptionalText title = std::nullopt,
                  OptionalText subrole = "AXStandardWindow") {
    return Snapshot{.elementHandle = handle,
                    .windowTitle = std::move(title),
                    .frame = frame,
                    .subrole = std::move(subrole),
                    .isMinimized = std::nullopt};
}

// The outcome of one entry: the handle it paired with, or why it was left out.
struct Outcome {
    WindowIdentifier window = 0;
    std::optional<int> handle;
    std::optional<Reason> reason;

    friend bool operator==(const Outcome&, const Outcome&) = default;
    friend void PrintTo(const Outcome& outcome, std::ostream* out) {
        *out << "window " << outcome.window;
        if (outcome.handle) {
            *out << " -> handle " << *outcome.handle;
        }
        if (outcome.reason) {
            *out << " excluded: " << description(*outcome.reason);
        }
    }
};

Outcome paired(WindowIdentifier window, int handle) {
    return {window, handle, std::nullopt};
}
Outcome excluded(WindowIdentifier window, Reason reason) {
    return {window, std::nullopt, reason};
}

// Correlated outcomes first, then excluded ones, each list in the order the result holds it.
std::vector<Outcome> outcomes(const WindowCorrelation<int>::Result& result) {
    std::vector<Outcome> all;
    for (const auto& window : result.correlatedWindows) {
        all.push_back(paired(window.windowListEntry.windowIdentifier,
                             window.accessibilitySnapshot.elementHandle));
    }
    for (const auto& entry : result.excludedEntries) {
        all.push_back(excluded(entry.windowListEntry.windowIdentifier, entry.exclusionReason));
    }
    return all;
}

std::vector<Outcome> correlate(const std::vector<Entry>& entries, const Snapshots& snapshots) {
    return outcomes(WindowCorrelation<int>(ownProcess).correlate(entries, snapshots));
}

TEST(WindowCorrelation, NoEntriesGiveEmptyLists) {
    const auto result = WindowCorrelation<int>(ownProcess)
                            .correlate({}, Snapshots{{editor, {snapshot(1, frameA, "Doc")}}});
    EXPECT_TRUE(result.correlatedWindows.empty());
    EXPECT_TRUE(result.excludedEntries.empty());
}

// Each entry has a snapshot at its frame, so it would pair unless a test before pairing settles it.
TEST(WindowCorrelation, ExclusionTestsBeforePairingApplyInOrder) {
    auto with = [](auto change) {
        Entry value = entry(1, editor, frameA, "Doc");
        change(value);
        return value;
    };
    struct Case {
        const char* what;
        Entry entry;
        std::optional<Rect> snapshotFrame;
        std::optional<Reason> reason;
    };
    const std::vector<Case> cases{
        {"own, layer 25, transparent and tiny", with([](Entry& e) {
             e.owningProcessIdentifier = ownProcess;
             e.windowLayer = 25;
             e.alphaValue = 0;
             e.bounds.size = {10, 10};
         }),
         Rect{{100, 200}, {10, 10}}, Reason::ownedByCurrentProcess},
        {"layer 25, transparent and tiny", with([](Entry& e) {
             e.windowLayer = 25;
             e.alphaValue = 0;
             e.bounds.size = {10, 10};
         }),
         Rect{{100, 200}, {10, 10}}, Reason::nonZeroWindowLayer},
        {"negative layer", with([](Entry& e) { e.windowLayer = -1; }), frameA,
         Reason::nonZeroWindowLayer},
        {"transparent and tiny", with([](Entry& e) {
             e.alphaValue = 0;
             e.bounds.size = {10, 10};
         }),
         Rect{{100, 200}, {10, 10}}, Reason::fullyTransparent},
        {"alpha 0.01 passes", with([](Entry& e) { e.alphaValue = 0.01; }), frameA, std::nullopt},
        {"exactly 40 x 40 passes", with([](Entry& e) {
             e.bounds.size = {40, 40};
         }),
         Rect{{100, 200}, {40, 40}}, std::nullopt},
        {"39.9 wide", with([](Entry& e) {
             e.bounds.size = {39.9, 800};
         }),
         Rect{{100, 200}, {39.9, 800}}, Reason::belowMinimumSize},
        {"39.9 high", with([](Entry& e) {
             e.bounds.size = {800, 39.9};
         }),
         Rect{{100, 200}, {800, 39.9}}, Reason::belowMinimumSize},
        {"39 wide bounds, 41 wide frame", with([](Entry& e) {
             e.bounds.size = {39, 800};
         }),
         Rect{{100, 200}, {41, 800}}, Reason::belowMinimumSize},
        {"41 wide bounds, 39 wide frame", with([](Entry& e) {
             e.bounds.size = {41, 800};
         }),
         Rect{{100, 200}, {39, 800}}, std::nullopt},
        {"off the on-screen list is not a test",
         with([](Entry& e) { e.isPresentInOnScreenList = false; }), frameA, std::nullopt},
    };
    for (const auto& testCase : cases) {
        SCOPED_TRACE(testCase.what);
        const Snapshots snapshots{
            {testCase.entry.owningProcessIdentifier, {snapshot(9, testCase.snapshotFrame, "Doc")}}};
        const auto result =
            WindowCorrelation<int>(ownProcess).correlate({testCase.entry}, snapshots);
        if (testCase.reason) {
            EXPECT_TRUE(result.correlatedWindows.empty());
            const std::vector<ExcludedWindowListEntry> expected{{testCase.entry, *testCase.reason}};
            EXPECT_EQ(result.excludedEntries, expected);
        } else {
            EXPECT_EQ(outcomes(result), std::vector<Outcome>{paired(1, 9)});
        }
    }
}

TEST(WindowCorrelation, FrameToleranceIsInclusiveOnEachComponentSeparately) {
    struct Component {
        const char* name;
        void (*shift)(Rect&, double);
    };
    const std::vector<Component> components{
        {"x", [](Rect& r, double d) { r.origin.x += d; }},
        {"y", [](Rect& r, double d) { r.origin.y += d; }},
        {"width", [](Rect& r, double d) { r.size.width += d; }},
        {"height", [](Rect& r, double d) { r.size.height += d; }},
    };
    const std::vector<std::pair<double, bool>> deltas{
        {2.0, true}, {-2.0, true}, {2.0001, false}, {-2.0001, false}};
    for (const auto& component : components) {
        for (const auto& [delta, pairs] : deltas) {
            SCOPED_TRACE(std::string(component.name) + " off by " + std::to_string(delta));
            Rect frame = frameA;
            component.shift(frame, delta);
            const auto expected =
                pairs ? paired(1, 5) : excluded(1, Reason::untitledWithoutAccessibilityPairing);
            EXPECT_EQ(correlate({entry(1, editor, frameA)}, {{editor, {snapshot(5, frame)}}}),
                      std::vector<Outcome>{expected});
        }
    }
    const Rect allOffByTwo{{102, 198}, {802, 598}};
    EXPECT_EQ(correlate({entry(1, editor, frameA)}, {{editor, {snapshot(5, allOffByTwo)}}}),
              std::vector<Outcome>{paired(1, 5)});
}

// The window list and the Accessibility tree often disagree on titles, e.g. a document's name
// against its path; a lone frame match must not be second-guessed.
TEST(WindowCorrelation, LoneFrameCandidatePairsWhateverItsTitle) {
    const Snapshots snapshots{
        {editor, {snapshot(1, frameB, "Inbox"), snapshot(2, frameA, "Drafts — Mail")}}};
    const auto result =
        WindowCorrelation<int>(ownProcess)
            .correlate({entry(10, editor, frameA, "Inbox"), entry(11, editor, frameC, "Inbox")},
                       snapshots);
    EXPECT_EQ(outcomes(result), (std::vector<Outcome>{paired(10, 2), paired(11, 1)}));
    ASSERT_EQ(result.correlatedWindows.size(), 2u);
    EXPECT_EQ(result.correlatedWindows[0].resolvedWindowTitle, "Inbox");
}

TEST(WindowCorrelation, SameFrameCandidatesAreToldApartByTitleWhateverTheirOrder) {
    const std::vector<Entry> entries{entry(10, editor, frameA, "Beta"),
                                     entry(11, editor, frameA, "Alpha")};
    const std::vector<Outcome> expected{paired(10, 2), paired(11, 1)};
    EXPECT_EQ(
        correlate(entries, {{editor, {snapshot(1, frameA, "Alpha"), snapshot(2, frameA, "Beta")}}}),
        expected);
    EXPECT_EQ(
        correlate(entries, {{editor, {snapshot(2, frameA, "Beta"), snapshot(1, frameA, "Alpha")}}}),
        expected);
    // Tolerance still decides who is a candidate: a title match outside it does not count.
    EXPECT_EQ(correlate({entry(10, editor, frameA, "Beta")},
                        {{editor,
                          {snapshot(1, frameA, "Alpha"), snapshot(3, frameC, "Beta"),
                           snapshot(2, frameA, "Gamma")}}}),
              std::vector<Outcome>{paired(10, 1)});
    // Of several candidates with the title, the first in list order.
    EXPECT_EQ(correlate({entry(10, editor, frameA, "Beta"), entry(11, editor, frameA, "Beta")},
                        {{editor,
                          {snapshot(1, frameA, "Alpha"), snapshot(2, frameA, "Beta"),
                           snapshot(3, frameA, "Beta"), snapshot(4, frameA, "Beta")}}}),
              (std::vector<Outcome>{paired(10, 2), paired(11, 3)}));
}

TEST(WindowCorrelation, SameFrameCandidatesWithoutDistinguishingTitlesPairInListOrder) {
    struct Case {
        const char* what;
        OptionalText entryTitle;
        OptionalText snapshotTitle;
    };
    const std::vector<Case> cases{
        {"no titles anywhere", std::nullopt, std::nullopt},
        {"equal titles", "Untitled", "Untitled"},
        {"entry title matches no snapshot", "Report", std::nullopt},
        {"empty entry title", "", "Report"},
    };
    for (const auto& testCase : cases) {
        SCOPED_TRACE(testCase.what);
        const Snapshots snapshots{{editor,
                                   {snapshot(1, frameA, testCase.snapshotTitle),
                                    snapshot(2, frameA, testCase.snapshotTitle)}}};
        EXPECT_EQ(correlate({entry(10, editor, frameA, testCase.entryTitle),
                             entry(11, editor, frameA, testCase.entryTitle)},
                            snapshots),
                  (std::vector<Outcome>{paired(10, 1), paired(11, 2)}));
    }
    EXPECT_EQ(
        correlate({entry(10, editor, frameA), entry(11, editor, frameA), entry(12, editor, frameA)},
                  {{editor, {snapshot(1, frameA), snapshot(2, frameA)}}}),
        (std::vector<Outcome>{paired(10, 1), paired(11, 2),
                              excluded(12, Reason::untitledWithoutAccessibilityPairing)}));
}

// While a window is being moved or resized the two views disagree on its frame; its title may
// still pair it, with any unconsumed snapshot of the process, framed or not.
TEST(WindowCorrelation, WithoutFrameCandidateATitledEntryPairsByTitle) {
    const Snapshots snapshots{{editor,
                               {snapshot(1, frameB, "Notes"), snapshot(2, std::nullopt, "Report"),
                                snapshot(3, frameC, "Report"), snapshot(4, frameA, "Plan")}}};
    EXPECT_EQ(correlate({entry(10, editor, frameA, "Report"), entry(11, editor, frameA, "Report"),
                         entry(12, editor, {{0, 0}, {90, 90}}, "Report"),
                         entry(13, editor, {{0, 0}, {90, 90}}, "Report"),
                         entry(14, editor, {{0, 0}, {90, 90}}, "Notes"),
                         entry(15, editor, {{0, 0}, {90, 90}}, "Plan"),
                         entry(16, editor, {{0, 0}, {90, 90}})},
                        snapshots),
              (std::vector<Outcome>{paired(10, 4), paired(11, 2), paired(12, 3), paired(14, 1),
                                    excluded(13, Reason::missingAccessibilityPairing),
                                    excluded(15, Reason::missingAccessibilityPairing),
                                    excluded(16, Reason::untitledWithoutAccessibilityPairing)}));
}

TEST(WindowCorrelation, SnapshotWithoutFramePairsOnlyByTitle) {
    const Snapshots snapshots{{editor, {snapshot(1, std::nullopt, "Report")}}};
    EXPECT_EQ(correlate({entry(10, editor, frameA), entry(11, editor, frameA, ""),
                         entry(12, editor, frameA, "Other"), entry(13, editor, frameA, "Report")},
                        snapshots),
              (std::vector<Outcome>{paired(13, 1),
                                    excluded(10, Reason::untitledWithoutAccessibilityPairing),
                                    excluded(11, Reason::untitledWithoutAccessibilityPairing),
                                    excluded(12, Reason::missingAccessibilityPairing)}));
    // An empty title is no title: it never pairs with an empty snapshot title by itself.
    EXPECT_EQ(correlate({entry(10, editor, frameA, "")},
                        {{editor, {snapshot(1, std::nullopt, ""), snapshot(2, frameB, "")}}}),
              std::vector<Outcome>{excluded(10, Reason::untitledWithoutAccessibilityPairing)});
}

TEST(WindowCorrelation, SubroleDecidesAfterPairing) {
    const std::vector<std::pair<OptionalText, bool>> cases{
        {std::nullopt, true}, {"AXStandardWindow", true},
        {"AXDialog", false},  {"AXFloatingWindow", false},
        {"", false},          {"axstandardwindow", false},
    };
    for (const auto& [subrole, switchable] : cases) {
        SCOPED_TRACE(subrole.value_or("(absent)"));
        const auto expected = switchable ? paired(10, 1) : excluded(10, Reason::nonStandardSubrole);
        EXPECT_EQ(correlate({entry(10, editor, frameA, "Doc")},
                            {{editor, {snapshot(1, frameA, "Doc", subrole)}}}),
                  std::vector<Outcome>{expected});
    }
}

// A panel claimed by one entry must not be handed to the next entry at the same frame.
TEST(WindowCorrelation, NonStandardSubroleStillConsumesTheSnapshot) {
    const Snapshots snapshots{
        {editor, {snapshot(1, frameA, std::nullopt, "AXSystemDialog"), snapshot(2, frameA)}}};
    EXPECT_EQ(
        correlate({entry(10, editor, frameA), entry(11, editor, frameA), entry(12, editor, frameA)},
                  snapshots),
        (std::vector<Outcome>{paired(11, 2), excluded(10, Reason::nonStandardSubrole),
                              excluded(12, Reason::untitledWithoutAccessibilityPairing)}));
    EXPECT_EQ(correlate({entry(10, editor, frameA, "Find"), entry(11, editor, frameB, "Find")},
                        {{editor, {snapshot(1, frameA, "Find", "AXDialog")}}}),
              (std::vector<Outcome>{excluded(10, Reason::nonStandardSubrole),
                                    excluded(11, Reason::missingAccessibilityPairing)}));
}

// Pairing never crosses processes, even when another process has a perfect match.
TEST(WindowCorrelation, ProcessWithoutSnapshotsPairsNothing) {
    const std::vector<Entry> entries{entry(10, editor, frameA, "Doc"), entry(11, editor, frameA),
                                     entry(12, editor, frameA, "")};
    const std::vector<Outcome> expected{excluded(10, Reason::missingAccessibilityPairing),
                                        excluded(11, Reason::untitledWithoutAccessibilityPairing),
                                        excluded(12, Reason::untitledWithoutAccessibilityPairing)};
    EXPECT_EQ(correlate(entries, {}), expected);
    EXPECT_EQ(correlate(entries, {{editor, {}}}), expected);
    EXPECT_EQ(correlate(entries,
                        {{browser,
                          {snapshot(1, frameA, "Doc"), snapshot(2, frameA), snapshot(3, frameA)}}}),
              expected);
}

TEST(WindowCorrelation, CorrelatedWindowResolvesTitleAndMinimizedState) {
    struct Case {
        OptionalText entryTitle;
        OptionalText snapshotTitle;
        std::optional<bool> snapshotMinimized;
        std::string resolvedTitle;
        bool isMinimized;
    };
    const std::vector<Case> cases{
        {"List title", "AX title", std::nullopt, "List title", false},
        {std::nullopt, "AX title", true, "AX title", true},
        {"", "AX title", false, "AX title", false},
        {"", "", true, "", true},
        {std::nullopt, std::nullopt, std::nullopt, "", false},
        {"List title", std::nullopt, false, "List title", false},
    };
    for (const auto& testCase : cases) {
        SCOPED_TRACE(testCase.resolvedTitle);
        const Entry window = entry(10, editor, frameA, testCase.entryTitle);
        Snapshot accessible = snapshot(1, frameA, testCase.snapshotTitle);
        accessible.isMinimized = testCase.snapshotMinimized;
        const auto result =
            WindowCorrelation<int>(ownProcess).correlate({window}, {{editor, {accessible}}});
        EXPECT_EQ(result.correlatedWindows,
                  (std::vector<CorrelatedWindow<int>>{
                      {window, accessible, testCase.resolvedTitle, testCase.isMinimized}}));
        EXPECT_TRUE(result.excludedEntries.empty());
    }
}

TEST(WindowCorrelation, TitlesMatchUpToCanonicalEquivalenceOnly) {
    const std::string composed = "Caf\u00E9";
    const std::string decomposed = "Cafe\u0301";
    // Two frame candidates, so the title decides.
    EXPECT_EQ(correlate({entry(10, editor, frameA, composed)},
                        {{editor, {snapshot(1, frameA, "Menu"), snapshot(2, frameA, decomposed)}}}),
              std::vector<Outcome>{paired(10, 2)});
    EXPECT_EQ(correlate({entry(10, editor, frameA, decomposed)},
                        {{editor, {snapshot(1, frameB, composed)}}}),
              std::vector<Outcome>{paired(10, 1)});
    EXPECT_EQ(correlate({entry(10, editor, frameA, "Notes")},
                        {{editor, {snapshot(1, frameA, "Menu"), snapshot(2, frameA, "notes")}}}),
              std::vector<Outcome>{paired(10, 1)});
    EXPECT_EQ(
        correlate({entry(10, editor, frameA, "Notes")}, {{editor, {snapshot(1, frameB, "notes")}}}),
        std::vector<Outcome>{excluded(10, Reason::missingAccessibilityPairing)});
}

TEST(WindowTitleComparison, ComparesByCanonicalEquivalence) {
    struct Case {
        const char* what;
        std::string left;
        std::string right;
        bool equivalent;
    };
    const std::vector<Case> cases{
        {"identical ASCII", "Inbox", "Inbox", true},
        {"both empty", "", "", true},
        {"case differs", "Notes", "notes", false},
        {"whitespace differs", "a b", "a  b", false},
        {"trailing space", "Doc", "Doc ", false},
        {"precomposed against combining accent", "\u00E9t\u00E9", "e\u0301te\u0301", true},
        {"angstrom sign against ring A", "\u212B", "\u00C5", true},
        {"combining marks in either canonical order", "e\u0301\u0323", "e\u0323\u0301", true},
        {"Hangul syllable against its jamo", "\uD55C", "\u1112\u1161\u11AB", true},
        {"two distinct composed accents", "\u00E9", "\u00E8", false},
        {"decomposed forms of distinct letters", "e\u0301", "e\u0300", false},
        {"compatibility ligature is not canonical", "\uFB01le", "file", false},
        {"accent on a different letter", "Cafe\u0301", "Caf\u00E9s", false},
    };
    for (const auto& testCase : cases) {
        SCOPED_TRACE(testCase.what);
        EXPECT_EQ(WindowTitleComparison::areCanonicallyEquivalent(testCase.left, testCase.right),
                  testCase.equivalent);
        EXPECT_EQ(WindowTitleComparison::areCanonicallyEquivalent(testCase.right, testCase.left),
                  testCase.equivalent);
    }
}

TEST(WindowCorrelation, EveryEntryLandsOnceInEntryOrderAndCallsAreIndependent) {
    const Snapshots snapshots{{editor, {snapshot(1, frameA, "One"), snapshot(2, frameB, "Two")}},
                              {browser, {snapshot(3, frameC, "Tab"), snapshot(4, frameA)}}};
    Entry layered = entry(5, browser, frameA);
    layered.windowLayer = 3;
    const std::vector<Entry> entries{
        entry(9, browser, frameC, "Tab"),
        entry(8, ownProcess, frameA),
        entry(7, editor, frameB, "Two"),
        entry(6, editor, frameC, "Three"),
        layered,
        entry(4, browser, frameA),
        entry(3, editor, frameA, "One"),
        entry(2, browser, frameA),
    };
    const std::vector<Outcome> expected{
        paired(9, 3),
        paired(7, 2),
        paired(4, 4),
        paired(3, 1),
        excluded(8, Reason::ownedByCurrentProcess),
        excluded(6, Reason::missingAccessibilityPairing),
        excluded(5, Reason::nonZeroWindowLayer),
        excluded(2, Reason::untitledWithoutAccessibilityPairing),
    };
    const WindowCorrelation<int> correlation(ownProcess);
    // A second call must find every snapshot unconsumed again.
    EXPECT_EQ(outcomes(correlation.correlate(entries, snapshots)), expected);
    EXPECT_EQ(outcomes(correlation.correlate(entries, snapshots)), expected);
}

}  // namespace
}  // namespace orvane
