#include "launcher/GraphemeClusters.h"

#include <unicode/brkiter.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>
#include <unicode/utext.h>
#include <unicode/utf16.h>
#include <unicode/utf8.h>

namespace orvane {

namespace {

// Code points of these kinds join no neighbour into a cluster, bar CR before LF, so text made
// only of them needs no break iterator: the common case, and the cheap one. All of ASCII is of
// them, which spares the property look-up where it costs most.
bool standsAlone(UChar32 character) {
    if (character < 0x80) {
        return true;
    }
    switch (u_getIntPropertyValue(character, UCHAR_GRAPHEME_CLUSTER_BREAK)) {
        case U_GCB_OTHER:
        case U_GCB_CONTROL:
        case U_GCB_CR:
        case U_GCB_LF:
            return true;
        default:
            return false;
    }
}

}  // namespace

GraphemeClusters::GraphemeClusters() {
    UErrorCode status = U_ZERO_ERROR;
    breakIterator_.reset(
        icu::BreakIterator::createCharacterInstance(icu::Locale::getRoot(), status));
    if (U_FAILURE(status)) {
        breakIterator_.reset();
    }
}

GraphemeClusters::~GraphemeClusters() = default;

std::size_t GraphemeClusters::lastClusterStart(std::string_view utf8) {
    if (utf8.empty()) {
        return 0;
    }
    const auto length = static_cast<std::int32_t>(utf8.size());
    std::int32_t start = length;
    if (breakIterator_ != nullptr) {
        UErrorCode status = U_ZERO_ERROR;
        UText text = UTEXT_INITIALIZER;
        utext_openUTF8(&text, utf8.data(), length, &status);
        breakIterator_->setText(&text, status);
        if (U_SUCCESS(status)) {
            breakIterator_->last();
            start = breakIterator_->previous();
        }
        utext_close(&text);
    }
    if (start == length || start < 0) {
        U8_BACK_1(reinterpret_cast<const std::uint8_t*>(utf8.data()), 0, start);
    }
    return static_cast<std::size_t>(start);
}

void GraphemeClusters::clusterBoundaries(const icu::UnicodeString& text,
                                         std::vector<std::int32_t>& boundaries) {
    boundaries.clear();
    const std::int32_t length = text.length();
    const char16_t* units = text.getBuffer();
    bool simple = true;
    for (std::int32_t index = 0; index < length;) {
        boundaries.push_back(index);
        UChar32 character = 0;
        U16_NEXT(units, index, length, character);
        const bool crBeforeLf = character == u'\r' && index < length && units[index] == u'\n';
        // Without break rules, code points stand in for clusters.
        if (breakIterator_ != nullptr && (crBeforeLf || !standsAlone(character))) {
            simple = false;
            break;
        }
    }
    if (!simple) {
        boundaries.clear();
        breakIterator_->setText(text);
        for (std::int32_t boundary = breakIterator_->first();
             boundary != icu::BreakIterator::DONE && boundary < length;
             boundary = breakIterator_->next()) {
            boundaries.push_back(boundary);
        }
    }
    boundaries.push_back(length);
}

}  // namespace orvane
