// Window previews on a wlroots compositor. A screencopy takes what the output shows, the overlay
// included, so windows are captured while no overlay is up: at once after the windows or
// workspaces changed (`refresh`), and otherwise once the screen changes, at most every two seconds.
// Each visible window with a known frame is cut out of one copy of its output, in shared memory,
// and scaled down with pixman. A capture asked for answers the window's last one, or nothing when
// it never had one. Without screencopy, access is not granted. Main thread only.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <vector>

#include "platform/RunLoopPort.h"
#include "platform/ScreenCapturePort.h"
#include "platform/linux/WindowThumbnail.h"
#include "platform/wayland/WaylandConnection.h"
#include "platform/wayland/WaylandScreens.h"
#include "platform/wayland/WaylandWindowModel.h"

namespace orvane {

class WaylandScreenCapture final : public ScreenCapturePort,
                                   public std::enable_shared_from_this<WaylandScreenCapture> {
  public:
    // Thumbnails are handed out with this bit set in their identifiers.
    static constexpr std::uint64_t thumbnailIdentifierBit = std::uint64_t{1} << 62;

    WaylandScreenCapture(WaylandConnection& connection, WaylandWindowModel& model,
                         const WaylandScreens& screens, std::shared_ptr<RunLoopPort> runLoop);
    ~WaylandScreenCapture() override;

    bool preflightScreenCaptureAccess() const override;
    void getShareableContent(bool excludingDesktopWindows, bool onScreenWindowsOnly,
                             ShareableContentCompletion completion) override;
    // Answers the window's last capture, on the run loop.
    void captureImage(const ContentFilter& filter, const StreamConfiguration& configuration,
                      ImageCompletion completion) override;
    std::optional<double> mainScreenBackingScaleFactor() const override;

    // Pixels of the last thumbnail of a window, premultiplied ARGB row by row, while that window
    // lives; nothing for any other identifier.
    const WindowThumbnail* thumbnail(std::uint64_t identifier) const;

    // Captures every window the outputs show now, unless the overlay is up. A copy is dropped
    // when the overlay is up as it comes back, or went up meanwhile: it may show the overlay.
    void refresh();
    // The overlay is about to go up: a copy waiting for a change would only show it, and would
    // cost the compositor a copy of every output as the overlay appears.
    void standBack();
    // Whether the overlay is up, and how many times it has gone up so far.
    struct Cover {
        bool isUp = false;
        std::uint64_t times = 0;
    };
    void setCoverQuery(std::function<Cover()> cover) { cover_ = std::move(cover); }

  private:
    struct Capture;

    std::optional<ImageHandle> lastCapture(DesktopWindows::Handle window) const;
    Cover cover() const { return cover_ ? cover_() : Cover{}; }
    // Drops the copies still waiting for the output to change.
    void forgetWaitingCopies();
    // Whether a copy is asked for and not answered yet.
    bool isCapturing() const;
    // Copies every output: now, or once something on it changes.
    void capture(bool onChange);
    // The next copy on change, a while after the last copy.
    void watchLater();
    void finish(Capture& capture, bool succeeded);
    // Cuts each of the capture's windows out of it and scales it to its preview size.
    void cutOut(const Capture& capture);

    WaylandConnection& connection_;
    WaylandWindowModel& model_;
    const WaylandScreens& screens_;
    std::shared_ptr<RunLoopPort> runLoop_;
    std::map<DesktopWindows::Handle, WindowThumbnail> thumbnails_;
    // The preview size asked for last, per window: the next capture makes that size.
    std::map<DesktopWindows::Handle, std::pair<int, int>> sizes_;
    std::vector<std::unique_ptr<Capture>> captures_;
    std::uint64_t lastIdentifier_ = 0;
    std::function<Cover()> cover_;
    std::optional<TimerToken> watch_;
};

}  // namespace orvane
