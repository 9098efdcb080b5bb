#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "preferences/SwitcherPreferencesCodec.h"

namespace orvane {
namespace {

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

TEST(SwitcherPreferencesCodecDecode, AcceptsStoredVariantsOfTheRecord) {
    struct Case {
        const char* text;
        SwitcherPreferences expected;
    };
    auto missingIcon = everythingChanged;
    missingIcon.menuBarIconVisible = true;
    const Case cases[] = {
        {"{}", {}},
        {R"({"shortcutConfiguration":null,"reverseCyclingEnabled":null,)"
         R"("sameApplicationCyclingEnabled":null,"thumbnailsEnabled":null,)"
         R"("overlayLayoutStyle":null,"cardSize":null,"menuBarIconVisible":null})",
         {}},
        {R"({"overlayLayoutStyle":null,"cardSize":"large"})",
         {.shortcutConfiguration = {}, .cardSize = SwitcherCardSize::large}},
        {R"({"shortcutConfiguration":{}})", {}},
        {R"({"shortcutConfiguration":{"triggerKeyCode":122}})",
         {.shortcutConfiguration = {.triggerKeyCode = 122}}},
        {R"({"shortcutConfiguration":{"holdModifier":null,"triggerKeyCode":50}})",
         {.shortcutConfiguration = {.triggerKeyCode = 50}}},
        {R"({"shortcutConfiguration":{"holdModifier":"control","triggerKeyCode":null}})",
         {.shortcutConfiguration = {.holdModifier = SwitcherHoldModifier::control}}},
        {R"({"shortcutConfiguration":{"holdModifier":"control","triggerKeyCode":122},)"
         R"("reverseCyclingEnabled":false,"sameApplicationCyclingEnabled":false,)"
         R"("thumbnailsEnabled":false,"overlayLayoutStyle":"grid","cardSize":"large"})",
         missingIcon},
        // Key order does not matter.
        {R"({"menuBarIconVisible":false,"cardSize":"large","overlayLayoutStyle":"grid",)"
         R"("thumbnailsEnabled":false,"sameApplicationCyclingEnabled":false,)"
         R"("reverseCyclingEnabled":false,)"
         R"("shortcutConfiguration":{"triggerKeyCode":122,"holdModifier":"control"}})",
         everythingChanged},
        // Unknown keys are ignored at both levels.
        {R"({"version":3,"shortcutConfiguration":{"extra":[1],"triggerKeyCode":7},)"
         R"("thumbnailsEnabled":false,"future":{"a":"b"}})",
         {.shortcutConfiguration = {.triggerKeyCode = 7}, .thumbnailsEnabled = false}},
        {R"({"shortcutConfiguration":{"triggerKeyCode":65535}})",
         {.shortcutConfiguration = {.triggerKeyCode = 65535}}},
        {R"({"shortcutConfiguration":{"triggerKeyCode":0}})",
         {.shortcutConfiguration = {.triggerKeyCode = 0}}},
        {R"({"shortcutConfiguration":{"triggerKeyCode":5.0e1}})",
         {.shortcutConfiguration = {.triggerKeyCode = 50}}},
    };
    for (const auto& testCase : cases) {
        SCOPED_TRACE(testCase.text);
        const auto decoded = SwitcherPreferencesCodec::decode(testCase.text);
        ASSERT_TRUE(decoded.preferences.has_value()) << decoded.error;
        EXPECT_EQ(*decoded.preferences, testCase.expected);
    }
}

// One bad value discards everything else stored; the reason names the key and quotes the value.
TEST(SwitcherPreferencesCodecDecode, RejectsTheWholeRecordNamingTheFirstFailingKey) {
    const std::string keyCode = "shortcutConfiguration.triggerKeyCode: ";
    const std::string modifier = "shortcutConfiguration.holdModifier: ";
    const std::string notBoolean = ": expected a boolean, found ";
    const std::pair<const char*, std::string> cases[] = {
        {R"({"reverseCyclingEnabled":"true"})", "reverseCyclingEnabled" + notBoolean + "string"},
        {R"({"sameApplicationCyclingEnabled":1})", "sameApplicationCyclingEnabled: "},
        {R"({"menuBarIconVisible":[]})", "menuBarIconVisible: "},
        {R"({"thumbnailsEnabled":"no"})", "thumbnailsEnabled" + notBoolean + "string"},
        {R"({"overlayLayoutStyle":1})", "overlayLayoutStyle: "},
        {R"({"overlayLayoutStyle":"column"})", "overlayLayoutStyle: "},
        {R"({"overlayLayoutStyle":"Row"})", R"(overlayLayoutStyle: "Row" is not one of row, grid)"},
        {R"({"cardSize":false})", "cardSize: expected a string, found boolean"},
        {R"({"thumbnailsEnabled":false,"cardSize":"huge"})",
         R"(cardSize: "huge" is not one of small, medium, large)"},
        {R"({"shortcutConfiguration":{"holdModifier":"Option"}})", modifier},
        {R"({"shortcutConfiguration":{"holdModifier":"option "}})", modifier},
        {R"({"shortcutConfiguration":{"triggerKeyCode":65536}})",
         keyCode + "65536 is not an integer from 0 to 65535"},
        {R"({"shortcutConfiguration":{"triggerKeyCode":-1}})", keyCode},
        {R"({"shortcutConfiguration":{"triggerKeyCode":1e300}})", keyCode},
        {R"({"shortcutConfiguration":{"triggerKeyCode":48.5}})",
         keyCode + "48.5 is not an integer from 0 to 65535"},
        {R"({"shortcutConfiguration":{"triggerKeyCode":"48"}})", keyCode},
        {R"({"shortcutConfiguration":{"triggerKeyCode":true}})", keyCode},
        {R"({"shortcutConfiguration":[]})", "shortcutConfiguration: "},
        {R"({"shortcutConfiguration":"option"})", "shortcutConfiguration: "},
        // Table order decides which failure is reported, not the order in the text.
        {R"({"cardSize":"huge","shortcutConfiguration":{"triggerKeyCode":-1},)"
         R"("reverseCyclingEnabled":"yes"})",
         keyCode},
        {"[]", "top level: expected an object, found array"},
        {"null", "top level: "},
        {R"("{}")", "top level: "},
        {"\x01\xff not json", "not valid JSON: "},
        {"", "not valid JSON: "},
        {R"({"cardSize":"large")", "not valid JSON: "},
        {"{} {}", "not valid JSON: "},
        // Beyond a double's range the JSON library raises something other than a parse error.
        {R"({"shortcutConfiguration":{"triggerKeyCode":1e420}})", "not valid JSON: "},
        {R"({"cardSize":"small","menuBarIconVisible":-1e999})", "not valid JSON: "},
    };
    for (const auto& [text, reason] : cases) {
        SCOPED_TRACE(text);
        const auto decoded = SwitcherPreferencesCodec::decode(text);
        EXPECT_FALSE(decoded.preferences.has_value());
        EXPECT_THAT(decoded.error, StartsWith(reason));
    }
}

}  // namespace
}  // namespace orvane
