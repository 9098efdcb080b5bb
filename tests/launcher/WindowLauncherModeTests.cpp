#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "launcher/WindowLauncherMode.h"
#include "platform/simulated/SimulatedDesktop.h"
#include "platform/simulated/SimulatedSound.h"
#include "support/SimulatedDesktopBuilders.h"
#include "support/TakeLog.h"

namespace orvane {
namespace {

using ::testing::ElementsAre;
using ::testing::ElementsAreArray;

struct CountingEnumeration : WindowEnumerationService {
    std::vector<SwitchableWindow> windows;
    int enumerationCount = 0;
    std::vector<SwitchableWindow> enumerateSwitchableWindows() override {
        ++enumerationCount;
        return windows;
    }
};

// Puts the listed identifiers first, in that order, and the rest after them.
struct ListedRecencyOrdering : MostRecentlyUsedWindowOrdering {
    std::vector<WindowIdentifier> mostRecentFirst;
    void startTracking() override {}
    void stopTracking() override {}
    void recordImmediateFocus(const SwitchableWindow&) override {}
    std::vector<SwitchableWindow> orderedByRecency(std::vector<SwitchableWindow> windows) override {
        std::ranges::stable_sort(windows, {}, [&](const SwitchableWindow& window) {
            return std::ranges::find(mostRecentFirst, window.windowIdentifier) -
                   mostRecentFirst.begin();
        });
        return windows;
    }
};

struct RecordingActivation : WindowActivationService {
    std::vector<std::string> activatedTitles;
    void activate(const SwitchableWindow& window) override {
        activatedTitles.push_back(window.windowTitle);
    }
};

SwitchableWindow window(WindowIdentifier identifier, std::string application, std::string title,
                        ProcessIdentifier process = 501) {
    SwitchableWindow result;
    result.windowIdentifier = identifier;
    result.owningProcessIdentifier = process;
    result.owningApplicationName = std::move(application);
    result.windowTitle = std::move(title);
    return result;
}

std::vector<std::string> identifiers(const std::vector<LauncherItem>& items) {
    std::vector<std::string> result;
    std::ranges::transform(items, std::back_inserter(result), &LauncherItem::identifier);
    return result;
}

class WindowLauncherModeTest : public ::testing::Test {
  protected:
    WindowLauncherModeTest() {
        auto mail = simulatedApplication(501);
        mail.runningApplication.icon = ImageHandle{77, 0, 0, "", 0, 0};
        desktop->launchApplication(mail);
    }

    // The listed windows, taken as the snapshot.
    std::vector<LauncherItem> snapshot(std::vector<SwitchableWindow> windows) {
        enumeration->windows = std::move(windows);
        return mode.items("");
    }

