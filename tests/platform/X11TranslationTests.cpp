// The backend's tables and parsers that decide what a key or a client's property means; the rest
// of the backend is tested on a real desktop (tests/desktop).

#include <gtest/gtest.h>

#include "platform/linux/XkbKeyTranslation.h"
#include "platform/x11/X11PropertyParsing.h"
#include "platform/x11/XkbComposeInput.h"

namespace orvane {
namespace {

TEST(XkbKeyTranslation, PhysicalKeysMapBothWaysToTheStoredCodes) {
    const std::pair<const char*, std::uint16_t> keys[] = {
        {"TAB", 48},   {"SPCE", 49},  {"TLDE", 50},  {"RTRN", 36}, {"ESC", 53}, {"BKSP", 51},
        {"LEFT", 123}, {"RGHT", 124}, {"DOWN", 125}, {"UP", 126},  {"AC01", 0}, {"AD01", 12},
    };
    for (const auto& [name, code] : keys) {
        SCOPED_TRACE(name);
        EXPECT_EQ(XkbKeyTranslation::storedKeyCode(name), code);
        EXPECT_EQ(XkbKeyTranslation::xkbKeyName(code), name);
    }
    EXPECT_EQ(XkbKeyTranslation::storedKeyCode("LALT"), std::nullopt);
    EXPECT_EQ(XkbKeyTranslation::xkbKeyName(52), std::nullopt);
}

TEST(XkbKeyTranslation, ModifierMasksAndKeysymsBecomeFlags) {
    namespace flag = keyboard_event_flag;
    // Shift, Lock, Control, Mod1 (Alt), Mod2 (NumLock), Mod4 (Super).
    EXPECT_EQ(XkbKeyTranslation::flags(1 | 2 | 4 | 8 | 16 | 64),
              flag::shift | flag::control | flag::option | flag::command);
    EXPECT_EQ(XkbKeyTranslation::modifierMask(flag::option | flag::shift), 8 | 1);
    EXPECT_EQ(XkbKeyTranslation::modifierFlagOfKeysym(0xffe9), flag::option);   // Alt_L
    EXPECT_EQ(XkbKeyTranslation::modifierFlagOfKeysym(0xffe4), flag::control);  // Control_R
    EXPECT_EQ(XkbKeyTranslation::modifierFlagOfKeysym(0xfe03), 0u);  // ISO_Level3_Shift (AltGr)
    EXPECT_EQ(XkbKeyTranslation::modifierFlagOfKeysym('a'), 0u);
}

TEST(XkbComposeInput, DeadKeysAndComposeSequencesTypeWhatTheLocaleComposes) {
    auto* context = xkb_context_new(XKB_CONTEXT_NO_FLAGS);
    XkbComposeInput compose(context, "en_US.UTF-8");
    const auto type = [&](std::initializer_list<std::pair<xkb_keysym_t, const char*>> keys) {
        std::string typed;
        for (const auto& [keysym, own] : keys) {
            typed += compose.feed(keysym, own) + "|";
        }
        return typed;
    };
    EXPECT_EQ(type({{XKB_KEY_a, "a"}, {XKB_KEY_Shift_L, ""}, {XKB_KEY_B, "B"}}), "a||B|");
    EXPECT_EQ(type({{XKB_KEY_dead_acute, ""}, {XKB_KEY_e, "e"}}), "|é|");
    EXPECT_EQ(type({{XKB_KEY_Multi_key, ""}, {XKB_KEY_o, "o"}, {XKB_KEY_slash, "/"}}), "||ø|");
    // A key that ends no sequence cancels it, and typing goes on afresh.
    EXPECT_EQ(type({{XKB_KEY_dead_acute, ""}, {XKB_KEY_q, "q"}, {XKB_KEY_x, "x"}}), "||x|");
    compose.feed(XKB_KEY_dead_grave, "");
    compose.reset();
    EXPECT_EQ(type({{XKB_KEY_a, "a"}}), "a|");
    // Without a table for the locale, each key types its own text.
    XkbComposeInput none(context, "xx_NOWHERE");
    EXPECT_EQ(none.feed(XKB_KEY_dead_acute, "´"), "´");
    xkb_context_unref(context);
}

TEST(X11PropertyParsing, ClientPropertiesOfAnyShapeGiveBoundedValues) {
    const std::string longTitle(2000, 'x');
    auto bytes = [](const std::string& text) {
        return std::vector<std::uint8_t>(text.begin(), text.end());
    };
    EXPECT_EQ(X11PropertyParsing::boundedText(bytes(longTitle)).size(), 1024u);
    // Cut before an "é" that straddles the limit, never inside it.
    EXPECT_EQ(X11PropertyParsing::boundedText(bytes(std::string(1023, 'x') + "\xc3\xa9")).size(),
              1023u);
    EXPECT_EQ(X11PropertyParsing::boundedText(bytes(std::string("Inbox\0junk", 10))), "Inbox");
    EXPECT_EQ(X11PropertyParsing::windowClass(bytes(std::string("xterm\0XTerm\0", 12))), "XTerm");
    EXPECT_EQ(X11PropertyParsing::windowClass(bytes("no separator")), "");

    // A 16 and a 64 pixel icon: the 64 one suits a card; a lying size ends the list.
    std::vector<std::uint32_t> icons{16, 16};
    icons.resize(2 + 256, 0xff0000ff);
    icons.push_back(64);
    icons.push_back(64);
    icons.resize(icons.size() + 4096, 0xff00ff00);
    const auto best = X11PropertyParsing::bestIcon(icons, 64);
    ASSERT_TRUE(best.has_value());
    EXPECT_EQ(best->width, 64u);
    EXPECT_EQ(best->pixels.front(), 0xff00ff00u);
    EXPECT_EQ(X11PropertyParsing::bestIcon(icons, 8)->width, 16u);
    icons.push_back(100000);
    icons.push_back(100000);
    EXPECT_EQ(X11PropertyParsing::bestIcon(icons, 64)->width, 64u);
    EXPECT_EQ(X11PropertyParsing::bestIcon({0xffffffff, 0xffffffff, 1}, 64), std::nullopt);
    EXPECT_EQ(X11PropertyParsing::bestIcon({4, 4, 1, 2}, 64), std::nullopt);
    EXPECT_EQ(X11PropertyParsing::bestIcon({}, 64), std::nullopt);
}

}  // namespace
}  // namespace orvane
