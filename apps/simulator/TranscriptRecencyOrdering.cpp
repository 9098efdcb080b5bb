#include "TranscriptRecencyOrdering.h"

#include "WindowDescription.h"

namespace orvane::simulator {

std::vector<SwitchableWindow> TranscriptRecencyOrdering::orderedByRecency(
    std::vector<SwitchableWindow> windows) {
    auto ordered = ordering_->orderedByRecency(std::move(windows));
    transcript_.effect("recency", describeWindowList(ordered));
    return ordered;
}

}  // namespace orvane::simulator
