#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <ostream>
#include <string>

#include "preferences/SwitcherPreferencesCodec.h"

namespace orvane {
namespace {

using ::testing::HasSubstr;
using ::testing::StartsWith;

constexpr const char* defaultText =
    R"({"shortcutConfiguration":{"holdModifier":"option","triggerKeyCode":48},)"
    R"("reverseCyclingEnabled":true,"sameApplicationCyclingEnabled":true,)"
    R"("thumbnailsEnabled":true,"overlayLayoutStyle":"row","cardSize":"medium",)"
    R"("menuBarIconVisible":true})";

// Every field away from its default, so a key written under the wrong name shows up.
const SwitcherPreferences everythingChanged{
    .shortcutConfiguration = {.holdModifier = SwitcherHoldModifier::control, .triggerKeyCode = 122},
    .reverseCyclingEnabled = false,
    .sameApplicationCyclingEnabled = false,
    .thumbnailsEnabled = false,
    .overlayLayoutStyle = SwitcherOverlayLayoutStyle::grid,
    .cardSize = SwitcherCardSize::large,
    .menuBarIconVisible = false,
};

TEST(SwitcherPreferencesCodecEncode, WritesEveryKeyCompactlyInStoredOrder) {
    const auto defaults = SwitcherPreferencesCodec::encode(SwitcherPreferences{});
    ASSERT_TRUE(defaults.bytes.has_value()) << defaults.error;
    EXPECT_EQ(*defaults.bytes, defaultText);

    const auto changed = SwitcherPreferencesCodec::encode(everythingChanged);
    ASSERT_TRUE(changed.bytes.has_value()) << changed.error;
    EXPECT_EQ(*changed.bytes,
              R"({"shortcutConfiguration":{"holdModifier":"control","triggerKeyCode":122},)"
              R"("reverseCyclingEnabled":false,"sameApplicationCyclingEnabled":false,)"
              R"("thumbnailsEnabled":false,"overlayLayoutStyle":"grid","cardSize":"large",)"
              R"("menuBarIconVisible":false})");
}

TEST(SwitcherPreferencesCodecRoundTrip, EveryEnumerationCombinationAndBooleanPattern) {
    for (auto modifier : allSwitcherHoldModifiers) {
        for (auto style : allSwitcherOverlayLayoutStyles) {
            for (auto size : allSwitcherCardSizes) {
                for (unsigned flags = 0; flags < 16; ++flags) {
                    const SwitcherPreferences original{
                        .shortcutConfiguration = {.holdModifier = modifier,
                                                  .triggerKeyCode = StoredKeyCode(flags * 4096)},
                        .reverseCyclingEnabled = (flags & 1) != 0,
                        .sameApplicationCyclingEnabled = (flags & 2) != 0,
                        .thumbnailsEnabled = (flags & 4) != 0,
                        .overlayLayoutStyle = style,
                        .cardSize = size,
                        .menuBarIconVisible = (flags & 8) != 0,
                    };
                    const auto encoded = SwitcherPreferencesCodec::encode(original);
                    ASSERT_TRUE(encoded.bytes.has_value()) << encoded.error;
                    const auto decoded = SwitcherPreferencesCodec::decode(*encoded.bytes);
                    ASSERT_TRUE(decoded.preferences.has_value()) << decoded.error;
                    EXPECT_EQ(*decoded.preferences, original) << *encoded.bytes;
                }
            }
        }
    }
}

struct AcceptedCase {
    const char* name;
    const char* text;
    SwitcherPreferences expected;

