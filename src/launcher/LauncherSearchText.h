// Folds launcher texts and cuts them into grapheme clusters: the text that launcherMatchScore
// compares. Reusable: assign() keeps its buffers and its break iterator, so one
// instance serves any number of strings without allocating once warm.
#pragma once

#include <unicode/normalizer2.h>
#include <unicode/unistr.h>

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "launcher/GraphemeClusters.h"
#include "launcher/LauncherFoldedView.h"

namespace orvane {

class LauncherSearchText {
  public:
    LauncherSearchText();
    LauncherSearchText(const LauncherSearchText&) = delete;
    LauncherSearchText& operator=(const LauncherSearchText&) = delete;

    // Takes UTF-8 text (ill-formed sequences count as U+FFFD), folds its case, removes its
    // diacritics (nonspacing marks after canonical decomposition), trims spaces and tabs at both
    // ends and cuts the result into clusters.
    void assign(std::string_view utf8);

    std::size_t clusterCount() const { return boundaries_.size() - 1; }
    // The folded text, canonically decomposed.
    const icu::UnicodeString& text() const { return folded_; }

    // The folded text and its clusters, valid until the next assign().
    LauncherFoldedView view() const { return {units_, boundaries_}; }

  private:
    void foldAscii(std::string_view utf8);
    void foldUnicode(std::string_view utf8);
    void trim();

    const icu::Normalizer2* decomposition_ = nullptr;
    icu::UnicodeString decoded_;
    icu::UnicodeString decomposed_;
    icu::UnicodeString folded_;
    // The start of folded_'s units, taken once per assign().
    const char16_t* units_ = nullptr;
    std::vector<std::int32_t> boundaries_{0};
    GraphemeClusters graphemeClusters_;
};

}  // namespace orvane
