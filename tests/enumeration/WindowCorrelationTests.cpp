#include <gtest/gtest.h>

#include <map>
#include <optional>
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

// The result as "10:2 11:1 | 12 untitled 13 unpaired": each correlated entry with the handle it
// paired with, then each excluded one with its reason, in the order the result holds them.
std::string outcomes(const WindowCorrelation<int>::Result& result) {
    const std::map<Reason, const char*> reasons{
        {Reason::ownedByCurrentProcess, "own"},
        {Reason::nonZeroWindowLayer, "layer"},
        {Reason::fullyTransparent, "transparent"},
        {Reason::belowMinimumSize, "small"},
        {Reason::untitledWithoutAccessibilityPairing, "untitled"},
        {Reason::missingAccessibilityPairing, "unpaired"},
        {Reason::nonStandardSubrole, "subrole"}};
    std::string text;
    for (const auto& window : result.correlatedWindows) {
        text += (text.empty() ? "" : " ") +
                std::to_string(window.windowListEntry.windowIdentifier) + ":" +
                std::to_string(window.accessibilitySnapshot.elementHandle);
    }
    text += " |";
    for (const auto& entry : result.excludedEntries) {
        text += " " + std::to_string(entry.windowListEntry.windowIdentifier) + " " +
                reasons.at(entry.exclusionReason);
    }
    return text;
}

std::string correlate(const std::vector<Entry>& entries, const Snapshots& snapshots) {
    return outcomes(WindowCorrelation<int>(ownProcess).correlate(entries, snapshots));
}

// Each entry has a snapshot at its frame, so it would pair unless a test before pairing settles it.
TEST(WindowCorrelation, ExclusionTestsBeforePairingApplyInOrder) {
    struct Case {
        const char* what;
        ProcessIdentifier process;
        std::ptrdiff_t layer;
        double alpha;
        Size bounds, snapshotSize;
        std::optional<Reason> reason;
        bool onScreenList = true;
    };
    const Size tiny{10, 10}, large = frameA.size;
    const Case cases[] = {
        {"own, layered, transparent, tiny", ownProcess, 25, 0, tiny, tiny,
         Reason::ownedByCurrentProcess},
        {"layered, transparent, tiny", editor, 25, 0, tiny, tiny, Reason::nonZeroWindowLayer},
        {"negative layer", editor, -1, 1, large, large, Reason::nonZeroWindowLayer},
        {"transparent, tiny", editor, 0, 0, tiny, tiny, Reason::fullyTransparent},
        {"alpha 0.01 passes", editor, 0, 0.01, large, large, std::nullopt},
        {"exactly 40 x 40 passes", editor, 0, 1, {40, 40}, {40, 40}, std::nullopt},
        {"39.9 wide", editor, 0, 1, {39.9, 800}, {39.9, 800}, Reason::belowMinimumSize},
        {"39.9 high", editor, 0, 1, {800, 39.9}, {800, 39.9}, Reason::belowMinimumSize},
        {"39 wide, frame 41", editor, 0, 1, {39, 800}, {41, 800}, Reason::belowMinimumSize},
        {"41 wide, frame 39", editor, 0, 1, {41, 800}, {39, 800}, std::nullopt},
        {"off the on-screen list is no test", editor, 0, 1, large, large, std::nullopt, false},
    };
    for (const auto& testCase : cases) {
        SCOPED_TRACE(testCase.what);
        Entry tested = entry(1, testCase.process, {frameA.origin, testCase.bounds}, "Doc");
        tested.windowLayer = testCase.layer;
        tested.alphaValue = testCase.alpha;
        tested.isPresentInOnScreenList = testCase.onScreenList;
        const Snapshots snapshots{
            {testCase.process, {snapshot(9, Rect{frameA.origin, testCase.snapshotSize}, "Doc")}}};
        const auto result = WindowCorrelation<int>(ownProcess).correlate({tested}, snapshots);
        if (testCase.reason) {
            EXPECT_TRUE(result.correlatedWindows.empty());
            EXPECT_EQ(result.excludedEntries,
                      (std::vector<ExcludedWindowListEntry>{{tested, *testCase.reason}}));
        } else {
            EXPECT_EQ(outcomes(result), "1:9 |");
        }
    }
}