    friend void PrintTo(const AcceptedCase& tested, std::ostream* out) { *out << tested.text; }
};

class SwitcherPreferencesCodecAccepts : public ::testing::TestWithParam<AcceptedCase> {};

TEST_P(SwitcherPreferencesCodecAccepts, DecodesToExpectedRecord) {
    const auto decoded = SwitcherPreferencesCodec::decode(GetParam().text);
    ASSERT_TRUE(decoded.preferences.has_value()) << decoded.error;
    EXPECT_EQ(*decoded.preferences, GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Stored, SwitcherPreferencesCodecAccepts,
    ::testing::Values(
        AcceptedCase{"EmptyObjectIsAllDefaults", "{}", {}},
        AcceptedCase{"TopLevelNullsAreDefaults",
                     R"({"shortcutConfiguration":null,"reverseCyclingEnabled":null,)"
                     R"("sameApplicationCyclingEnabled":null,"thumbnailsEnabled":null,)"
                     R"("overlayLayoutStyle":null,"cardSize":null,"menuBarIconVisible":null})",
                     {}},
        AcceptedCase{"NullLayoutIsRowWhileOthersKept",
                     R"({"overlayLayoutStyle":null,"cardSize":"large"})",
                     {.shortcutConfiguration = {}, .cardSize = SwitcherCardSize::large}},
        AcceptedCase{"EmptyShortcutIsDefaultShortcut", R"({"shortcutConfiguration":{}})", {}},
        AcceptedCase{"ShortcutWithOnlyKeyCodeHoldsOption",
                     R"({"shortcutConfiguration":{"triggerKeyCode":122}})",
                     {.shortcutConfiguration = {.triggerKeyCode = 122}}},
        AcceptedCase{"NestedNullModifierIsOption",
                     R"({"shortcutConfiguration":{"holdModifier":null,"triggerKeyCode":50}})",
                     {.shortcutConfiguration = {.triggerKeyCode = 50}}},
        AcceptedCase{
            "NestedNullKeyCodeIsTab",
            R"({"shortcutConfiguration":{"holdModifier":"control","triggerKeyCode":null}})",
            {.shortcutConfiguration = {.holdModifier = SwitcherHoldModifier::control}}},
        AcceptedCase{"MissingIconKeyKeepsOthersAndShowsIcon",
                     R"({"shortcutConfiguration":{"holdModifier":"control","triggerKeyCode":122},)"
                     R"("reverseCyclingEnabled":false,"sameApplicationCyclingEnabled":false,)"
                     R"("thumbnailsEnabled":false,"overlayLayoutStyle":"grid","cardSize":"large"})",
                     [] {
                         auto expected = everythingChanged;
                         expected.menuBarIconVisible = true;
                         return expected;
                     }()},
        AcceptedCase{
            "KeyOrderDoesNotMatter",
            R"({"menuBarIconVisible":false,"cardSize":"large","overlayLayoutStyle":"grid",)"
            R"("thumbnailsEnabled":false,"sameApplicationCyclingEnabled":false,)"
            R"("reverseCyclingEnabled":false,)"
            R"("shortcutConfiguration":{"triggerKeyCode":122,"holdModifier":"control"}})",
            everythingChanged},
        AcceptedCase{"UnknownKeysIgnoredAtBothLevels",
                     R"({"version":3,"shortcutConfiguration":{"extra":[1],"triggerKeyCode":7},)"
                     R"("thumbnailsEnabled":false,"future":{"a":"b"}})",
                     {.shortcutConfiguration = {.triggerKeyCode = 7}, .thumbnailsEnabled = false}},
        AcceptedCase{"LargestKeyCode",
                     R"({"shortcutConfiguration":{"triggerKeyCode":65535}})",
                     {.shortcutConfiguration = {.triggerKeyCode = 65535}}},
        AcceptedCase{"SmallestKeyCode",
                     R"({"shortcutConfiguration":{"triggerKeyCode":0}})",
                     {.shortcutConfiguration = {.triggerKeyCode = 0}}},
        AcceptedCase{"IntegralKeyCodeWrittenAsFraction",
                     R"({"shortcutConfiguration":{"triggerKeyCode":5.0e1}})",
                     {.shortcutConfiguration = {.triggerKeyCode = 50}}}),
    [](const auto& info) { return std::string(info.param.name); });

struct RejectedCase {
    const char* name;
    const char* text;
    // The reason must open with this, which names the failing key.
    const char* reasonPrefix;

    friend void PrintTo(const RejectedCase& tested, std::ostream* out) { *out << tested.text; }
};

class SwitcherPreferencesCodecRejects : public ::testing::TestWithParam<RejectedCase> {};

TEST_P(SwitcherPreferencesCodecRejects, FailsWholeRecordNamingTheKey) {
    const auto decoded = SwitcherPreferencesCodec::decode(GetParam().text);
    EXPECT_FALSE(decoded.preferences.has_value());
    EXPECT_THAT(decoded.error, StartsWith(GetParam().reasonPrefix));
}

constexpr const char* keyCode = "shortcutConfiguration.triggerKeyCode: ";
constexpr const char* modifier = "shortcutConfiguration.holdModifier: ";

INSTANTIATE_TEST_SUITE_P(
    Stored, SwitcherPreferencesCodecRejects,
    ::testing::Values(
        RejectedCase{"StringForBool", R"({"reverseCyclingEnabled":"true"})",
                     "reverseCyclingEnabled: "},
        RejectedCase{"NumberForBool", R"({"sameApplicationCyclingEnabled":1})",
                     "sameApplicationCyclingEnabled: "},
        RejectedCase{"ArrayForBool", R"({"menuBarIconVisible":[]})", "menuBarIconVisible: "},
        RejectedCase{"NumberForLayout", R"({"overlayLayoutStyle":1})", "overlayLayoutStyle: "},
        RejectedCase{"UnknownLayout", R"({"overlayLayoutStyle":"column"})", "overlayLayoutStyle: "},
        RejectedCase{"BoolForCardSize", R"({"cardSize":false})", "cardSize: "},
        RejectedCase{"CapitalisedModifier",
                     R"({"shortcutConfiguration":{"holdModifier":"Option"}})", modifier},
        RejectedCase{"PaddedModifier", R"({"shortcutConfiguration":{"holdModifier":"option "}})",
                     modifier},
        RejectedCase{"KeyCodeTooLarge", R"({"shortcutConfiguration":{"triggerKeyCode":65536}})",
                     keyCode},
        RejectedCase{"KeyCodeNegative", R"({"shortcutConfiguration":{"triggerKeyCode":-1}})",
                     keyCode},
        RejectedCase{"KeyCodeHuge", R"({"shortcutConfiguration":{"triggerKeyCode":1e300}})",
                     keyCode},
        RejectedCase{"KeyCodeFraction", R"({"shortcutConfiguration":{"triggerKeyCode":48.5}})",
                     keyCode},
        RejectedCase{"KeyCodeString", R"({"shortcutConfiguration":{"triggerKeyCode":"48"}})",
                     keyCode},
        RejectedCase{"KeyCodeBool", R"({"shortcutConfiguration":{"triggerKeyCode":true}})",
                     keyCode},
        RejectedCase{"ShortcutArray", R"({"shortcutConfiguration":[]})", "shortcutConfiguration: "},
        RejectedCase{"ShortcutString", R"({"shortcutConfiguration":"option"})",
                     "shortcutConfiguration: "},
        // Table order decides which failure is reported, not the order in the text.
        RejectedCase{"FirstFailingKeyInTableOrder",
                     R"({"cardSize":"huge","shortcutConfiguration":{"triggerKeyCode":-1},)"
                     R"("reverseCyclingEnabled":"yes"})",
                     keyCode},
        RejectedCase{"TopLevelArray", "[]", "top level: "},
        RejectedCase{"TopLevelNull", "null", "top level: "},
        RejectedCase{"TopLevelString", R"("{}")", "top level: "},
        RejectedCase{"Garbage", "\x01\xff not json", "not valid JSON: "},
        RejectedCase{"Empty", "", "not valid JSON: "},
        RejectedCase{"Truncated", R"({"cardSize":"large")", "not valid JSON: "},
        RejectedCase{"TrailingText", "{} {}", "not valid JSON: "}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(SwitcherPreferencesCodecFailureReason, BadValueDiscardsEverythingElseStored) {
    const auto decoded =
        SwitcherPreferencesCodec::decode(R"({"thumbnailsEnabled":false,"cardSize":"huge"})");
    EXPECT_FALSE(decoded.preferences.has_value());
    EXPECT_EQ(decoded.error, R"(cardSize: "huge" is not one of small, medium, large)");
}

TEST(SwitcherPreferencesCodecFailureReason, ReasonQuotesTheOffendingValue) {
    EXPECT_THAT(SwitcherPreferencesCodec::decode(R"({"overlayLayoutStyle":"Row"})").error,
                HasSubstr(R"("Row" is not one of row, grid)"));
    EXPECT_THAT(
        SwitcherPreferencesCodec::decode(R"({"shortcutConfiguration":{"triggerKeyCode":48.5}})")
            .error,
        HasSubstr("48.5"));
    EXPECT_THAT(SwitcherPreferencesCodec::decode(R"({"thumbnailsEnabled":"no"})").error,
                HasSubstr("found string"));
}

}  // namespace
}  // namespace orvane
