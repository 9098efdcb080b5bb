#include "thumbnails/WindowThumbnailCache.h"

#include <utility>

namespace orvane {

WindowThumbnailCache::WindowThumbnailCache(double timeToLive,
                                           CurrentDateProvider currentDateProvider)
    : timeToLive_(timeToLive), currentDateProvider_(std::move(currentDateProvider)) {}

bool WindowThumbnailCache::isFresh(const CacheEntry& entry, Date now) const {
    // A negative age (the clock went back) is below the limit, so such an entry counts.
    return now.secondsSinceReferenceDate - entry.storedAtDate.secondsSinceReferenceDate <
           timeToLive_;
}

std::optional<ImageHandle> WindowThumbnailCache::thumbnail(WindowIdentifier windowIdentifier) {
    auto found = entriesByWindowIdentifier_.find(windowIdentifier);
    if (found == entriesByWindowIdentifier_.end()) {
        return std::nullopt;
    }
    if (isFresh(found->second, currentDateProvider_())) {
        return found->second.image;
    }
    entriesByWindowIdentifier_.erase(found);
    return std::nullopt;
}

void WindowThumbnailCache::store(ImageHandle image, WindowIdentifier windowIdentifier) {
    const Date purgeDate = currentDateProvider_();
    std::erase_if(entriesByWindowIdentifier_,
                  [&](const auto& entry) { return !isFresh(entry.second, purgeDate); });
    entriesByWindowIdentifier_.insert_or_assign(
        windowIdentifier, CacheEntry{std::move(image), currentDateProvider_()});
}

}  // namespace orvane
