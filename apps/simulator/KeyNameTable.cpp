#include "KeyNameTable.h"

#include <charconv>

namespace orvane::simulator {

namespace {

struct NamedKey {
    std::string_view name;
    EventKeyCode keyCode;
    std::u16string_view text;
    std::u16string_view shiftedText;
};

// The ANSI layout's virtual key codes; text as the US layout types it.
constexpr NamedKey namedKeys[] = {
    {"a", 0, u"a", u"A"},
    {"s", 1, u"s", u"S"},
    {"d", 2, u"d", u"D"},
    {"f", 3, u"f", u"F"},
    {"h", 4, u"h", u"H"},
    {"g", 5, u"g", u"G"},
    {"z", 6, u"z", u"Z"},
    {"x", 7, u"x", u"X"},
    {"c", 8, u"c", u"C"},
    {"v", 9, u"v", u"V"},
    {"b", 11, u"b", u"B"},
    {"q", 12, u"q", u"Q"},
    {"w", 13, u"w", u"W"},
    {"e", 14, u"e", u"E"},
    {"r", 15, u"r", u"R"},
    {"y", 16, u"y", u"Y"},
    {"t", 17, u"t", u"T"},
    {"1", 18, u"1", u"!"},
    {"2", 19, u"2", u"@"},
    {"3", 20, u"3", u"#"},
    {"4", 21, u"4", u"$"},
    {"6", 22, u"6", u"^"},
    {"5", 23, u"5", u"%"},
    {"equal", 24, u"=", u"+"},
    {"9", 25, u"9", u"("},
    {"7", 26, u"7", u"&"},
    {"minus", 27, u"-", u"_"},
    {"8", 28, u"8", u"*"},
    {"0", 29, u"0", u")"},
    {"o", 31, u"o", u"O"},
    {"u", 32, u"u", u"U"},
    {"i", 34, u"i", u"I"},
    {"p", 35, u"p", u"P"},
    {"return", 36, u"\r", u"\r"},
    {"l", 37, u"l", u"L"},
    {"j", 38, u"j", u"J"},
    {"k", 40, u"k", u"K"},
    {"comma", 43, u",", u"<"},
    {"slash", 44, u"/", u"?"},
    {"n", 45, u"n", u"N"},
    {"m", 46, u"m", u"M"},
    {"period", 47, u".", u">"},
    {"tab", 48, u"\t", u"\t"},
    {"space", 49, u" ", u" "},
    {"grave", 50, u"`", u"~"},
    {"delete", 51, u"\x7f", u"\x7f"},
    {"escape", 53, u"\x1b", u"\x1b"},
    {"command", 55, u"", u""},
    {"shift", 56, u"", u""},
    {"option", 58, u"", u""},
    {"control", 59, u"", u""},
    {"enter", 76, u"\x03", u"\x03"},
    {"left", 123, u"\uF702", u"\uF702"},
    {"right", 124, u"\uF703", u"\uF703"},
    {"down", 125, u"\uF701", u"\uF701"},
    {"up", 126, u"\uF700", u"\uF700"},
    {"semicolon", 41, u";", u":"},
    {"quote", 39, u"'", u"\""},
    {"leftbracket", 33, u"[", u"{"},
    {"rightbracket", 30, u"]", u"}"},
};

}  // namespace

std::optional<KeyNameTable::Key> KeyNameTable::lookUp(std::string_view name) {
    for (const auto& key : namedKeys) {
        if (key.name == name) {
            return Key{key.keyCode, std::u16string(key.text), std::u16string(key.shiftedText)};
        }
    }
    EventKeyCode code = 0;
    const auto* end = name.data() + name.size();
    auto [position, error] = std::from_chars(name.data(), end, code);
    if (name.empty() || error != std::errc{} || position != end || code < 0 || code > 0xFFFF) {
        return std::nullopt;
    }
    for (const auto& key : namedKeys) {
        if (key.keyCode == code) {
            return Key{code, std::u16string(key.text), std::u16string(key.shiftedText)};
        }
    }
    return Key{code, u"", u""};
}

std::string KeyNameTable::nameOf(EventKeyCode keyCode) {
    for (const auto& key : namedKeys) {
        if (key.keyCode == keyCode) {
            return std::string(key.name);
        }
    }
    return std::to_string(keyCode);
}

}  // namespace orvane::simulator