TEST(WindowCorrelation, FrameToleranceIsInclusiveOnEachComponentSeparately) {
    struct Component {
        const char* name;
        void (*shift)(Rect&, double);
    };
    const Component components[] = {
        {"x", [](Rect& r, double d) { r.origin.x += d; }},
        {"y", [](Rect& r, double d) { r.origin.y += d; }},
        {"width", [](Rect& r, double d) { r.size.width += d; }},
        {"height", [](Rect& r, double d) { r.size.height += d; }},
    };
    for (const auto& component : components) {
        for (const auto& [delta, pairs] :
             {std::pair{2.0, true}, {-2.0, true}, {2.0001, false}, {-2.0001, false}}) {
            SCOPED_TRACE(std::string(component.name) + " off by " + std::to_string(delta));
            Rect frame = frameA;
            component.shift(frame, delta);
            EXPECT_EQ(correlate({entry(1, editor, frameA)}, {{editor, {snapshot(5, frame)}}}),
                      pairs ? "1:5 |" : " | 1 untitled");
        }
    }
    const Rect allOffByTwo{{102, 198}, {802, 598}};
    EXPECT_EQ(correlate({entry(1, editor, frameA)}, {{editor, {snapshot(5, allOffByTwo)}}}),
              "1:5 |");
}

// A lone frame candidate pairs whatever its title: the two views often disagree on titles, e.g. a
// document's name against its path. Of several candidates the title decides, up to canonical
// equivalence, else list order. Without a frame candidate (a window being moved) a titled entry
// pairs with any unconsumed snapshot of the title; an empty title is no title. Pairing never
// crosses processes.
TEST(WindowCorrelation, PairsByFrameThenByTitleWithinTheProcess) {
    struct Case {
        const char* what;
        std::vector<Entry> entries;
        Snapshots snapshots;
        std::string expected;
    };
    const Snapshot alpha = snapshot(1, frameA, "Alpha"), beta = snapshot(2, frameA, "Beta");
    const std::vector<Entry> twoAtA{entry(10, editor, frameA, "Beta"),
                                    entry(11, editor, frameA, "Alpha")};
    const std::vector<Entry> unpairable{entry(10, editor, frameA, "Doc"), entry(11, editor, frameA),
                                        entry(12, editor, frameA, "")};
    const std::string composed = "Caf\u00E9", decomposed = "Cafe\u0301";
    const Rect moving{{0, 0}, {90, 90}};
    const std::vector<Case> cases{
        {"lone frame candidate",
         {entry(10, editor, frameA, "Inbox"), entry(11, editor, frameC, "Inbox")},
         {{editor, {snapshot(1, frameB, "Inbox"), snapshot(2, frameA, "Drafts — Mail")}}},
         "10:2 11:1 |"},
        {"titles decide", twoAtA, {{editor, {alpha, beta}}}, "10:2 11:1 |"},
        {"titles decide in any order", twoAtA, {{editor, {beta, alpha}}}, "10:2 11:1 |"},
        {"a title match outside the tolerance is no candidate",
         {entry(10, editor, frameA, "Beta")},
         {{editor, {alpha, snapshot(3, frameC, "Beta"), snapshot(2, frameA, "Gamma")}}},
         "10:1 |"},
        {"first candidate with the title",
         {entry(10, editor, frameA, "Beta"), entry(11, editor, frameA, "Beta")},
         {{editor, {alpha, beta, snapshot(3, frameA, "Beta"), snapshot(4, frameA, "Beta")}}},
         "10:2 11:3 |"},
        {"no titles anywhere",
         {entry(10, editor, frameA), entry(11, editor, frameA), entry(12, editor, frameA)},
         {{editor, {snapshot(1, frameA), snapshot(2, frameA)}}},
         "10:1 11:2 | 12 untitled"},
        {"equal titles",
         {entry(10, editor, frameA, "Untitled"), entry(11, editor, frameA, "Untitled")},
         {{editor, {snapshot(1, frameA, "Untitled"), snapshot(2, frameA, "Untitled")}}},
         "10:1 11:2 |"},
        {"entry title matches no snapshot",
         {entry(10, editor, frameA, "Report"), entry(11, editor, frameA, "Report")},
         {{editor, {snapshot(1, frameA), snapshot(2, frameA)}}},
         "10:1 11:2 |"},
        {"empty entry title, even against an empty one",
         {entry(10, editor, frameA, ""), entry(11, editor, frameA, "")},
         {{editor, {snapshot(1, frameA, "Report"), snapshot(2, frameA, "")}}},
         "10:1 11:2 |"},
        {"title without frame candidate",
         {entry(10, editor, frameA, "Report"), entry(11, editor, frameA, "Report"),
          entry(12, editor, moving, "Report"), entry(13, editor, moving, "Report"),
          entry(14, editor, moving, "Notes"), entry(15, editor, moving, "Plan"),
          entry(16, editor, moving), entry(17, editor, moving, "")},
         {{editor,
           {snapshot(1, frameB, "Notes"), snapshot(2, std::nullopt, "Report"),
            snapshot(3, frameC, "Report"), snapshot(4, frameA, "Plan"),
            snapshot(5, std::nullopt, ""), snapshot(6, frameB, "")}}},
         "10:4 11:2 12:3 14:1 | 13 unpaired 15 unpaired 16 untitled 17 untitled"},
        {"composed title against decomposed candidate",
         {entry(10, editor, frameA, composed)},
         {{editor, {snapshot(1, frameA, "Menu"), snapshot(2, frameA, decomposed)}}},
         "10:2 |"},
        {"decomposed title without frame candidate",
         {entry(10, editor, frameA, decomposed)},
         {{editor, {snapshot(1, frameB, composed)}}},
         "10:1 |"},
        {"case differs among candidates",
         {entry(10, editor, frameA, "Notes")},
         {{editor, {snapshot(1, frameA, "Menu"), snapshot(2, frameA, "notes")}}},
         "10:1 |"},
        {"case differs without frame candidate",
         {entry(10, editor, frameA, "Notes")},
         {{editor, {snapshot(1, frameB, "notes")}}},
         " | 10 unpaired"},
        {"no snapshots", unpairable, {}, " | 10 unpaired 11 untitled 12 untitled"},
        {"empty snapshots", unpairable, {{editor, {}}}, " | 10 unpaired 11 untitled 12 untitled"},
        {"another process's perfect match",
         unpairable,
         {{browser, {snapshot(1, frameA, "Doc"), snapshot(2, frameA), snapshot(3, frameA)}}},
         " | 10 unpaired 11 untitled 12 untitled"},
    };
    for (const auto& testCase : cases) {
        SCOPED_TRACE(testCase.what);
        EXPECT_EQ(correlate(testCase.entries, testCase.snapshots), testCase.expected);
    }
}

