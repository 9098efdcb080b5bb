// Window contents for previews through the Composite extension: each window manager frame is
// redirected (automatically, so the server still draws the screen) as it appears, and a capture
// names the frame's pixmap and has the server scale it with XRender to the size asked for. Without
// Composite and Render, access is not granted and every capture answers nothing. A window the
// Damage extension says was not drawn on since its last capture answers that capture again, same
// identifier and all, so that nothing downstream scales or paints it anew; so does a window that
// can't be captured now (minimized, or on another desktop), when it was ever captured. Main thread
// only.
#pragma once

#include <xcb/render.h>
#include <xcb/xcb.h>

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <vector>

#include "platform/RunLoopPort.h"
#include "platform/ScreenCapturePort.h"
#include "platform/linux/WindowThumbnail.h"
#include "platform/x11/X11Connection.h"
#include "platform/x11/X11Screens.h"
#include "platform/x11/X11WindowModel.h"

namespace orvane {

class X11ScreenCapture final : public ScreenCapturePort,
                               public std::enable_shared_from_this<X11ScreenCapture> {
  public:
    // Thumbnails are handed out with this bit set in their identifiers.
    static constexpr std::uint64_t thumbnailIdentifierBit = std::uint64_t{1} << 62;

    X11ScreenCapture(X11Connection& connection, X11WindowModel& model, X11Screens& screens,
                     std::shared_ptr<RunLoopPort> runLoop);

    bool preflightScreenCaptureAccess() const override { return available_; }
    void getShareableContent(bool excludingDesktopWindows, bool onScreenWindowsOnly,
                             ShareableContentCompletion completion) override;
    // Captures later, in a run loop turn of its own, so that keys are read between captures.
    void captureImage(const ContentFilter& filter, const StreamConfiguration& configuration,
                      ImageCompletion completion) override;
    std::optional<double> mainScreenBackingScaleFactor() const override;

    // Pixels of the last thumbnail of a window, ARGB row by row, while that window lives;
    // nothing for any other identifier.
    const WindowThumbnail* thumbnail(std::uint64_t identifier) const;

  private:
    std::optional<ImageHandle> capture(WindowIdentifier identifier, int width, int height);
    // The window's last capture, as a preview; nothing when it never had one.
    std::optional<ImageHandle> lastCapture(const X11WindowModel::Window& client) const;
    // The window manager's frame around a client: its top-level ancestor.
    std::optional<xcb_window_t> frameOf(xcb_window_t window);
    void redirect(xcb_window_t window);
    std::optional<xcb_render_pictformat_t> formatOfVisual(xcb_visualid_t visual) const;
    void handleEvent(const xcb_generic_event_t& event);

    X11Connection& connection_;
    X11WindowModel& model_;
    X11Screens& screens_;
    std::shared_ptr<RunLoopPort> runLoop_;
    bool available_ = false;
    xcb_render_pictformat_t argbFormat_ = 0;
    std::map<xcb_visualid_t, xcb_render_pictformat_t> visualFormats_;
    std::map<xcb_window_t, xcb_window_t> frames_;
    std::map<xcb_window_t, WindowThumbnail> thumbnails_;
    // Each frame's damage object, and the frames drawn on since their window's last capture.
    std::map<xcb_window_t, std::uint32_t> damages_;
    std::set<xcb_window_t> drawnOn_;
    std::uint8_t damageEvent_ = 0;
    std::uint64_t lastIdentifier_ = 0;
};

}  // namespace orvane
