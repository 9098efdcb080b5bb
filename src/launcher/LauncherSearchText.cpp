#include "launcher/LauncherSearchText.h"

#include <unicode/uchar.h>
#include <unicode/ustring.h>
#include <unicode/utf16.h>

#include <algorithm>

namespace orvane {

namespace {

bool isAscii(std::string_view text) {
    return std::all_of(text.begin(), text.end(),
                       [](char byte) { return static_cast<unsigned char>(byte) < 0x80; });
}

// The trimmed set: spaces of every width, and the tab; line ends stay.
bool isTrimmed(UChar32 character) {
    return character == u'\t' || u_charType(character) == U_SPACE_SEPARATOR;
}

}  // namespace

LauncherSearchText::LauncherSearchText() {
    UErrorCode status = U_ZERO_ERROR;
    decomposition_ = icu::Normalizer2::getNFDInstance(status);
    if (U_FAILURE(status)) {
        decomposition_ = nullptr;
    }
}

void LauncherSearchText::assign(std::string_view utf8) {
    if (isAscii(utf8)) {
        foldAscii(utf8);
    } else {
        foldUnicode(utf8);
    }
    trim();
    units_ = folded_.getBuffer();
    graphemeClusters_.clusterBoundaries(folded_, boundaries_);
}

// ASCII needs no decomposition and has no marks; its case folding is lower-casing.
void LauncherSearchText::foldAscii(std::string_view utf8) {
    const auto length = static_cast<std::int32_t>(utf8.size());
    if (length == 0) {
        folded_.remove();
        return;
    }
    char16_t* units = folded_.getBuffer(length);
    for (std::int32_t index = 0; index < length; ++index) {
        const char byte = utf8[static_cast<std::size_t>(index)];
        units[index] = static_cast<char16_t>(byte >= 'A' && byte <= 'Z' ? byte - 'A' + 'a' : byte);
    }
    folded_.releaseBuffer(length);
}

void LauncherSearchText::foldUnicode(std::string_view utf8) {
    const auto length = static_cast<std::int32_t>(utf8.size());
    // UTF-16 never needs more units than UTF-8 has bytes.
    char16_t* units = decoded_.getBuffer(length);
    std::int32_t decodedLength = 0;
    UErrorCode status = U_ZERO_ERROR;
    u_strFromUTF8WithSub(units, length, &decodedLength, utf8.data(), length, 0xFFFD, nullptr,
                         &status);
    decoded_.releaseBuffer(U_SUCCESS(status) ? decodedLength : 0);

    // Canonical caseless form, NFD(fold(NFD(text))), so that composed and decomposed input agree.
    if (decomposition_ != nullptr) {
        decomposition_->normalize(decoded_, decomposed_, status);
        decomposed_.foldCase();
        decomposition_->normalize(decomposed_, decoded_, status);
    } else {
        decoded_.foldCase();
    }
    if (U_FAILURE(status)) {
        decoded_.remove();
    }

    const std::int32_t decomposedLength = decoded_.length();
    const char16_t* source = decoded_.getBuffer();
    char16_t* target = folded_.getBuffer(std::max<std::int32_t>(decomposedLength, 1));
    std::int32_t targetLength = 0;
    for (std::int32_t index = 0; index < decomposedLength;) {
        const std::int32_t start = index;
        UChar32 character = 0;
        U16_NEXT(source, index, decomposedLength, character);
        if (u_charType(character) != U_NON_SPACING_MARK) {
            for (std::int32_t unit = start; unit < index; ++unit) {
                target[targetLength++] = source[unit];
            }
        }
    }
    folded_.releaseBuffer(targetLength);
}

void LauncherSearchText::trim() {
    const char16_t* units = folded_.getBuffer();
    const std::int32_t length = folded_.length();
    std::int32_t start = 0;
    while (start < length) {
        std::int32_t next = start;
        UChar32 character = 0;
        U16_NEXT(units, next, length, character);
        if (!isTrimmed(character)) {
            break;
        }
        start = next;
    }
    std::int32_t end = length;
    while (end > start) {
        std::int32_t previous = end;
        UChar32 character = 0;
        U16_PREV(units, start, previous, character);
        if (!isTrimmed(character)) {
            break;
        }
        end = previous;
    }
    if (start > 0 || end < length) {
        folded_.retainBetween(start, end);
    }
}

}  // namespace orvane
