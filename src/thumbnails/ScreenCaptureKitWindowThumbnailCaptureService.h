// Makes the thumbnails of the overlay's cards and stays cheap when every card asks at once: one
// window listing serves a burst of requests, one capture serves every caller of a window, and a
// finished thumbnail is reused for three seconds. Every failure answers nothing, so that the card
// keeps its application icon.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <vector>

#include "core/Date.h"
#include "core/Geometry.h"
#include "core/Logger.h"
#include "core/WindowThumbnailCaptureService.h"
#include "platform/RunLoopPort.h"
#include "platform/ScreenCapturePort.h"
#include "thumbnails/WindowThumbnailCache.h"

namespace orvane {

class ScreenCaptureKitWindowThumbnailCaptureService final
    : public WindowThumbnailCaptureService,
      public std::enable_shared_from_this<ScreenCaptureKitWindowThumbnailCaptureService> {
  public:
    using CurrentDateProvider = std::function<Date()>;

    static constexpr double thumbnailTimeToLive = 3.0;
    static constexpr double shareableContentMaximumAge = 2.0;
    // Above the widest thumbnail area of a card, so that no thumbnail is drawn enlarged.
    static constexpr double maximumThumbnailPointWidth = 480.0;
    static constexpr double fallbackBackingScaleFactor = 2.0;

    struct ThumbnailSize {
        double pointWidth = 0;
        double pointHeight = 0;
        std::int64_t pixelWidth = 0;
        std::int64_t pixelHeight = 0;

        friend bool operator==(const ThumbnailSize&, const ThumbnailSize&) = default;
    };

    // The size of a window's thumbnail: at most 480 points wide, aspect kept, never enlarged,
    // pixels by the main screen's scale (2.0 without a main screen). Nothing for a frame below
    // 1 x 1 point.
    static std::optional<ThumbnailSize> thumbnailSize(
        const Rect& frame, std::optional<double> mainScreenBackingScaleFactor);

    // Must be held by a `std::shared_ptr`: work under way holds the service weakly, and callers
    // still waiting when it is destroyed are never answered. `currentDateProvider` also serves
    // the cache.
    ScreenCaptureKitWindowThumbnailCaptureService(CurrentDateProvider currentDateProvider,
                                                  std::shared_ptr<ScreenCapturePort> screenCapture,
                                                  std::shared_ptr<RunLoopPort> runLoop);

    // Answers on the run loop, never inside the call. The permission is read at each call. A
    // capture goes on when its callers are cancelled and fills the cache; a caller cancelled
    // before the answer gets nothing.
    void captureThumbnail(const SwitchableWindow& window, CancellationToken cancellation,
                          Completion completion) override;

    const WindowThumbnailCache& thumbnailCache() const { return thumbnailCache_; }
    bool isCaptureInFlight(WindowIdentifier windowIdentifier) const {
        return inFlightCaptureTasksByWindowIdentifier_.contains(windowIdentifier);
    }
    std::size_t inFlightCaptureCount() const {
        return inFlightCaptureTasksByWindowIdentifier_.size();
    }
    bool isShareableContentListingInFlight() const {
        return inFlightShareableContentTask_.has_value();
    }
    const std::optional<ShareableContent>& cachedShareableContent() const {
        return cachedShareableContent_;
    }
    const std::optional<Date>& cachedShareableContentFetchedAtDate() const {
        return cachedShareableContentFetchedAtDate_;
    }

  private:
    struct Waiter {
        CancellationToken cancellation;
        Completion completion;
    };
    // The callers waiting for one capture, its creator first.
    struct CaptureTask {
        std::vector<Waiter> waiters;
    };
    using ShareableContentContinuation =
        std::function<void(const std::optional<ShareableContent>&)>;
    // The continuations waiting for one listing, its creator's first.
    struct ShareableContentTask {
        std::vector<ShareableContentContinuation> continuations;
    };

    // A caller cancelled by the time of the answer gets nothing.
    static void answer(const Waiter& waiter, const std::optional<ImageHandle>& image);
    void answerLater(Waiter waiter, std::optional<ImageHandle> image);
    void runCapture(WindowIdentifier windowIdentifier);
    void captureListedWindow(WindowIdentifier windowIdentifier,
                             const std::optional<ShareableContent>& content);
    void captureDidFinish(WindowIdentifier windowIdentifier, std::optional<ImageHandle> image);
    void withShareableContent(ShareableContentContinuation continuation);
    void shareableContentDidArrive(std::optional<ShareableContent> content);

    CurrentDateProvider currentDateProvider_;
    std::shared_ptr<ScreenCapturePort> screenCapture_;
    std::shared_ptr<RunLoopPort> runLoop_;
    WindowThumbnailCache thumbnailCache_;
    std::map<WindowIdentifier, CaptureTask> inFlightCaptureTasksByWindowIdentifier_;
    std::optional<ShareableContent> cachedShareableContent_;
    std::optional<Date> cachedShareableContentFetchedAtDate_;
    std::optional<ShareableContentTask> inFlightShareableContentTask_;
    const Logger& log_ = Logger::forCategory(LogCategory::thumbnailcapture);
};

}  // namespace orvane
