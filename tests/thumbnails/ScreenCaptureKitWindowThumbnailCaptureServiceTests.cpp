#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/simulated/SimulatedDesktop.h"
#include "platform/simulated/SimulatedScreenCapture.h"
#include "support/SimulatedDesktopBuilders.h"
#include "support/TakeLog.h"
#include "thumbnails/ScreenCaptureKitWindowThumbnailCaptureService.h"

namespace orvane {
namespace {

using Service = ScreenCaptureKitWindowThumbnailCaptureService;
using Lines = std::vector<std::string>;
// Every call of one caller's completion, in order.
using Answers = std::vector<std::optional<ImageHandle>>;
constexpr ProcessIdentifier owner = 40;

class ScreenCaptureKitWindowThumbnailCaptureServiceTest : public ::testing::Test {
  protected:
    void SetUp() override { ASSERT_TRUE(desktop->launchApplication(simulatedApplication(owner))); }
    void TearDown() override {
        runLoop().runUntilIdle();
        EXPECT_EQ(service->inFlightCaptureCount(), 0u);
        EXPECT_FALSE(service->isShareableContentListingInFlight());
    }

    void addWindow(WindowIdentifier identifier, Rect bounds = {{0, 0}, {1600, 1000}}) {
        auto window = simulatedWindow(identifier, owner);
        window.bounds = bounds;
        ASSERT_TRUE(desktop->createWindow(window, false));
    }
    std::shared_ptr<Answers> request(WindowIdentifier identifier, CancellationToken token = {}) {
        auto answers = std::make_shared<Answers>();
        SwitchableWindow window;
        window.windowIdentifier = identifier;
        service->captureThumbnail(window, token, [answers](std::optional<ImageHandle> image) {
            answers->push_back(std::move(image));
        });
        EXPECT_EQ(*answers, Answers{}) << "answered inside the call";
        return answers;
    }
    // Asks and lets the run loop answer.
    std::optional<ImageHandle> thumbnail(WindowIdentifier identifier) {
        auto answers = request(identifier);
        runLoop().runUntilIdle();
        EXPECT_EQ(answers->size(), 1u);
        return answers->empty() ? std::nullopt : answers->front();
    }
    Lines lines() { return levelLines(logs.sink(), LogCategory::thumbnailcapture); }
    SimulatedRunLoop& runLoop() { return desktop->runLoop(); }

