// The overlay coordinator over the simulated screens, panel and run loop, with a capture service
// whose answers the tests hand out one by one.

#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "core/ScopedLogCapture.h"
#include "overlay/SwitcherOverlayCoordinator.h"
#include "platform/simulated/SimulatedOverlayPanel.h"
#include "platform/simulated/SimulatedRunLoop.h"
#include "platform/simulated/SimulatedScreens.h"
#include "simulator/StandInPreferencesProvider.h"

namespace orvane {
namespace {

// Keeps every request open until the test answers it.
class PendingCaptureService final : public WindowThumbnailCaptureService {
  public:
    struct Request {
        WindowIdentifier windowIdentifier;
        CancellationToken cancellation;
        Completion completion;
    };

    void captureThumbnail(const SwitchableWindow& window, CancellationToken cancellation,
                          Completion completion) override {
        requests.push_back({window.windowIdentifier, cancellation, std::move(completion)});
    }
    std::vector<WindowIdentifier> requestedIdentifiers() const {
        std::vector<WindowIdentifier> identifiers;
        for (const auto& request : requests) {
            identifiers.push_back(request.windowIdentifier);
        }
        return identifiers;
    }
    void answer(std::size_t index, std::optional<ImageHandle> image) {
        requests.at(index).completion(std::move(image));
    }

    std::vector<Request> requests;
};

std::vector<SwitchableWindow> windows(std::initializer_list<WindowIdentifier> identifiers) {
    std::vector<SwitchableWindow> result(identifiers.size());
    for (std::size_t index = 0; index < result.size(); ++index) {
        result[index].windowIdentifier = identifiers.begin()[index];
        result[index].owningProcessIdentifier = 40;
        result[index].owningApplicationName = "App";
    }
    return result;
}

ImageHandle image(std::uint64_t identifier) {
    return ImageHandle{identifier, 480, 300, "thumb"};
}

LauncherOverlayPresentation launcherWithItems(std::size_t count) {
    LauncherOverlayPresentation presentation{"Windows", "Search windows", "", {}, 0};
    for (std::size_t index = 0; index < count; ++index) {
        presentation.items.push_back({"window-" + std::to_string(index), "Item", std::nullopt, {}});
    }
    return presentation;
}

class SwitcherOverlayCoordinatorTest : public testing::Test {
  protected:
    std::vector<WindowIdentifier> thumbnailKeys() const {
        std::vector<WindowIdentifier> keys;
        for (const auto& [identifier, thumbnail] :
             coordinator->viewModel()->thumbnailsByWindowIdentifier.value()) {
            keys.push_back(identifier);
        }
        return keys;
    }

