#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "launcher/InstalledApplicationLauncherMode.h"
#include "platform/simulated/SimulatedApplicationLauncher.h"
#include "platform/simulated/SimulatedFileSystem.h"
#include "platform/simulated/SimulatedRunLoop.h"
#include "platform/simulated/SimulatedSound.h"
#include "support/TakeLog.h"

namespace orvane {
namespace {

using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;

const std::vector<std::string> fiveFolders = {
    "/Applications", "/Applications/Utilities", "/System/Applications",
    "/System/Applications/Utilities", "/Users/orvane/Applications"};

std::vector<std::string> fields(const std::vector<LauncherItem>& items,
                                std::string LauncherItem::*field) {
    std::vector<std::string> result;
    std::ranges::transform(items, std::back_inserter(result), field);
    return result;
}

class InstalledApplicationLauncherModeTest : public ::testing::Test {
  protected:
    InstalledApplicationLauncherModeTest() { reset("/Users/orvane", true); }

    // A fresh file system, with or without the application folders, a fresh mode and log.
    void reset(std::optional<std::string> home, bool withFolders) {
        fileSystem = std::make_shared<SimulatedFileSystem>(std::move(home));
        if (withFolders) {
            fileSystem->createApplicationFolders();
        }
        mode_.reset();
        capture.sink().clear();
    }

    std::vector<std::string> titles(const std::string& query) {
        return fields(mode().items(query), &LauncherItem::title);
    }
    InstalledApplicationLauncherMode& mode() {
        if (!mode_) {
            mode_ = std::make_unique<InstalledApplicationLauncherMode>(
                fileSystem, launcher, sound, runLoop, [this] { return now; });
        }
        return *mode_;
    }

