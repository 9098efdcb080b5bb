// The folded form of a launcher query or candidate, cut into grapheme clusters: the text that
// launcherMatchScore compares. Reusable: assign() keeps its buffers and its break iterator, so one
// instance serves any number of strings without allocating once warm.
#pragma once

#include <unicode/normalizer2.h>
#include <unicode/unistr.h>

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "launcher/GraphemeClusters.h"

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

    // Whether cluster `index` is a single plain space, the separator of words.
    bool isSpace(std::size_t index) const {
        const std::int32_t start = boundaries_[index];
        return boundaries_[index + 1] - start == 1 && units_[start] == u' ';
    }
    bool containsSpace() const;
    // Whether cluster `index` equals cluster `otherIndex` of `other`.
    bool clusterEquals(std::size_t index, const LauncherSearchText& other,
                       std::size_t otherIndex) const {
        const std::int32_t start = boundaries_[index];
        const std::int32_t length = boundaries_[index + 1] - start;
        const std::int32_t otherStart = other.boundaries_[otherIndex];
        if (other.boundaries_[otherIndex + 1] - otherStart != length) {
            return false;
        }
        for (std::int32_t offset = 0; offset < length; ++offset) {
            if (units_[start + offset] != other.units_[otherStart + offset]) {
                return false;
            }
        }
        return true;
    }
    // Whether all of `other`'s clusters stand here in order from cluster `index` on.
    bool containsAt(std::size_t index, const LauncherSearchText& other) const;

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
