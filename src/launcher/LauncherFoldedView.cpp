#include "launcher/LauncherFoldedView.h"

#include <unicode/ustring.h>

namespace orvane {

bool LauncherFoldedView::containsSpace() const {
    for (std::size_t index = 0; index < clusterCount(); ++index) {
        if (isSpace(index)) {
            return true;
        }
    }
    return false;
}

bool LauncherFoldedView::containsAt(std::size_t index, const LauncherFoldedView& other) const {
    const std::size_t count = other.clusterCount();
    if (index + count > clusterCount()) {
        return false;
    }
    const std::int32_t start = boundaries[index];
    // Same units and same cuts: equal text alone could straddle a cluster boundary.
    for (std::size_t offset = 1; offset <= count; ++offset) {
        if (boundaries[index + offset] - start != other.boundaries[offset]) {
            return false;
        }
    }
    return u_memcmp(units + start, other.units, other.boundaries.back()) == 0;
}

}  // namespace orvane
