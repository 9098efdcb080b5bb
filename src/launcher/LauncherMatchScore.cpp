#include "launcher/LauncherMatchScore.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <string>

#include "launcher/LauncherSearchText.h"

namespace orvane {

namespace {

// A mode scores every candidate against one query per keystroke: the query is folded once and
// the ICU objects and buffers live as long as the thread.
struct ScoringScratch {
    LauncherSearchText query;
    LauncherSearchText candidate;
    std::string rawQuery;
    bool hasQuery = false;

    LauncherFoldedView foldedQuery(std::string_view text) {
        if (!hasQuery || rawQuery != text) {
            query.assign(text);
            rawQuery.assign(text);
            hasQuery = true;
        }
        return query.view();
    }
};

ScoringScratch& scoringScratch() {
    thread_local ScoringScratch scratch;
    return scratch;
}

std::optional<int> subsequenceScore(const LauncherFoldedView& query,
                                    const LauncherFoldedView& candidate) {
    const std::size_t queryLength = query.clusterCount();
    std::size_t matched = 0;
    std::size_t firstMatchIndex = 0;
    std::size_t lastMatchIndex = 0;
    for (std::size_t index = 0; index < candidate.clusterCount() && matched < queryLength;
         ++index) {
        if (candidate.clusterEquals(index, query, matched)) {
            if (matched == 0) {
                firstMatchIndex = index;
            }
            lastMatchIndex = index;
            ++matched;
        }
    }
    if (matched < queryLength) {
        return std::nullopt;
    }
    const auto matchSpan = static_cast<std::int64_t>(lastMatchIndex - firstMatchIndex + 1);
    const std::int64_t score = 1000 - 10 * (matchSpan - static_cast<std::int64_t>(queryLength)) -
                               static_cast<std::int64_t>(firstMatchIndex);
    // Only a candidate of hundreds of millions of characters could fall below the range.
    return static_cast<int>(std::max<std::int64_t>(score, std::numeric_limits<int>::min()));
}

std::optional<int> score(const LauncherFoldedView& folded, const LauncherFoldedView& name) {
    const std::size_t queryLength = folded.clusterCount();
    if (queryLength == 0) {
        return 0;
    }
    const std::size_t nameLength = name.clusterCount();
    if (nameLength == 0) {
        return std::nullopt;
    }

    if (name.containsAt(0, folded)) {
        return 10000 - static_cast<int>(nameLength);
    }

    // A word holds no space, so a query with one can begin none; the first word was the prefix.
    if (!folded.containsSpace()) {
        for (std::size_t index = 1; index + queryLength <= nameLength; ++index) {
            // Each word's offset is the index of its first character, both spaces of a
            // double space included.
            if (name.isSpace(index - 1) && name.containsAt(index, folded)) {
                return 5000 - static_cast<int>(index);
            }
        }
    }

    return subsequenceScore(folded, name);
}

}  // namespace

std::optional<int> launcherMatchScore(std::string_view query, std::string_view candidate) {
    ScoringScratch& scratch = scoringScratch();
    const auto folded = scratch.foldedQuery(query);
    if (folded.clusterCount() == 0) {
        return 0;
    }
    scratch.candidate.assign(candidate);
    return score(folded, scratch.candidate.view());
}

std::optional<int> launcherMatchScore(std::string_view query,
                                      const LauncherCandidateText& candidate) {
    return score(scoringScratch().foldedQuery(query), candidate.view());
}

}  // namespace orvane
