// Finds user-perceived characters (extended grapheme clusters) in text, for the launcher's query
// editing and matching. Holds one ICU character break iterator, made once and reused.
#pragma once

#include <unicode/uversion.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

U_NAMESPACE_BEGIN
class BreakIterator;
class UnicodeString;
U_NAMESPACE_END

namespace orvane {

class GraphemeClusters {
  public:
    GraphemeClusters();
    ~GraphemeClusters();
    GraphemeClusters(const GraphemeClusters&) = delete;
    GraphemeClusters& operator=(const GraphemeClusters&) = delete;

    // The byte offset at which the last cluster of the UTF-8 text begins; 0 for empty text.
    std::size_t lastClusterStart(std::string_view utf8);

    // Replaces `boundaries` with the UTF-16 offsets of every cluster start in `text` followed by
    // its length, so cluster i spans [boundaries[i], boundaries[i + 1]). Keeps the vector's
    // capacity.
    void clusterBoundaries(const icu::UnicodeString& text, std::vector<std::int32_t>& boundaries);

  private:
    // Null only when ICU lacks its break rules; code points then stand in for clusters.
    std::unique_ptr<icu::BreakIterator> breakIterator_;
};

}  // namespace orvane