TEST(WindowCorrelation, SubroleDecidesAfterPairingAndItsSnapshotStaysClaimed) {
    const std::pair<OptionalText, bool> cases[] = {
        {std::nullopt, true}, {"AXStandardWindow", true},  {"AXDialog", false},
        {"", false},          {"axstandardwindow", false},
    };
    for (const auto& [subrole, switchable] : cases) {
        SCOPED_TRACE(subrole.value_or("(absent)"));
        EXPECT_EQ(correlate({entry(10, editor, frameA, "Doc")},
                            {{editor, {snapshot(1, frameA, "Doc", subrole)}}}),
                  switchable ? "10:1 |" : " | 10 subrole");
    }
    // A panel claimed by one entry must not be handed to the next entry at the same frame.
    EXPECT_EQ(
        correlate(
            {entry(10, editor, frameA), entry(11, editor, frameA), entry(12, editor, frameA)},
            {{editor, {snapshot(1, frameA, std::nullopt, "AXSystemDialog"), snapshot(2, frameA)}}}),
        "11:2 | 10 subrole 12 untitled");
    EXPECT_EQ(correlate({entry(10, editor, frameA, "Find"), entry(11, editor, frameB, "Find")},
                        {{editor, {snapshot(1, frameA, "Find", "AXDialog")}}}),
              " | 10 subrole 11 unpaired");
}

TEST(WindowCorrelation, CorrelatedWindowResolvesTitleAndMinimizedState) {
    struct Case {
        OptionalText entryTitle;
        OptionalText snapshotTitle;
        std::optional<bool> snapshotMinimized;
        std::string resolvedTitle;
        bool isMinimized;
    };
    const Case cases[] = {
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

TEST(WindowTitleComparison, ComparesByCanonicalEquivalence) {
    struct Case {
        const char* what;
        std::string left;
        std::string right;
        bool equivalent;
    };
    const Case cases[] = {
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
    const std::string expected = "9:3 7:2 4:4 3:1 | 8 own 6 unpaired 5 layer 2 untitled";
    const WindowCorrelation<int> correlation(ownProcess);
    // A second call must find every snapshot unconsumed again.
    EXPECT_EQ(outcomes(correlation.correlate(entries, snapshots)), expected);
    EXPECT_EQ(outcomes(correlation.correlate(entries, snapshots)), expected);
}

}  // namespace
}  // namespace orvane
