#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "core/ScopedLogCapture.h"
#include "launcher/LauncherSessionCoordinator.h"

namespace orvane {

// Internal linkage: other test files of this executable may print items their own way.
static void PrintTo(const LauncherItem& item, std::ostream* stream) {
    *stream << item.identifier;
}

namespace {

using ::testing::_;
using ::testing::AnyNumber;
using ::testing::InSequence;
using ::testing::NiceMock;
using ::testing::Return;
using Selection = LauncherSessionCoordinator::ActiveModeSelection;

class MockLauncherMode : public LauncherMode {
  public:
    MOCK_METHOD(std::string, modeDisplayName, (), (const, override));
    MOCK_METHOD(std::string, searchPlaceholder, (), (const, override));
    MOCK_METHOD(std::vector<LauncherItem>, items, (const std::string&), (override));
    MOCK_METHOD(void, activate, (const LauncherItem&), (override));
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

std::vector<LauncherItem> makeItems(const std::string& prefix, int count) {
    std::vector<LauncherItem> result;
    for (int index = 0; index < count; ++index) {
        const std::string number = std::to_string(index);
        result.push_back({prefix + number, "title " + number, "subtitle " + number, std::nullopt});
    }
    return result;
}

std::vector<LauncherItem> firstEight(std::vector<LauncherItem> items) {
    items.resize(8);
    return items;
}

class LauncherSessionCoordinatorTest : public ::testing::Test {
  protected:
    LauncherSessionCoordinatorTest() {
        ON_CALL(*windows, modeDisplayName()).WillByDefault(Return("Windows"));
        ON_CALL(*windows, searchPlaceholder()).WillByDefault(Return("Search windows"));
        ON_CALL(*windows, items(_)).WillByDefault(Return(windowItems));
        ON_CALL(*applications, modeDisplayName()).WillByDefault(Return("Applications"));
        ON_CALL(*applications, searchPlaceholder()).WillByDefault(Return("Search applications"));
        ON_CALL(*applications, items(_)).WillByDefault(Return(applicationItems));
        ON_CALL(*overlay, presentLauncher(_))
            .WillByDefault([this](const LauncherOverlayPresentation& presentation) {
                published.push_back(presentation);
            });
    }

