// A folded text cut into grapheme clusters, as launcherMatchScore compares it: a view of units
// and cluster starts that something else owns (a query being typed, or a prepared candidate).
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace orvane {

struct LauncherFoldedView {
    const char16_t* units = nullptr;
    // The start of each cluster, then the end of the text; {0} for an empty text.
    std::span<const std::int32_t> boundaries;

    std::size_t clusterCount() const { return boundaries.size() - 1; }
    // Whether cluster `index` is a single plain space, the separator of words.
    bool isSpace(std::size_t index) const {
        const std::int32_t start = boundaries[index];
        return boundaries[index + 1] - start == 1 && units[start] == u' ';
    }
    bool containsSpace() const;
    // Whether cluster `index` equals cluster `otherIndex` of `other`.
    bool clusterEquals(std::size_t index, const LauncherFoldedView& other,
                       std::size_t otherIndex) const {
        const std::int32_t start = boundaries[index];
        const std::int32_t length = boundaries[index + 1] - start;
        const std::int32_t otherStart = other.boundaries[otherIndex];
        if (other.boundaries[otherIndex + 1] - otherStart != length) {
            return false;
        }
        for (std::int32_t offset = 0; offset < length; ++offset) {
            if (units[start + offset] != other.units[otherStart + offset]) {
                return false;
            }
        }
        return true;
    }
    // Whether all of `other`'s clusters stand here in order from cluster `index` on.
    bool containsAt(std::size_t index, const LauncherFoldedView& other) const;
};

}  // namespace orvane
