// Remembers window thumbnails for a few seconds, so that a switcher opened again at once shows the
// same images without capturing anew. Plain data with an injected clock; main thread only.
#pragma once

#include <functional>
#include <map>
#include <optional>

#include "core/Date.h"
#include "core/Identifiers.h"
#include "platform/ImageHandle.h"

namespace orvane {

class WindowThumbnailCache {
  public:
    using CurrentDateProvider = std::function<Date()>;

    struct CacheEntry {
        ImageHandle image;
        Date storedAtDate;
    };

    // An entry counts while it is younger than `timeToLive` seconds; one from the future counts.
    WindowThumbnailCache(double timeToLive, CurrentDateProvider currentDateProvider);

    // The window's image while it counts. An expired entry is removed on the way; reading never
    // renews an entry.
    std::optional<ImageHandle> thumbnail(WindowIdentifier windowIdentifier);
    // Removes every expired entry, then stores the image, replacing the window's entry.
    void store(ImageHandle image, WindowIdentifier windowIdentifier);

    double timeToLive() const { return timeToLive_; }
    const std::map<WindowIdentifier, CacheEntry>& entriesByWindowIdentifier() const {
        return entriesByWindowIdentifier_;
    }

  private:
    bool isFresh(const CacheEntry& entry, Date now) const;

    double timeToLive_;
    CurrentDateProvider currentDateProvider_;
    std::map<WindowIdentifier, CacheEntry> entriesByWindowIdentifier_;
};

}  // namespace orvane