    ScopedLogCapture capture;
    std::shared_ptr<PendingCaptureService> captures = std::make_shared<PendingCaptureService>();
    std::shared_ptr<simulator::StandInPreferencesProvider> preferences =
        std::make_shared<simulator::StandInPreferencesProvider>();
    std::shared_ptr<SimulatedScreens> screens = std::make_shared<SimulatedScreens>();
    std::shared_ptr<SimulatedOverlayPanel> panel = std::make_shared<SimulatedOverlayPanel>();
    std::shared_ptr<SimulatedRunLoop> runLoop = std::make_shared<SimulatedRunLoop>();
    std::shared_ptr<SwitcherOverlayCoordinator> coordinator =
        std::make_shared<SwitcherOverlayCoordinator>(captures, preferences, screens, panel,
                                                     runLoop);
};

TEST_F(SwitcherOverlayCoordinatorTest, ClampsTheSelectionIntoTheList) {
    const auto& selected = coordinator->viewModel()->selectedIndex;
    coordinator->presentSwitcher(windows({1, 2, 3}), -3);
    EXPECT_EQ(selected.value(), 0);
    coordinator->presentSwitcher(windows({1, 2, 3}), 3);
    EXPECT_EQ(selected.value(), 2);
    coordinator->updateSelection(7);
    EXPECT_EQ(selected.value(), 2);
    coordinator->presentSwitcher({}, 4);
    EXPECT_EQ(selected.value(), 0);

    int told = 0;
    coordinator->presentSwitcher(windows({1, 2, 3}), 1);
    coordinator->viewModel()->selectedIndex.subscribe([&](std::ptrdiff_t) { ++told; });
    coordinator->updateSelection(1);
    EXPECT_EQ(told, 0);
    coordinator->updateSelection(-1);
    EXPECT_EQ(told, 1);
    EXPECT_EQ(selected.value(), 0);
}

TEST_F(SwitcherOverlayCoordinatorTest, PresentsCentredOnTheVisibleFrameOfTheScreenUnderTheMouse) {
    // Two screens side by side; the mouse is in the second one's menu-bar strip, outside its
    // visible frame, and still chooses it.
    screens->setScreens(
        {ScreenDescription{{{0, 0}, {1440, 900}}, {{0, 70}, {1440, 805}}, 2.0},
         ScreenDescription{{{1440, 0}, {1920, 1080}}, {{1440, 0}, {1920, 1055}}, 1.0}});
    screens->moveMouse({2000, 1070});
    coordinator->presentSwitcher(windows({1, 2, 3}), 1);

    // 1920 wide: five medium columns fit, three are used: 3 x 200 + 2 x 12 + 40 by 157 + 40.
    EXPECT_EQ(panel->frame(), (Rect{{1440 + 960 - 332, 527.5 - 98.5}, {664, 197}}));
    EXPECT_TRUE(panel->isOrderedFront());
    EXPECT_TRUE(coordinator->isPresented());
    EXPECT_EQ(coordinator->viewModel()->columnCount.value(), 3);
    EXPECT_EQ(capture.sink().messages(LogCategory::overlay),
              (std::vector<std::string>{"presented switcher: 3 windows, 3 columns"}));

    // No screen under the mouse and none with the focus: the origin, at the no-screen size.
    screens->moveMouse({-50, -50});
    screens->setMainScreen(std::nullopt);
    coordinator->presentSwitcher(windows({1, 2, 3, 4, 5, 6}), 0);
    EXPECT_EQ(panel->frame(), (Rect{{0, 0}, {200 * 5 + 12 * 4 + 40, 157 * 2 + 12 + 40}}));
}

TEST_F(SwitcherOverlayCoordinatorTest, AskForThumbnailsInListOrderOnlyWhenEnabled) {
    SwitcherPreferences withoutThumbnails;
    withoutThumbnails.thumbnailsEnabled = false;
    preferences->setPreferences(withoutThumbnails);
    coordinator->presentSwitcher(windows({3, 1, 2}), 1);
    runLoop->runUntilIdle();
    EXPECT_TRUE(captures->requests.empty());
    EXPECT_FALSE(coordinator->viewModel()->thumbnailsEnabled.value());

    preferences->setPreferences({});
    coordinator->presentSwitcher(windows({3, 1, 2}), 1);
    // The presentation itself waits for nothing: the tasks start afterwards.
    EXPECT_TRUE(captures->requests.empty());
    runLoop->runUntilIdle();
    EXPECT_EQ(captures->requestedIdentifiers(), (std::vector<WindowIdentifier>{3, 1, 2}));

    captures->answer(1, image(11));
    captures->answer(2, std::nullopt);
    EXPECT_EQ(thumbnailKeys(), (std::vector<WindowIdentifier>{1}));
    EXPECT_EQ(coordinator->pendingThumbnailTaskCount(), 1u);
    EXPECT_EQ(capture.sink().messages(LogCategory::overlay).back(),
              "no thumbnail for window 2; keeping application-icon fallback");
}

TEST_F(SwitcherOverlayCoordinatorTest, ASecondPresentationKeepsThumbnailsOfWindowsStillListed) {
    coordinator->presentSwitcher(windows({1, 2, 3}), 1);
    runLoop->runUntilIdle();
    captures->answer(0, image(10));
    captures->answer(1, image(20));

    coordinator->presentSwitcher(windows({2, 4}), 0);
    // The first presentation's open task (window 3) is cancelled, and its late answer is dropped.
    EXPECT_TRUE(captures->requests[2].cancellation.isCancelled());
    captures->answer(2, image(30));
    EXPECT_EQ(thumbnailKeys(), (std::vector<WindowIdentifier>{2}));

    runLoop->runUntilIdle();
    EXPECT_EQ(captures->requestedIdentifiers(), (std::vector<WindowIdentifier>{1, 2, 3, 4}));
}

TEST_F(SwitcherOverlayCoordinatorTest, ACaptureEndingAfterTheDismissalWritesNothing) {
    coordinator->dismiss();
    EXPECT_TRUE(capture.sink().records().empty());
    EXPECT_TRUE(panel->calls().empty());

    coordinator->presentSwitcher(windows({1, 2}), 1);
    runLoop->runUntilIdle();
    coordinator->dismiss();
    EXPECT_FALSE(panel->isOrderedFront());
    EXPECT_FALSE(coordinator->isPresented());
    EXPECT_EQ(coordinator->pendingThumbnailTaskCount(), 0u);

    captures->answer(0, image(1));
    captures->answer(1, std::nullopt);
    EXPECT_TRUE(thumbnailKeys().empty());
    EXPECT_EQ(capture.sink().messages(LogCategory::overlay),
              (std::vector<std::string>{"presented switcher: 2 windows, 2 columns",
                                        "dismissed switcher"}));

    // A task whose coordinator is gone before it starts asks for nothing.
    coordinator->presentSwitcher(windows({5}), 0);
    coordinator.reset();
    runLoop->runUntilIdle();
    EXPECT_EQ(captures->requests.size(), 2u);
}

TEST_F(SwitcherOverlayCoordinatorTest, LauncherPanelFollowsItsResultCount) {
    struct Case {
        std::size_t items;
        double height;
    };
    for (const auto& [items, height] : {Case{0, 160}, Case{1, 132}, Case{8, 440}}) {
        SCOPED_TRACE(items);
        coordinator->presentLauncher(launcherWithItems(items));
        // Centred on the default screen's visible frame (0, 70, 1440 x 805).
        EXPECT_EQ(panel->frame(), (Rect{{400, 472.5 - height / 2}, {640, height}}));
    }
    EXPECT_TRUE(coordinator->viewModel()->launcherPresentation.value());

    // The switcher takes the panel back from the launcher, and the launcher clears the cards.
    coordinator->presentSwitcher(windows({1}), 0);
    EXPECT_FALSE(coordinator->viewModel()->launcherPresentation.value());
    runLoop->runUntilIdle();
    coordinator->presentLauncher(launcherWithItems(2));
    EXPECT_TRUE(captures->requests.front().cancellation.isCancelled());
    EXPECT_TRUE(coordinator->viewModel()->windows.value().empty());

    // Every launcher write is told, even an equal one.
    int told = 0;
    coordinator->viewModel()->launcherPresentation.subscribe([&](const auto&) { ++told; });
    coordinator->presentLauncher(launcherWithItems(2));
    EXPECT_EQ(told, 1);
}

}  // namespace
}  // namespace orvane