    ScopedLogCapture capture;
    Date now{SimulatedRunLoop::defaultStartTime};
    std::shared_ptr<SimulatedRunLoop> runLoop = std::make_shared<SimulatedRunLoop>();
    std::shared_ptr<SimulatedFileSystem> fileSystem;
    std::shared_ptr<SimulatedApplicationLauncher> launcher =
        std::make_shared<SimulatedApplicationLauncher>(runLoop);
    std::shared_ptr<SimulatedSound> sound = std::make_shared<SimulatedSound>();
    std::unique_ptr<InstalledApplicationLauncherMode> mode_;
};

TEST_F(InstalledApplicationLauncherModeTest,
       ListsDirectChildrenWithTheExactExtensionFolderByFolder) {
    const std::vector<std::pair<std::string, bool>> pathsAndHiddenFlags = {
        {"/Users/orvane/Applications/Safari.app", false},  // a duplicate stays
        {"/Applications/Safari.app", false},
        {"/Applications/.Secret.app", false},  // hidden by its name
        {"/Applications/Flagged.app", true},   // hidden by its flag
        {"/Applications/Foo.APP", false},      // the extension test is case-sensitive
        {"/Applications/Readme.txt", false},
        {"/Applications/app", false},
        {"/Applications/Games/Chess.app", false},  // deeper than a searched folder
        {"/Applications/Utilities/Terminal.app", false},
        {"/System/Applications/Notes.app", false},
        {"/System/Applications/Utilities/Console.app", false},
    };
    for (const auto& [path, hidden] : pathsAndHiddenFlags) {
        fileSystem->createEntry(path, SimulatedFileAttributes{hidden, std::nullopt});
    }
    EXPECT_EQ(mode().modeDisplayName(), "Applications");
    EXPECT_EQ(mode().searchPlaceholder(), "Search applications");

    const auto items = mode().items("");
    EXPECT_EQ(mode().items("  \t"), items);  // spaces are the empty query, from the cache
    EXPECT_THAT(fileSystem->listedDirectories(), ElementsAreArray(fiveFolders));
    EXPECT_THAT(
        fields(items, &LauncherItem::identifier),
        ElementsAre("/System/Applications/Utilities/Console.app", "/System/Applications/Notes.app",
                    "/Applications/Safari.app", "/Users/orvane/Applications/Safari.app",
                    "/Applications/Utilities/Terminal.app"));
    EXPECT_EQ(items[0], (LauncherItem{"/System/Applications/Utilities/Console.app", "Console",
                                      "/System/Applications/Utilities", std::nullopt}));
    EXPECT_EQ(items[3].subtitle, "/Users/orvane/Applications");
    EXPECT_EQ(items[4].icon.value().description, "icon of /Applications/Utilities/Terminal.app");
    EXPECT_THAT(levelLines(capture.sink(), LogCategory::launcher),
                ElementsAre("info: scanned 5 installed applications"));
}

TEST_F(InstalledApplicationLauncherModeTest, TitleIsTheDisplayNameWithoutOneAppSuffix) {
    const std::vector<std::pair<std::optional<std::string>, std::string>> cases = {
        {std::nullopt, "A"}, {"B.app", "B"}, {"C.app.app", "C.app"}, {"D Localized", "D Localized"},
        {"E.APP", "E.APP"},  {"", "F"},
    };
    std::vector<std::string> expected;
    for (const auto& [displayName, title] : cases) {
        fileSystem->addApplication("/Applications", title.substr(0, 1) + ".app", displayName);
        expected.push_back(title);
    }
    EXPECT_THAT(titles(""), ElementsAreArray(expected));
}

TEST_F(InstalledApplicationLauncherModeTest, EqualScoresSortByLocaleAwareCaseInsensitiveName) {
    for (const char* name : {"Safari.app", "Numbers.app", "NOTES.app", "Éclair.app"}) {
        fileSystem->addApplication("/Applications", name);
    }
    fileSystem->addApplication("/Users/orvane/Applications", "notes.app");
    // Byte order would put "Numbers" before "notes" and "Éclair" last; names equal but for case
    // keep the order of the folders.
    EXPECT_THAT(titles(""), ElementsAre("Éclair", "NOTES", "notes", "Numbers", "Safari"));
    // The score comes first: prefix 9994, then subsequences 996 and 994.
    EXPECT_THAT(titles("s"), ElementsAre("Safari", "NOTES", "notes", "Numbers"));
    EXPECT_THAT(titles("zz"), IsEmpty());
}

TEST_F(InstalledApplicationLauncherModeTest, CacheGoesStaleAtExactlyThirtySecondsByTheClock) {
    struct Case {
        double secondsLater;
        std::vector<std::string> titles;
        std::vector<int> scannedCounts;  // one log line per scan
    };
    // A clock that went back counts as fresh.
    for (const auto& [secondsLater, expectedTitles, scannedCounts] : std::vector<Case>{
             {29.9, {"Mail"}, {1}}, {30.0, {"Mail", "Maps"}, {1, 2}}, {-5.0, {"Mail"}, {1}}}) {
        SCOPED_TRACE(secondsLater);
        reset("/Users/orvane", true);
        fileSystem->addApplication("/Applications", "Mail.app");
        now = Date{SimulatedRunLoop::defaultStartTime};
        EXPECT_THAT(titles(""), ElementsAre("Mail"));
        fileSystem->addApplication("/Users/orvane/Applications", "Maps.app");
        now.secondsSinceReferenceDate += secondsLater;

        EXPECT_EQ(titles(""), expectedTitles);
        EXPECT_EQ(fileSystem->directoryListingCount(), 5 * scannedCounts.size());
        std::vector<std::string> expectedLines;
        for (int count : scannedCounts) {
            expectedLines.push_back("info: scanned " + std::to_string(count) +
                                    " installed applications");
        }
        EXPECT_EQ(levelLines(capture.sink(), LogCategory::launcher), expectedLines);
    }
}

TEST_F(InstalledApplicationLauncherModeTest, MissingHomeOrUnreadableFolderCountsAsEmpty) {
    const std::vector<std::string> fourFolders(fiveFolders.begin(), fiveFolders.end() - 1);
    // With no home, four folders; with a home lacking "Applications", five, one failing silently.
    for (const auto& home : {std::optional<std::string>{}, std::optional<std::string>{"/home"}}) {
        reset(home, false);
        fileSystem->addApplication("/System/Applications", "Notes.app");
        fileSystem->addApplication("/Applications", "Mail.app");
        fileSystem->unreadableDirectories.insert("/Applications");

        auto expected = fourFolders;
        if (home) {
            expected.push_back("/home/Applications");
        }
        EXPECT_EQ(mode().searchedDirectoryPaths(), expected);
        EXPECT_THAT(fields(mode().items(""), &LauncherItem::identifier),
                    ElementsAre("/System/Applications/Notes.app"));
        EXPECT_EQ(fileSystem->listedDirectories(), expected);
        EXPECT_THAT(levelLines(capture.sink(), LogCategory::launcher),
                    ElementsAre("info: scanned 1 installed applications"));
    }
}

TEST_F(InstalledApplicationLauncherModeTest, LaunchFailureLogsAndBeepsOnceOnTheRunLoop) {
    const std::string path = fileSystem->addApplication("/Applications", "Ghost.app");
    const std::string launching = "info: launching application Ghost";
    const std::string failed = "error: application launch failed: “Ghost” is damaged.";
    for (const auto& failure :
         {std::optional<std::string>{}, std::optional<std::string>{"“Ghost” is damaged."}}) {
        launcher = std::make_shared<SimulatedApplicationLauncher>(runLoop);
        launcher->failureDescription = failure;
        sound = std::make_shared<SimulatedSound>();
        mode_.reset();
        const auto items = mode().items("gho");
        capture.sink().clear();

        mode().activate(items.at(0));
        // The outcome arrives later, never inside the call.
        EXPECT_THAT(levelLines(capture.sink(), LogCategory::launcher), ElementsAre(launching));
        // Queued behind the completion, so it runs before the beep the completion hands over.
        std::vector<std::string> linesBeforeBeep;
        runLoop->post([&] {
            linesBeforeBeep = levelLines(capture.sink(), LogCategory::launcher);
            EXPECT_EQ(sound->beepCount(), 0u);
        });
        runLoop->advance(60);
        const auto expected = failure ? std::vector{launching, failed} : std::vector{launching};
        EXPECT_EQ(linesBeforeBeep, expected);
        EXPECT_EQ(levelLines(capture.sink(), LogCategory::launcher), expected);
        EXPECT_EQ(sound->beepCount(), failure ? 1u : 0u);
        EXPECT_THAT(launcher->launchedPaths(), ElementsAre(path));  // no retry
    }
}

}  // namespace
}  // namespace orvane
