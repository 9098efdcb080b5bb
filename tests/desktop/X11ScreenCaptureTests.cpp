// Window contents through Composite on a real X server: a capture scaled on the server shows the
// window's own pixels, and a window destroyed between listing and capture gives nothing, with a
// line, and breaks nothing.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "DesktopSession.h"
#include "core/ScopedLogCapture.h"
#include "platform/simulated/SimulatedRunLoop.h"
#include "platform/x11/X11ScreenCapture.h"

namespace orvane::testing {
namespace {

TEST(X11ScreenCaptureTests, CapturesScaledContentsAndSurvivesAWindowThatWent) {
    DesktopSession session;
    ASSERT_TRUE(session.isReady());
    auto client = session.startClient("Teal", 0x118877);
    ScopedLogCapture log;
    auto connection = X11Connection::open();
    ASSERT_NE(connection, nullptr);
    X11WindowModel model(*connection);
    X11Screens screens(*connection, model);
    auto runLoop = std::make_shared<SimulatedRunLoop>();
    auto capture = std::make_shared<X11ScreenCapture>(*connection, model, screens, runLoop);
    ASSERT_TRUE(capture->preflightScreenCaptureAccess());

    ASSERT_NE(client.window, 0u) << "the client's window never came up";
    std::optional<ShareableContent> content;
    DesktopSession::waitFor([&] {
        capture->getShareableContent(true, false, [&](auto listed) { content = listed; });
        runLoop->runUntilIdle();
        return content && content->windows.size() == 1;
    });
    ASSERT_TRUE(content && content->windows.size() == 1);
    const auto listed = content->windows.front();
    const auto take = [&] {
        std::optional<ImageHandle> image;
        capture->captureImage({listed.windowID}, {90, 60, false},
                              [&](auto captured) { image = captured; });
        runLoop->runUntilIdle();
        return image;
    };

    const auto image = take();
    ASSERT_TRUE(image.has_value());
    EXPECT_EQ(image->pixelWidth, 90);
    const auto* pixels = capture->thumbnail(image->identifier);
    ASSERT_NE(pixels, nullptr);
    // Below the frame's title bar the window is its own colour, scaled.
    EXPECT_EQ(pixels->pixels[45 * 90 + 45], 0xFF118877u);

    // Nothing drawn since: the same capture. Drawn on: a new one, of what is there now.
    EXPECT_EQ(take()->identifier, image->identifier);
    auto* c = session.connection();
    const xcb_gcontext_t pen = xcb_generate_id(c);
    const std::uint32_t red = 0xdd2222;
    xcb_create_gc(c, pen, client.window, XCB_GC_FOREGROUND, &red);
    const xcb_rectangle_t whole{0, 0, 2000, 2000};
    xcb_poly_fill_rectangle(c, client.window, pen, 1, &whole);
    session.sync();
    std::optional<ImageHandle> redrawn;
    DesktopSession::waitFor([&] {
        redrawn = take();
        return redrawn && redrawn->identifier != image->identifier;
    });
    ASSERT_TRUE(redrawn && redrawn->identifier != image->identifier);
    EXPECT_EQ(capture->thumbnail(redrawn->identifier)->pixels[45 * 90 + 45], 0xFFdd2222u);

    // Gone from the server before the model hears of it: the capture answers nothing.
    session.stopClient(client);
    EXPECT_EQ(take(), std::nullopt);
    EXPECT_THAT(log.sink().messages(LogCategory::thumbnailcapture),
                ::testing::Contains(::testing::HasSubstr("is gone")));
    connection->dispatchPendingEvents();
    EXPECT_EQ(take(), std::nullopt);
    EXPECT_EQ(capture->thumbnail(redrawn->identifier), nullptr) << "forgotten with its window";
}

}  // namespace
}  // namespace orvane::testing
