#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <string>
#include <tuple>
#include <vector>

#include "platform/simulated/SimulatedNotificationCenter.h"
#include "platform/simulated/SimulatedUserDefaults.h"
#include "preferences/PreferencesStore.h"
#include "preferences/SettingsPane.h"
#include "support/TakeLog.h"

namespace orvane {
namespace {

using Lines = std::vector<std::string>;

SwitcherPreferences changedRecord() {
    SwitcherPreferences record;
    record.shortcutConfiguration.holdModifier = SwitcherHoldModifier::control;
    record.cardSize = SwitcherCardSize::large;
    record.thumbnailsEnabled = false;
    return record;
}

std::string encoded(const SwitcherPreferences& record) {
    return *SwitcherPreferencesCodec::encode(record).bytes;
}

class PreferencesStoreTest : public ::testing::Test {
  protected:
    std::optional<std::string> stored() const {
        return defaults->dataForKey(preferencesDefaultsKey);
    }
    // The two records the tests store by name, anything else as it is.
    std::string name(const std::optional<std::string>& bytes) const {
        return bytes == encoded({})                ? "default"
               : bytes == encoded(changedRecord()) ? "changed"
                                                   : *bytes;
    }

    std::shared_ptr<SimulatedUserDefaults> defaults = std::make_shared<SimulatedUserDefaults>();
    ScopedLogCapture capture;
};

TEST_F(PreferencesStoreTest, LoadsTheStoredRecordOrSilentlyTheDefaults) {
    EXPECT_EQ(PreferencesStore(defaults).preferences(), SwitcherPreferences{});
    EXPECT_EQ(stored(), std::nullopt) << "a first start writes nothing";

    defaults->setData(preferencesDefaultsKey,
                      R"({"cardSize":"small","shortcutConfiguration":{"triggerKeyCode":50}})");
    SwitcherPreferences expected;
    expected.cardSize = SwitcherCardSize::small;
    expected.shortcutConfiguration.triggerKeyCode = 50;
    EXPECT_EQ(PreferencesStore(defaults).preferences(), expected);

    // Neither JSON nor a decodable record, and a single bad value loses every field.
    for (const std::string bad : {"not json", R"({"thumbnailsEnabled":false,"cardSize":"huge"})"}) {
        defaults->setData(preferencesDefaultsKey, bad);
        EXPECT_EQ(PreferencesStore(defaults).preferences(), SwitcherPreferences{}) << bad;
        EXPECT_EQ(stored(), bad);
    }
    EXPECT_TRUE(capture.sink().records().empty());
}

TEST_F(PreferencesStoreTest, WritesEveryRecordAndAnnouncesChangesOnEitherSideOfTheWrite) {
    defaults->setData(preferencesDefaultsKey, "bad");
    PreferencesStore store(defaults);
    Lines events;
    const auto note = [&](std::string when) {
        return [&, when](const SwitcherPreferences& told) {
            events.push_back(when + " " + name(encoded(told)) + ", stored " + name(stored()));
        };
    };
    store.observePreferencesWillChange(note("will"));
    const auto token = store.observePreferences(note("did"));

    // Bad bytes survive until the first write, even of an equal record, which nobody hears of.
    store.setPreferences(SwitcherPreferences{});
    EXPECT_EQ(stored(), encoded({}));
    store.setPreferences(changedRecord());
    EXPECT_EQ(store.preferences(), changedRecord());
    const auto writes = defaults->writeCount(preferencesDefaultsKey);
    store.setPreferences(changedRecord());
    EXPECT_EQ(defaults->writeCount(preferencesDefaultsKey), writes + 1);
    // A change in place is announced without comparing.
    store.modifyPreferences([](SwitcherPreferences&) {});
    store.removePreferencesObserver(token);
    store.modifyPreferences([](SwitcherPreferences& record) { record = {}; });
    EXPECT_EQ(stored(), encoded({}));
    EXPECT_EQ(events, (Lines{"will default, stored default", "did changed, stored changed",
                             "will changed, stored changed", "did changed, stored changed",
                             "will changed, stored changed"}));
}

TEST_F(PreferencesStoreTest, EncodeFailureIsLoggedAndLeavesStoredBytesAlone) {
    defaults->setData(preferencesDefaultsKey, "old bytes");
    bool failing = true;
    PreferencesStore store(defaults, [&](const SwitcherPreferences& record) {
        return failing ? SwitcherPreferencesCodec::EncodeResult{std::nullopt, "encoder refused"}
                       : SwitcherPreferencesCodec::encode(record);
    });
    int told = 0;
    store.observePreferences([&](const SwitcherPreferences&) { ++told; });

    store.setPreferences(changedRecord());
    EXPECT_EQ(takeLog(capture, LogCategory::preferences, LogLevel::error),
              "failed to persist preferences: encoder refused\n");
    EXPECT_EQ(stored(), "old bytes");
    EXPECT_EQ(store.preferences(), changedRecord());
    EXPECT_EQ(told, 1);
    // No retry of its own: the next write tries again.
    failing = false;
    store.setPreferences(changedRecord());
    EXPECT_EQ(stored(), encoded(changedRecord()));
    EXPECT_TRUE(capture.sink().records().empty());
}

TEST(SettingsPaneTest, RawValuesTitlesAndOrder) {
    const std::vector<std::tuple<SettingsPane, std::string, std::string>> table{
        {SettingsPane::general, "general", "General"},
        {SettingsPane::shortcuts, "shortcuts", "Shortcuts"},
        {SettingsPane::about, "about", "About"}};
    ASSERT_EQ(allSettingsPanes.size(), table.size());
    for (std::size_t index = 0; index < table.size(); ++index) {
        const auto& [pane, raw, title] = table[index];
        EXPECT_EQ(allSettingsPanes[index], pane);
        EXPECT_EQ(rawValue(pane), raw);
        EXPECT_EQ(displayTitle(pane), title);
        EXPECT_EQ(settingsPaneFromRawValue(raw), pane);
    }
    EXPECT_FALSE(settingsPaneFromRawValue("General").has_value());
}

TEST(SettingsPaneTest, OpenPostsNotificationBeforeActivatingAndLogsUnhandledAction) {
    ScopedLogCapture capture;
    SimulatedNotificationCenter center;
    Lines events;
    center.addObserver("brimcote.orvane.open-settings-pane", [&](const PlatformNotification& note) {
        EXPECT_FALSE(note.application.has_value());
        EXPECT_EQ(note.userInfo, (std::map<std::string, std::string>{{"pane", "shortcuts"}}));
        events.push_back("posted");
    });
    for (bool handled : {true, false}) {
        openSettingsPane(
            SettingsPane::shortcuts, center, [&] { events.push_back("activated"); },
            [&] {
                events.push_back("action");
                return handled;
            });
        EXPECT_EQ(events, (Lines{"posted", "activated", "action"}));
        events.clear();
    }
    EXPECT_EQ(takeLog(capture, LogCategory::preferences, LogLevel::error),
              "showSettingsWindow: action was not handled\n");
}

}  // namespace
}  // namespace orvane
