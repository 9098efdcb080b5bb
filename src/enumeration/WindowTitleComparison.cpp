#include "enumeration/WindowTitleComparison.h"

#include <unicode/bytestream.h>
#include <unicode/normalizer2.h>
#include <unicode/stringpiece.h>

#include <algorithm>
#include <string>

namespace orvane {

namespace {

// Below U+0300 no character changes under NFC nor composes with what precedes it, and every
// byte of such text is below the first lead byte of U+0300.
bool isBelowFirstComposingCharacter(std::string_view text) {
    return std::all_of(text.begin(), text.end(),
                       [](char byte) { return static_cast<unsigned char>(byte) < 0xCC; });
}

const icu::Normalizer2* nfcNormalizer() {
    static const icu::Normalizer2* const normalizer = [] {
        UErrorCode status = U_ZERO_ERROR;
        const icu::Normalizer2* instance = icu::Normalizer2::getNFCInstance(status);
        return U_SUCCESS(status) ? instance : nullptr;
    }();
    return normalizer;
}

icu::StringPiece piece(std::string_view text) {
    return icu::StringPiece(text.data(), static_cast<int32_t>(text.size()));
}

bool isNormalized(const icu::Normalizer2& normalizer, std::string_view text) {
    UErrorCode status = U_ZERO_ERROR;
    const bool normalized = normalizer.isNormalizedUTF8(piece(text), status);
    return U_SUCCESS(status) && normalized;
}

std::string normalized(const icu::Normalizer2& normalizer, std::string_view text) {
    std::string result;
    icu::StringByteSink<std::string> sink(&result, static_cast<int32_t>(text.size()));
    UErrorCode status = U_ZERO_ERROR;
    normalizer.normalizeUTF8(0, piece(text), sink, nullptr, status);
    return U_SUCCESS(status) ? result : std::string(text);
}

}  // namespace

bool WindowTitleComparison::areCanonicallyEquivalent(std::string_view left,
                                                     std::string_view right) {
    if (left == right) {
        return true;
    }
    if (isBelowFirstComposingCharacter(left) && isBelowFirstComposingCharacter(right)) {
        return false;
    }
    const icu::Normalizer2* normalizer = nfcNormalizer();
    if (normalizer == nullptr) {
        return false;
    }
    // Distinct texts both in NFC are never equivalent: NFC is the one form of each class.
    if (isNormalized(*normalizer, left) && isNormalized(*normalizer, right)) {
        return false;
    }
    return normalized(*normalizer, left) == normalized(*normalizer, right);
}

}  // namespace orvane
