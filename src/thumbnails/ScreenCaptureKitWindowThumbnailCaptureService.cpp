#include "thumbnails/ScreenCaptureKitWindowThumbnailCaptureService.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <utility>

namespace orvane {

std::optional<ScreenCaptureKitWindowThumbnailCaptureService::ThumbnailSize>
ScreenCaptureKitWindowThumbnailCaptureService::thumbnailSize(
    const Rect& frame, std::optional<double> mainScreenBackingScaleFactor) {
    if (frame.width() < 1.0 || frame.height() < 1.0) {
        return std::nullopt;
    }
    const double scale = mainScreenBackingScaleFactor.value_or(fallbackBackingScaleFactor);
    ThumbnailSize size;
    size.pointWidth = std::min(frame.width(), maximumThumbnailPointWidth);
    size.pointHeight = frame.height() * size.pointWidth / frame.width();
    // Halves go away from zero, as the platform rounds.
    size.pixelWidth = std::max<std::int64_t>(1, std::llround(size.pointWidth * scale));
    size.pixelHeight = std::max<std::int64_t>(1, std::llround(size.pointHeight * scale));
    return size;
}

ScreenCaptureKitWindowThumbnailCaptureService::ScreenCaptureKitWindowThumbnailCaptureService(
    CurrentDateProvider currentDateProvider, std::shared_ptr<ScreenCapturePort> screenCapture,
    std::shared_ptr<RunLoopPort> runLoop)
    : currentDateProvider_(std::move(currentDateProvider)),
      screenCapture_(std::move(screenCapture)),
      runLoop_(std::move(runLoop)),
      thumbnailCache_(thumbnailTimeToLive, currentDateProvider_) {}

void ScreenCaptureKitWindowThumbnailCaptureService::answer(
    const Waiter& waiter, const std::optional<ImageHandle>& image) {
    waiter.completion(waiter.cancellation.isCancelled() ? std::nullopt : image);
}

void ScreenCaptureKitWindowThumbnailCaptureService::answerLater(Waiter waiter,
                                                                std::optional<ImageHandle> image) {
    // Even an immediate answer waits for the run loop, so that callers see one behaviour.
    runLoop_->post(
        [waiter = std::move(waiter), image = std::move(image)] { answer(waiter, image); });
}

void ScreenCaptureKitWindowThumbnailCaptureService::captureThumbnail(const SwitchableWindow& window,
                                                                     CancellationToken cancellation,
                                                                     Completion completion) {
    const WindowIdentifier identifier = window.windowIdentifier;
    Waiter waiter{std::move(cancellation), std::move(completion)};
    if (waiter.cancellation.isCancelled()) {
        answerLater(std::move(waiter), std::nullopt);
        return;
    }
    if (!screenCapture_->preflightScreenCaptureAccess()) {
        log_.debug("Screen Recording permission absent; skipping thumbnail for window %u",
                   identifier);
        answerLater(std::move(waiter), std::nullopt);
        return;
    }
    if (auto cached = thumbnailCache_.thumbnail(identifier)) {
        answerLater(std::move(waiter), std::move(cached));
        return;
    }
    if (auto found = inFlightCaptureTasksByWindowIdentifier_.find(identifier);
        found != inFlightCaptureTasksByWindowIdentifier_.end()) {
        found->second.waiters.push_back(std::move(waiter));
        return;
    }
    // The map entry is made before anything waits, so a second caller of this window joins it.
    inFlightCaptureTasksByWindowIdentifier_[identifier].waiters.push_back(std::move(waiter));
    runLoop_->post([weakSelf = weak_from_this(), identifier] {
        if (auto self = weakSelf.lock()) {
            self->runCapture(identifier);
        }
    });
}

void ScreenCaptureKitWindowThumbnailCaptureService::runCapture(WindowIdentifier windowIdentifier) {
    withShareableContent([weakSelf = weak_from_this(), windowIdentifier](const auto& content) {
        if (auto self = weakSelf.lock()) {
            self->captureListedWindow(windowIdentifier, content);
        }
    });
}

void ScreenCaptureKitWindowThumbnailCaptureService::captureListedWindow(
    WindowIdentifier windowIdentifier, const std::optional<ShareableContent>& content) {
    if (!content) {
        captureDidFinish(windowIdentifier, std::nullopt);
        return;
    }
    auto listed = std::find_if(content->windows.begin(), content->windows.end(),
                               [&](const auto& each) { return each.windowID == windowIdentifier; });
    if (listed == content->windows.end()) {
        log_.debug("Window %u absent from shareable content (likely minimized); no thumbnail",
                   windowIdentifier);
        captureDidFinish(windowIdentifier, std::nullopt);
        return;
    }
    const auto size = thumbnailSize(listed->frame, screenCapture_->mainScreenBackingScaleFactor());
    if (!size) {
        log_.debug("Window %u has a degenerate frame; no thumbnail", windowIdentifier);
        captureDidFinish(windowIdentifier, std::nullopt);
        return;
    }
    StreamConfiguration configuration;
    configuration.width = size->pixelWidth;
    configuration.height = size->pixelHeight;
    configuration.showsCursor = false;
    screenCapture_->captureImage(ContentFilter{windowIdentifier}, configuration,
                                 [weakSelf = weak_from_this(), windowIdentifier,
                                  size = *size](std::optional<ImageHandle> captured) {
                                     auto self = weakSelf.lock();
                                     if (!self) {
                                         return;
                                     }
                                     if (!captured) {
                                         self->log_.debug(
                                             "SCScreenshotManager capture failed for window %u",
                                             windowIdentifier);
                                         self->captureDidFinish(windowIdentifier, std::nullopt);
                                         return;
                                     }
                                     captured->pointWidth = size.pointWidth;
                                     captured->pointHeight = size.pointHeight;
                                     self->thumbnailCache_.store(*captured, windowIdentifier);
                                     self->captureDidFinish(windowIdentifier, std::move(captured));
                                 });
}

void ScreenCaptureKitWindowThumbnailCaptureService::captureDidFinish(
    WindowIdentifier windowIdentifier, std::optional<ImageHandle> image) {
    auto found = inFlightCaptureTasksByWindowIdentifier_.find(windowIdentifier);
    assert(found != inFlightCaptureTasksByWindowIdentifier_.end());
    // Taken out first: an answered caller may ask again at once and must start a new capture.
    auto waiters = std::move(found->second.waiters);
    inFlightCaptureTasksByWindowIdentifier_.erase(found);
    for (const auto& waiter : waiters) {
        answer(waiter, image);
    }
}

void ScreenCaptureKitWindowThumbnailCaptureService::withShareableContent(
    ShareableContentContinuation continuation) {
    if (cachedShareableContent_ && cachedShareableContentFetchedAtDate_ &&
        currentDateProvider_().secondsSinceReferenceDate -
                cachedShareableContentFetchedAtDate_->secondsSinceReferenceDate <
            shareableContentMaximumAge) {
        continuation(cachedShareableContent_);
        return;
    }
    if (inFlightShareableContentTask_) {
        inFlightShareableContentTask_->continuations.push_back(std::move(continuation));
        return;
    }
    inFlightShareableContentTask_.emplace().continuations.push_back(std::move(continuation));
    screenCapture_->getShareableContent(
        true, false, [weakSelf = weak_from_this()](std::optional<ShareableContent> content) {
            if (auto self = weakSelf.lock()) {
                self->shareableContentDidArrive(std::move(content));
            }
        });
}

void ScreenCaptureKitWindowThumbnailCaptureService::shareableContentDidArrive(
    std::optional<ShareableContent> content) {
    assert(inFlightShareableContentTask_);
    auto continuations = std::move(inFlightShareableContentTask_->continuations);
    inFlightShareableContentTask_.reset();
    if (content) {
        cachedShareableContent_ = content;
        cachedShareableContentFetchedAtDate_ = currentDateProvider_();
    } else {
        // The older content and its date stay: they are stale already.
        log_.debug("Shareable content enumeration failed");
    }
    for (auto& continuation : continuations) {
        continuation(content);
    }
}

}  // namespace orvane
