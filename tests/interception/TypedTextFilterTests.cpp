#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "interception/TypedTextFilter.h"

namespace orvane {
namespace {

// Longer texts than one key event carries, to show the filter goes by whole characters.
TEST(TypedTextFilter, KeepsOrDropsWholeCharacters) {
    struct Case {
        const char* what;
        std::u16string typed;
        std::string kept;
    };
    const std::vector<Case> cases{
        {"dead accent then a letter it cannot compose with", u"\u00B4b", "b"},
        {"controls between letters go alone", u"a\u0008b\u001Bc\u007F", "abc"},
        {"CR LF is one character and goes whole", u"x\r\ny", "xy"},
        {"family joined by ZWJ", u"\U0001F468\u200D\U0001F469\u200D\U0001F467",
         "\U0001F468\u200D\U0001F469\u200D\U0001F467"},
        // Any mark or modifier scalar takes its whole character with it, base included.
        {"skin tone modifier (Sk) after its base", u"a\U0001F44D\U0001F3FD", "a"},
        {"emoji presentation selector (Mn)", u"\u2764\uFE0F!", "!"},
        {"keycap: enclosing mark (Me) after its base", u"1\uFE0F\u20E3", ""},
        {"Devanagari vowel sign (Mc) after its consonant", u"\u0915\u093F\u0915", "\u0915"},
        {"modifier letter (Lm)", u"\u02C6x", "x"},
        {"stray enclosing keycap", u"\u20E3", ""},
        {"stray skin tone", u"\U0001F3FD", ""},
        {"low surrogate without its high half", u"\xDE00z", "z"},
    };
    TypedTextFilter filter;
    for (const auto& testCase : cases) {
        SCOPED_TRACE(testCase.what);
        EXPECT_EQ(filter.filter(testCase.typed), testCase.kept);
    }
}

}  // namespace
}  // namespace orvane
