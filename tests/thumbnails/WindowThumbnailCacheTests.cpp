#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "thumbnails/WindowThumbnailCache.h"

namespace orvane {
namespace {

using Ids = std::vector<WindowIdentifier>;

ImageHandle image(std::uint64_t identifier) {
    return ImageHandle{identifier, 960, 600, "image " + std::to_string(identifier), 480, 300};
}

class WindowThumbnailCacheTest : public ::testing::Test {
  protected:
    Ids storedIdentifiers() const {
        Ids result;
        for (const auto& [identifier, entry] : cache.entriesByWindowIdentifier()) {
            result.push_back(identifier);
        }
        return result;
    }
    void storeAt(double at, std::uint64_t imageIdentifier, WindowIdentifier window) {
        now = Date{at};
        cache.store(image(imageIdentifier), window);
    }
    std::optional<ImageHandle> lookUpAt(double at, WindowIdentifier window) {
        now = Date{at};
        return cache.thumbnail(window);
    }

    Date now{1000};
    WindowThumbnailCache cache{3.0, [this] { return now; }};
};

TEST_F(WindowThumbnailCacheTest, LookUpCountsBelowTheTimeToLiveAndRemovesWhatExpired) {
    struct Case {
        double age;
        bool hit;
    };
    // A negative age is an entry from the future: the clock went back.
    for (const auto& [age, hit] : {Case{0, true}, Case{2.9, true}, Case{2.999, true},
                                   Case{3.0, false}, Case{7.5, false}, Case{-5.0, true}}) {
        SCOPED_TRACE(age);
        cache = WindowThumbnailCache(3.0, [this] { return now; });
        storeAt(1000, 11, 4);
        const auto found = lookUpAt(1000 + age, 4);
        EXPECT_EQ(found, hit ? std::optional(image(11)) : std::nullopt);
        EXPECT_EQ(storedIdentifiers(), hit ? Ids{4} : Ids{});
    }
}

TEST_F(WindowThumbnailCacheTest, StorePurgesExpiredEntriesOfEveryWindow) {
    storeAt(1000, 11, 1);
    storeAt(1001, 12, 2);
    storeAt(1002.5, 13, 3);
    EXPECT_EQ(storedIdentifiers(), (Ids{1, 2, 3}));
    // At 1003 the first entry is exactly 3.0 old; nobody looked it up.
    storeAt(1003, 14, 9);
    EXPECT_EQ(storedIdentifiers(), (Ids{2, 3, 9}));
    EXPECT_EQ(cache.entriesByWindowIdentifier().at(9).storedAtDate, Date{1003});
}

TEST_F(WindowThumbnailCacheTest, StoringAgainRestartsTheTimeAndLookUpsRenewNothing) {
    storeAt(1000, 11, 4);
    storeAt(1002, 12, 4);
    EXPECT_EQ(lookUpAt(1004.9, 4), image(12));
    EXPECT_EQ(lookUpAt(1005, 5), std::nullopt);
    EXPECT_EQ(storedIdentifiers(), Ids{4}) << "a miss touches no other entry";
    EXPECT_EQ(lookUpAt(1005, 4), std::nullopt);
    EXPECT_EQ(storedIdentifiers(), Ids{});
}

TEST(WindowThumbnailCacheClockTest, TheStoredDateIsTheSecondReadingOfTheClock) {
    double readings = 0;
    WindowThumbnailCache cache(3.0, [&] { return Date{readings += 10}; });
    cache.store(image(11), 4);
    EXPECT_EQ(readings, 20);
    EXPECT_EQ(cache.entriesByWindowIdentifier().at(4).storedAtDate, Date{20});
}

}  // namespace
}  // namespace orvane
