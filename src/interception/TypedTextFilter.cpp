#include "interception/TypedTextFilter.h"

#include <unicode/brkiter.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>

#include "core/Logger.h"

namespace orvane {

namespace {

// A character with any such scalar goes whole: controls, and the accents and modifiers a dead key
// types on its own. Half a surrogate pair, cut off by the length limit, is no character at all.
bool isDroppedScalar(UChar32 scalar) {
    if (scalar < 32 || scalar == 127 || U_IS_SURROGATE(scalar)) {
        return true;
    }
    switch (u_charType(scalar)) {
        case U_MODIFIER_LETTER:
        case U_NON_SPACING_MARK:
        case U_COMBINING_SPACING_MARK:
        case U_ENCLOSING_MARK:
        case U_MODIFIER_SYMBOL:
            return true;
        default:
            return false;
    }
}

}  // namespace

TypedTextFilter::TypedTextFilter() {
    UErrorCode status = U_ZERO_ERROR;
    characterBreakIterator_.reset(
        icu::BreakIterator::createCharacterInstance(icu::Locale::getRoot(), status));
    if (U_FAILURE(status)) {
        characterBreakIterator_.reset();
        Logger::forCategory(LogCategory::shortcutinterception)
            .error(
                "character break iterator unavailable (%{public}s); typed text is read by code "
                "point",
                u_errorName(status));
    }
}

TypedTextFilter::~TypedTextFilter() = default;

std::string TypedTextFilter::filter(std::u16string_view typed) {
    std::string kept;
    if (typed.empty()) {
        return kept;
    }
    const icu::UnicodeString text(false, typed.data(), static_cast<int32_t>(typed.size()));

    auto keepRange = [&](int32_t start, int32_t end) {
        for (int32_t index = start; index < end;) {
            const UChar32 scalar = text.char32At(index);
            if (isDroppedScalar(scalar)) {
                return;
            }
            index += U16_LENGTH(scalar);
        }
        text.tempSubStringBetween(start, end).toUTF8String(kept);
    };

    if (!characterBreakIterator_) {
        for (int32_t index = 0; index < text.length();) {
            const int32_t next = index + U16_LENGTH(text.char32At(index));
            keepRange(index, next);
            index = next;
        }
        return kept;
    }
    characterBreakIterator_->setText(text);
    int32_t start = characterBreakIterator_->first();
    for (int32_t end = characterBreakIterator_->next(); end != icu::BreakIterator::DONE;
         start = end, end = characterBreakIterator_->next()) {
        keepRange(start, end);
    }
    return kept;
}

}  // namespace orvane
