// Ranks one launcher candidate against the typed query; shared by every launcher mode.
#pragma once

#include <optional>
#include <string_view>

#include "launcher/LauncherCandidateText.h"

namespace orvane {

// How well `candidate` matches `query`, both UTF-8; no value when it does not match, and a larger
// value is a better match. Both are folded by case and diacritics and trimmed of spaces and tabs
// at both ends; every length and position counts grapheme clusters of the folded text.
// - A query that folds to nothing matches everything with 0; a candidate that folds to nothing
//   matches no other query.
// - Prefix: the candidate begins with the query: 10000 - candidate length.
// - Word: the first word (the candidate split at each single space, empty words kept) that begins
//   with the query: 5000 - the word's offset in the candidate.
// - Subsequence: the query's characters in order, each taken as early as possible:
//   1000 - 10 x (span - query length) - index of the first; may be negative.
// Pure as far as callers can tell; keeps reusable buffers per thread, so it is cheap to call for
// thousands of candidates with one query.
std::optional<int> launcherMatchScore(std::string_view query, std::string_view candidate);
// The same score for a candidate folded beforehand: what a keystroke pays over a list read once.
std::optional<int> launcherMatchScore(std::string_view query,
                                      const LauncherCandidateText& candidate);

}  // namespace orvane