    std::vector<LauncherItem> windowItems = makeItems("window-", 12);
    std::vector<LauncherItem> applicationItems = makeItems("/Applications/", 3);
    std::shared_ptr<NiceMock<MockLauncherMode>> windows =
        std::make_shared<NiceMock<MockLauncherMode>>();
    std::shared_ptr<NiceMock<MockLauncherMode>> applications =
        std::make_shared<NiceMock<MockLauncherMode>>();
    std::shared_ptr<NiceMock<MockOverlay>> overlay = std::make_shared<NiceMock<MockOverlay>>();
    std::vector<LauncherOverlayPresentation> published;
    ScopedLogCapture capture;
    LauncherSessionCoordinator coordinator{windows, applications, overlay};
};

// A second begin during the session neither clears, nor logs, nor publishes.
TEST_F(LauncherSessionCoordinatorTest, BeginShowsTheFirstEightWindowsUnfilteredOnce) {
    EXPECT_CALL(*windows, items(""));
    EXPECT_CALL(*windows, items("sa"));
    EXPECT_CALL(*applications, items(_)).Times(0);
    coordinator.beginLauncherSession();

    EXPECT_TRUE(coordinator.isLauncherSessionActive());
    EXPECT_EQ(coordinator.visibleItems(), firstEight(windowItems));
    const LauncherOverlayPresentation expected{"Windows", "Search windows", "",
                                               firstEight(windowItems), 0};
    EXPECT_EQ(published, std::vector{expected});
    coordinator.appendToSearchQuery("sa");
    coordinator.moveLauncherSelection(3);
    published.clear();
    coordinator.beginLauncherSession();
    EXPECT_EQ(coordinator.searchQuery(), "sa");
    EXPECT_EQ(coordinator.selectedIndex(), 3);
    EXPECT_TRUE(published.empty());
    EXPECT_EQ(capture.sink().messages(), std::vector<std::string>{"launcher session began"});
}

TEST_F(LauncherSessionCoordinatorTest, SwitchingModeClearsQueryAndSelectionAndShowsTheOther) {
    coordinator.beginLauncherSession();
    coordinator.appendToSearchQuery("te");
    coordinator.moveLauncherSelection(2);
    coordinator.switchLauncherMode();
    EXPECT_EQ(coordinator.activeModeSelection(), Selection::installedApplications);
    EXPECT_EQ(published.back(), (LauncherOverlayPresentation{"Applications", "Search applications",
                                                             "", applicationItems, 0}));

    coordinator.appendToSearchQuery("x");
    coordinator.switchLauncherMode();
    EXPECT_EQ(coordinator.activeModeSelection(), Selection::windows);
    EXPECT_EQ(published.back().modeDisplayName, "Windows");
    EXPECT_EQ(published.back().searchQuery, "");
    EXPECT_EQ(published.back().items, firstEight(windowItems));

    // A new session starts on windows, whatever the last one ended in.
    coordinator.switchLauncherMode();
    coordinator.endLauncherSession();
    EXPECT_EQ(coordinator.activeModeSelection(), Selection::installedApplications);
    coordinator.beginLauncherSession();
    EXPECT_EQ(coordinator.activeModeSelection(), Selection::windows);
}

TEST_F(LauncherSessionCoordinatorTest, TwelveMatchesShowEightAndTheSelectionWrapsBothWays) {
    coordinator.beginLauncherSession();
    // Moving asks the mode nothing: the list stays as it is.
    EXPECT_CALL(*windows, items(_)).Times(0);
    const struct {
        std::ptrdiff_t delta;
        std::ptrdiff_t expected;
    } steps[] = {{-1, 7}, {1, 0}, {7, 7}, {1, 0}, {9, 1}, {-10, 7}, {-16, 7}, {0, 7}};
    for (const auto& step : steps) {
        published.clear();
        coordinator.moveLauncherSelection(step.delta);
        EXPECT_EQ(coordinator.selectedIndex(), step.expected) << "delta " << step.delta;
        ASSERT_EQ(published.size(), 1U);
        EXPECT_EQ(published[0].selectedIndex, step.expected);
        EXPECT_EQ(published[0].items.size(), 8U);
    }
}

TEST_F(LauncherSessionCoordinatorTest, TypingPassesTheRawQueryAndResetsTheSelection) {
    coordinator.beginLauncherSession();
    coordinator.moveLauncherSelection(4);
    EXPECT_CALL(*windows, items("S"));
    EXPECT_CALL(*windows, items("Sa "));
    coordinator.appendToSearchQuery("S");
    EXPECT_EQ(coordinator.selectedIndex(), 0);  // even though the same items stay
    coordinator.moveLauncherSelection(4);
    coordinator.appendToSearchQuery("a ");
    EXPECT_EQ(coordinator.selectedIndex(), 0);
    EXPECT_EQ(published.back().searchQuery, "Sa ");
    EXPECT_EQ(published.back().selectedIndex, 0);

    published.clear();
    coordinator.appendToSearchQuery("");
    EXPECT_TRUE(published.empty());
    EXPECT_EQ(coordinator.searchQuery(), "Sa ");
}

// Delete erases one whole character; on an empty query it does nothing, as does moving through
// no results.
TEST_F(LauncherSessionCoordinatorTest, DeleteErasesOneWholeCharacter) {
    coordinator.beginLauncherSession();
    coordinator.appendToSearchQuery("cafe\u0301");  // e and a combining accent
    EXPECT_CALL(*windows, items(_)).Times(AnyNumber());
    EXPECT_CALL(*windows, items("caf")).Times(2);
    coordinator.deleteLastSearchCharacter();
    EXPECT_EQ(coordinator.searchQuery(), "caf");

    coordinator.appendToSearchQuery("\U0001F1EB\U0001F1F7");  // a flag
    coordinator.moveLauncherSelection(2);
    coordinator.deleteLastSearchCharacter();
    EXPECT_EQ(coordinator.searchQuery(), "caf");
    EXPECT_EQ(coordinator.selectedIndex(), 0);
    EXPECT_EQ(published.back().searchQuery, "caf");

    coordinator.endLauncherSession();
    coordinator.beginLauncherSession();
    published.clear();
    EXPECT_CALL(*windows, items(_)).Times(0);
    coordinator.deleteLastSearchCharacter();
    ON_CALL(*applications, items(_)).WillByDefault(Return(std::vector<LauncherItem>{}));
    coordinator.switchLauncherMode();
    EXPECT_EQ(published.size(), 1U);
    EXPECT_TRUE(published.back().items.empty());
    coordinator.moveLauncherSelection(1);
    EXPECT_EQ(published.size(), 1U);
    EXPECT_EQ(coordinator.selectedIndex(), 0);
}

// The end clears the session and dismisses, again each time it is repeated.
TEST_F(LauncherSessionCoordinatorTest, OutsideASessionEveryOperationButEndIsIgnored) {
    EXPECT_CALL(*windows, activate(_)).Times(0);
    EXPECT_CALL(*windows, items(_)).Times(0);
    coordinator.switchLauncherMode();
    coordinator.appendToSearchQuery("a");
    coordinator.deleteLastSearchCharacter();
    coordinator.moveLauncherSelection(1);
    coordinator.commitLauncherSession();
    EXPECT_TRUE(published.empty());
    EXPECT_EQ(coordinator.activeModeSelection(), Selection::windows);
    EXPECT_EQ(coordinator.searchQuery(), "");
    EXPECT_TRUE(capture.sink().messages().empty());

    EXPECT_CALL(*windows, items(_)).Times(2);
    EXPECT_CALL(*overlay, dismiss()).Times(2);
    coordinator.beginLauncherSession();
    coordinator.appendToSearchQuery("a");
    coordinator.moveLauncherSelection(1);
    coordinator.endLauncherSession();
    coordinator.endLauncherSession();
    EXPECT_FALSE(coordinator.isLauncherSessionActive());
    EXPECT_EQ(coordinator.searchQuery(), "");
    EXPECT_TRUE(coordinator.visibleItems().empty());
    EXPECT_EQ(coordinator.selectedIndex(), 0);
    EXPECT_EQ(capture.sink().messages(),
              (std::vector<std::string>{"launcher session began", "launcher session ended",
                                        "launcher session ended"}));
}

TEST_F(LauncherSessionCoordinatorTest, CommitDismissesBeforeTheModeThatWasActiveActivates) {
    coordinator.beginLauncherSession();
    coordinator.switchLauncherMode();
    coordinator.moveLauncherSelection(-1);
    EXPECT_CALL(*windows, activate(_)).Times(0);
    {
        InSequence order;
        EXPECT_CALL(*overlay, dismiss());
        EXPECT_CALL(*applications, activate(applicationItems[2]))
            .WillOnce([this](const LauncherItem&) {
                // The session is over by the time the item is carried out.
                EXPECT_FALSE(coordinator.isLauncherSessionActive());
                EXPECT_TRUE(coordinator.visibleItems().empty());
                coordinator.beginLauncherSession();
            });
    }
    coordinator.commitLauncherSession();
    EXPECT_EQ(coordinator.activeModeSelection(), Selection::windows);

    // With no results the commit only ends the session.
    ON_CALL(*windows, items(_)).WillByDefault(Return(std::vector<LauncherItem>{}));
    EXPECT_CALL(*overlay, dismiss()).Times(2);
    coordinator.endLauncherSession();
    coordinator.beginLauncherSession();
    coordinator.commitLauncherSession();
    EXPECT_FALSE(coordinator.isLauncherSessionActive());
    EXPECT_EQ(capture.sink().messages().back(), "launcher session ended");
}

}  // namespace
}  // namespace orvane