    std::shared_ptr<SimulatedDesktop> desktop = SimulatedDesktop::make();
    std::shared_ptr<CountingEnumeration> enumeration = std::make_shared<CountingEnumeration>();
    std::shared_ptr<ListedRecencyOrdering> ordering = std::make_shared<ListedRecencyOrdering>();
    std::shared_ptr<RecordingActivation> activation = std::make_shared<RecordingActivation>();
    std::shared_ptr<SimulatedSound> sound = std::make_shared<SimulatedSound>();
    WindowLauncherMode mode{enumeration, ordering, activation, desktop->workspacePort(), sound};
};

TEST_F(WindowLauncherModeTest, SnapshotIsTakenOnlyForAnEmptyRawQueryOrAnEmptySnapshot) {
    EXPECT_EQ(mode.modeDisplayName(), "Windows");
    EXPECT_EQ(mode.searchPlaceholder(), "Search windows");
    struct Step {
        std::vector<SwitchableWindow> desktopWindows;
        std::string query;
        int expectedEnumerations;
        std::vector<std::string> expectedItems;
    };
    const auto inbox = window(1, "Mail", "Inbox");
    const auto drafts = window(2, "Mail", "Drafts");
    const std::vector<Step> steps = {
        {{}, "m", 1, {}},  // an empty snapshot is refreshed whatever the query
        {{inbox}, "m", 2, {"window-1"}},
        // Typing keeps the snapshot: a window opened or closed meanwhile is not seen.
        {{inbox, drafts}, "ma", 2, {"window-1"}},
        {{}, "mai", 2, {"window-1"}},
        {{drafts}, " ", 2, {"window-1"}},  // one space is not empty as typed
        {{drafts}, "", 3, {"window-2"}},
        {{inbox, drafts}, "", 4, {"window-1", "window-2"}},
        {{}, "Mail", 4, {"window-1", "window-2"}},
    };
    for (const auto& step : steps) {
        enumeration->windows = step.desktopWindows;
        const auto items = mode.items(step.query);
        EXPECT_EQ(enumeration->enumerationCount, step.expectedEnumerations) << step.query;
        EXPECT_THAT(identifiers(items), ElementsAreArray(step.expectedItems)) << step.query;
    }
}

TEST_F(WindowLauncherModeTest, RanksByScoreThenByRecency) {
    struct Case {
        std::vector<WindowIdentifier> mostRecentFirst;
        std::string query;
        std::vector<std::string> expected;
    };
    const std::vector<Case> cases = {
        // An empty query keeps the recency order, however the windows would score.
        {{4, 2, 1, 3}, "", {"window-4", "window-2", "window-1", "window-3", "window-5"}},
        // Prefix "Mail Inbox" (9990) before word "Notes Mail ideas" (4994).
        {{4, 2, 1, 3}, "mail", {"window-1", "window-4"}},
        {{4, 2, 1, 3}, "inbox", {"window-1"}},
        // The untitled window's "Safari " trims to the shortest prefix match; the two equal
        // "Safari Docs" follow, the more recent first.
        {{4, 2, 1, 3}, "safari", {"window-5", "window-2", "window-3"}},
        {{3, 2}, "safari", {"window-5", "window-3", "window-2"}},
        {{4, 2, 1, 3}, "window-1", {}},  // never matched against the identifier
    };
    for (const auto& testCase : cases) {
        ordering->mostRecentFirst = testCase.mostRecentFirst;
        snapshot({window(1, "Mail", "Inbox"), window(2, "Safari", "Docs"),
                  window(3, "Safari", "Docs"), window(4, "Notes", "Mail ideas"),
                  window(5, "Safari", "")});
        EXPECT_THAT(identifiers(mode.items(testCase.query)), ElementsAreArray(testCase.expected))
            << testCase.query;
    }

    // Enough ties that an unstable sort would show.
    std::vector<SwitchableWindow> many;
    std::vector<std::string> expected;
    for (WindowIdentifier identifier = 40; identifier >= 1; --identifier) {
        many.push_back(window(identifier, "Safari", "Docs"));
        ordering->mostRecentFirst.insert(ordering->mostRecentFirst.begin(), identifier);
        expected.push_back("window-" + std::to_string(41 - identifier));
    }
    snapshot(many);
    EXPECT_THAT(identifiers(mode.items("safari docs")), ElementsAreArray(expected));
}

TEST_F(WindowLauncherModeTest, ItemsCarryTitleSubtitleAndTheApplicationIcon) {
    const auto items = snapshot({window(7, "Mail", "Inbox"), window(8, "Mail", ""),
                                 window(4294967295u, "Gone", "Orphan", 999)});
    EXPECT_THAT(items, ElementsAre(LauncherItem{"window-7", "Inbox", "Mail", std::nullopt},
                                   LauncherItem{"window-8", "Mail", "Mail", std::nullopt},
                                   LauncherItem{"window-4294967295", "Orphan", "Gone", {}}));
    ASSERT_TRUE(items[0].icon.has_value());
    EXPECT_EQ(items[0].icon->identifier, 77u);
    EXPECT_EQ(items[1].icon, items[0].icon);
    EXPECT_FALSE(items[2].icon.has_value());  // no running application
}

TEST_F(WindowLauncherModeTest, ActivatesSnapshotRecordsAndBeepsOnceForAStaleItem) {
    const auto older = snapshot({window(3, "Notes", "Old")});
    const auto items = snapshot(
        {window(7, "Mail", "Inbox"), window(7, "Mail", "Duplicate"), window(9, "Notes", "List")});
    enumeration->windows = {window(9, "Notes", "Renamed")};
    mode.items("n");
    ScopedLogCapture capture;

    // A repeated identifier resolves to its first window; typing kept the snapshot's records.
    mode.activate(items[1]);
    mode.activate(items[2]);
    EXPECT_THAT(activation->activatedTitles, ElementsAre("Inbox", "List"));
    EXPECT_EQ(sound->beepCount(), 0u);
    EXPECT_EQ(takeLog(capture, LogCategory::launcher, LogLevel::error), "");

    mode.activate(older.front());
    EXPECT_EQ(activation->activatedTitles.size(), 2u);
    EXPECT_EQ(sound->beepCount(), 1u);
    EXPECT_EQ(takeLog(capture, LogCategory::launcher, LogLevel::error),
              "launcher window item is stale; nothing activated\n");
}

}  // namespace
}  // namespace orvane