    ScopedLogCapture logs;
    std::shared_ptr<SimulatedDesktop> desktop = SimulatedDesktop::make();
    std::shared_ptr<SimulatedScreenCapture> capture =
        std::make_shared<SimulatedScreenCapture>(desktop);
    std::shared_ptr<Service> service =
        std::make_shared<Service>([desktop = desktop.get()] { return desktop->runLoop().now(); },
                                  capture, desktop->runLoopPort());
};

TEST_F(ScreenCaptureKitWindowThumbnailCaptureServiceTest, ABurstForTenWindowsSharesOneListing) {
    capture->listingDelay = 0.5;
    std::vector<std::shared_ptr<Answers>> answers;
    for (WindowIdentifier identifier = 1; identifier <= 10; ++identifier) {
        addWindow(identifier);
        answers.push_back(request(identifier));
    }
    EXPECT_EQ(capture->listingsRequested(), 0u) << "work started inside the call";
    runLoop().runUntilIdle();
    EXPECT_TRUE(service->isShareableContentListingInFlight());
    EXPECT_EQ(service->inFlightCaptureCount(), 10u);
    runLoop().advance(0.5);
    EXPECT_EQ(capture->listingsRequested(), 1u);
    EXPECT_EQ(service->cachedShareableContentFetchedAtDate(), runLoop().now());
    for (WindowIdentifier identifier = 1; identifier <= 10; ++identifier) {
        const auto& answer = *answers[identifier - 1];
        ASSERT_EQ(answer.size(), 1u);
        // Captured in the order asked.
        EXPECT_EQ(answer[0]->description, "window " + std::to_string(identifier) + " capture " +
                                              std::to_string(identifier));
    }
    EXPECT_EQ(service->thumbnailCache().entriesByWindowIdentifier().size(), 10u);
    EXPECT_EQ(lines(), Lines{});
}

TEST_F(ScreenCaptureKitWindowThumbnailCaptureServiceTest, CallersOfOneWindowShareOneCapture) {
    capture->captureDelay = 0.25;
    addWindow(7);
    auto first = request(7);
    auto second = request(7);
    runLoop().runUntilIdle();
    auto third = request(7);
    EXPECT_TRUE(service->isCaptureInFlight(7));
    runLoop().advance(0.25);
    const ImageHandle expected{0x5C000001, 960, 600, "window 7 capture 1", 480, 300};
    for (const auto& answers : {first, second, third}) {
        EXPECT_EQ(*answers, Answers{expected});
    }
    EXPECT_FALSE(service->isCaptureInFlight(7));
    // Within its three seconds the thumbnail takes no listing and no capture.
    runLoop().advance(2.9);
    EXPECT_EQ(thumbnail(7), expected);
    EXPECT_EQ(capture->listingsRequested(), 1u);
    EXPECT_EQ(capture->capturesRequested(7), 1u);
}

TEST_F(ScreenCaptureKitWindowThumbnailCaptureServiceTest, AgesDecideBetweenCacheListingAndCapture) {
    // Window 1 is captured a second after its listing; window 2's listing comes a second later.
    capture->captureDelay = 1.0;
    addWindow(1);
    addWindow(2);
    const double start = runLoop().now().secondsSinceReferenceDate;
    request(1);
    runLoop().advance(2.0);
    request(2);
    runLoop().advance(1.0);
    ASSERT_EQ(capture->listingsRequested(), 2u);
    ASSERT_EQ(service->cachedShareableContentFetchedAtDate(), Date{start + 2});
    // 3.5 s after window 1's capture and 2.5 s after the last listing.
    runLoop().advance(1.5);
    auto again = request(1);
    runLoop().runUntilIdle();
    EXPECT_EQ(capture->listingsRequested(), 3u);
    EXPECT_TRUE(service->isCaptureInFlight(1));
    runLoop().advance(1.5);
    EXPECT_TRUE(again->at(0));
    // Window 2's thumbnail is exactly 3.0 s old, the listing 1.5 s.
    request(2);
    runLoop().advance(1.0);
    EXPECT_EQ(capture->listingsRequested(), 3u);
    EXPECT_EQ(capture->capturesRequested(2), 2u);
}

TEST_F(ScreenCaptureKitWindowThumbnailCaptureServiceTest, WithoutPermissionNothingIsAskedOrKept) {
    addWindow(7);
    capture->screenCaptureAccessGranted = false;
    EXPECT_EQ(thumbnail(7), std::nullopt);
    EXPECT_EQ(capture->listingsRequested() + capture->capturesRequested(), 0u);
    EXPECT_TRUE(service->thumbnailCache().entriesByWindowIdentifier().empty());
    EXPECT_EQ(service->inFlightCaptureCount(), 0u);
    EXPECT_EQ(service->cachedShareableContent(), std::nullopt);
    EXPECT_EQ(lines(),
              Lines{"debug: Screen Recording permission absent; skipping thumbnail for window 7"});
    // The permission is read at each call.
    capture->screenCaptureAccessGranted = true;
    EXPECT_TRUE(thumbnail(7));
}

TEST_F(ScreenCaptureKitWindowThumbnailCaptureServiceTest, CancellationDropsTheAnswerNotTheCapture) {
    capture->captureDelay = 0.5;
    addWindow(7);
    CancellationToken cancelled;
    cancelled.cancel();
    auto atEntry = request(7, cancelled);
    runLoop().runUntilIdle();
    EXPECT_EQ(*atEntry, Answers{std::nullopt});
    EXPECT_EQ(capture->listingsRequested(), 0u);

    CancellationToken creator;
    auto first = request(7, creator);
    auto joiner = request(7);
    runLoop().runUntilIdle();
    creator.cancel();
    runLoop().advance(0.5);
    EXPECT_EQ(*first, Answers{std::nullopt});
    ASSERT_EQ(joiner->size(), 1u);
    ASSERT_TRUE(joiner->front());
    EXPECT_EQ(service->thumbnailCache().entriesByWindowIdentifier().at(7).image, joiner->front());
    EXPECT_EQ(thumbnail(7), joiner->front());
    EXPECT_EQ(capture->capturesRequested(7), 1u);
    EXPECT_EQ(lines(), Lines{});
}

TEST_F(ScreenCaptureKitWindowThumbnailCaptureServiceTest, AnUnlistedWindowFailsEveryTime) {
    addWindow(1);
    addWindow(2, {{5, 6}, {300, 200}});
    addWindow(3);
    addWindow(9);
    desktop->window(2)->isOffScreen = true;
    desktop->window(3)->layer = -2147483603;
    ASSERT_TRUE(desktop->setWindowMinimized(9, true));
    EXPECT_EQ(thumbnail(9), std::nullopt);
    EXPECT_EQ(thumbnail(9), std::nullopt);
    const std::string line =
        "debug: Window 9 absent from shareable content (likely minimized); no thumbnail";
    EXPECT_EQ(lines(), (Lines{line, line}));
    EXPECT_EQ(capture->listingsRequested(), 1u);
    EXPECT_EQ(capture->capturesRequested(), 0u);
    // Off-screen windows are listed; minimized and desktop windows are not.
    EXPECT_EQ(service->cachedShareableContent(),
              (ShareableContent{{{1, {{0, 0}, {1600, 1000}}}, {2, {{5, 6}, {300, 200}}}}}));
}

TEST_F(ScreenCaptureKitWindowThumbnailCaptureServiceTest, FramesGiveTheConfiguredPixelSizes) {
    struct Case {
        Size frame;
        std::optional<double> scale;
        std::optional<StreamConfiguration> configuration;
        Lines lines;
    };
    const Lines degenerate{"debug: Window 5 has a degenerate frame; no thumbnail"};
    for (const auto& [frame, scale, configuration, expectedLines] : {
             Case{{1600, 1000}, 2.0, StreamConfiguration{960, 600, false}, {}},
             Case{{300, 200}, 2.0, StreamConfiguration{600, 400, false}, {}},
             Case{{300, 200}, std::nullopt, StreamConfiguration{600, 400, false}, {}},
             Case{{1, 1}, 0.25, StreamConfiguration{1, 1, false}, {}},
             Case{{0.5, 400}, 2.0, std::nullopt, degenerate},
             Case{{400, 0.9}, 2.0, std::nullopt, degenerate},
         }) {
        SCOPED_TRACE(testing::Message() << frame.width << " x " << frame.height);
        desktop->destroyWindow(5);
        logs.sink().clear();
        addWindow(5, {{0, 0}, frame});
        desktop->screens().setScreens(
            {ScreenDescription{{{0, 0}, {1440, 900}}, {}, scale.value_or(1)}});
        desktop->screens().setMainScreen(scale ? std::optional<std::size_t>(0) : std::nullopt);
        runLoop().advance(3.0);
        const auto captured = thumbnail(5);
        ASSERT_EQ(captured.has_value(), configuration.has_value());
        if (configuration) {
            EXPECT_EQ(capture->lastConfiguration(), configuration);
            EXPECT_EQ(captured->pixelWidth, configuration->width);
            EXPECT_EQ(captured->pointWidth, std::min(frame.width, 480.0));
        }
        EXPECT_EQ(lines(), expectedLines);
    }
    EXPECT_EQ(capture->capturesRequested(5), 4u);
}

TEST(ThumbnailSizeTest, RoundsHalvesAwayFromZeroAndKeepsOnePixel) {
    struct Case {
        Size frame;
        double scale;
        Service::ThumbnailSize size;
    };
    for (const auto& [frame, scale, size] : {
             Case{{3, 1}, 1.5, {3, 1, 5, 2}},
             Case{{960, 201}, 1.0, {480, 100.5, 480, 101}},
             Case{{2000, 1}, 1.0, {480, 0.24, 480, 1}},
         }) {
        EXPECT_EQ(Service::thumbnailSize({{7, 9}, frame}, scale), size) << frame.width;
    }
}

TEST_F(ScreenCaptureKitWindowThumbnailCaptureServiceTest, FailuresAreNotRemembered) {
    addWindow(1);
    capture->failingCaptureWindows = {1};
    EXPECT_EQ(thumbnail(1), std::nullopt);
    capture->failingCaptureWindows.clear();
    EXPECT_TRUE(thumbnail(1));
    EXPECT_EQ(capture->capturesRequested(1), 2u);

    // A failed listing keeps the older content and lets the next request try again.
    const auto olderContent = service->cachedShareableContent();
    const auto olderDate = service->cachedShareableContentFetchedAtDate();
    addWindow(2);
    addWindow(3);
    capture->listingFails = true;
    runLoop().advance(2.0);
    auto second = request(2);
    auto third = request(3);
    runLoop().runUntilIdle();
    EXPECT_EQ(*second, Answers{std::nullopt});
    EXPECT_EQ(*third, Answers{std::nullopt});
    EXPECT_EQ(service->cachedShareableContent(), olderContent);
    EXPECT_EQ(service->cachedShareableContentFetchedAtDate(), olderDate);
    capture->listingFails = false;
    EXPECT_TRUE(thumbnail(2));
    EXPECT_EQ(capture->listingsRequested(), 3u);
    EXPECT_EQ(lines(), (Lines{"debug: SCScreenshotManager capture failed for window 1",
                              "debug: Shareable content enumeration failed"}));
}

}  // namespace
}  // namespace orvane
