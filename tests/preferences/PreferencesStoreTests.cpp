#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <string>
#include <tuple>
#include <vector>

#include "core/ScopedLogCapture.h"
#include "platform/simulated/SimulatedNotificationCenter.h"
#include "platform/simulated/SimulatedUserDefaults.h"
#include "preferences/PreferencesStore.h"
#include "preferences/SettingsPane.h"

namespace orvane {
namespace {

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
    std::size_t writes() const { return defaults->writeCount(preferencesDefaultsKey); }

    std::shared_ptr<SimulatedUserDefaults> defaults = std::make_shared<SimulatedUserDefaults>();
    ScopedLogCapture capture;
};

TEST_F(PreferencesStoreTest, LoadsStoredRecordOrFallsBackToDefaultsSilently) {
    // A first start: no key, defaults, and the key stays absent.
    {
        PreferencesStore store(defaults);
        EXPECT_EQ(store.preferences(), SwitcherPreferences{});
        EXPECT_FALSE(stored().has_value());
    }
    defaults->setData(preferencesDefaultsKey,
                      R"({"cardSize":"small","shortcutConfiguration":{"triggerKeyCode":50}})");
    SwitcherPreferences expected;
    expected.cardSize = SwitcherCardSize::small;
    expected.shortcutConfiguration.triggerKeyCode = 50;
    EXPECT_EQ(PreferencesStore(defaults).preferences(), expected);

    // Neither JSON nor a decodable record, and a single bad value loses every field.
    for (const std::string bad : {"not json", R"({"thumbnailsEnabled":false,"cardSize":"huge"})"}) {
        defaults->setData(preferencesDefaultsKey, bad);
        const auto writesBefore = writes();
        PreferencesStore store(defaults);
        EXPECT_EQ(store.preferences(), SwitcherPreferences{}) << bad;
        EXPECT_EQ(stored(), bad);
        EXPECT_EQ(writes(), writesBefore);
    }
    EXPECT_TRUE(capture.sink().records().empty());
}

TEST_F(PreferencesStoreTest, BadBytesSurviveUntilFirstWriteEvenOfAnEqualRecord) {
    defaults->setData(preferencesDefaultsKey, R"({"cardSize":"huge"})");
    PreferencesStore store(defaults);
    int told = 0;
    store.observePreferences([&](const SwitcherPreferences&) { ++told; });
    store.observePreferencesWillChange([&](const SwitcherPreferences&) { ++told; });
    EXPECT_EQ(stored(), R"({"cardSize":"huge"})");

    store.setPreferences(SwitcherPreferences{});
    EXPECT_EQ(stored(), encoded(SwitcherPreferences{}));
    EXPECT_EQ(stored(),
              R"({"shortcutConfiguration":{"holdModifier":"option","triggerKeyCode":48},)"
              R"("reverseCyclingEnabled":true,"sameApplicationCyclingEnabled":true,)"
              R"("thumbnailsEnabled":true,"overlayLayoutStyle":"row","cardSize":"medium",)"
              R"("menuBarIconVisible":true})");
    EXPECT_EQ(told, 0);
    EXPECT_EQ(PreferencesStore(defaults).preferences(), SwitcherPreferences{});
}

TEST_F(PreferencesStoreTest, ChangeIsPersistedBetweenTheTwoNotices) {
    PreferencesStore store(defaults);
    store.setPreferences(SwitcherPreferences{});
    std::vector<std::string> events;
    store.observePreferencesWillChange([&](const SwitcherPreferences& current) {
        // Nothing has been written yet: the record still current is the stored one.
        EXPECT_EQ(stored(), encoded(current));
        events.push_back("will:" + stored().value_or("<absent>"));
    });
    const auto token = store.observePreferences([&](const SwitcherPreferences& current) {
        EXPECT_EQ(current, changedRecord());
        EXPECT_EQ(store.preferences(), changedRecord());
        events.push_back("did:" + stored().value_or("<absent>"));
    });

    store.setPreferences(changedRecord());
    EXPECT_EQ(events, (std::vector<std::string>{"will:" + encoded(SwitcherPreferences{}),
                                                "did:" + encoded(changedRecord())}));

    // An equal record is rewritten but announced to nobody.
    events.clear();
    const auto writesBefore = writes();
    store.setPreferences(changedRecord());
    EXPECT_TRUE(events.empty());
    EXPECT_EQ(writes(), writesBefore + 1);

    store.removePreferencesObserver(token);
    store.setPreferences(SwitcherPreferences{});
    EXPECT_EQ(events, std::vector<std::string>{"will:" + encoded(changedRecord())});
    EXPECT_EQ(stored(), encoded(SwitcherPreferences{}));
}

TEST_F(PreferencesStoreTest, InPlaceChangeAnnouncesWithoutComparing) {
    PreferencesStore store(defaults);
    std::vector<std::string> events;
    store.observePreferencesWillChange(
        [&](const SwitcherPreferences&) { events.push_back("will"); });
    store.observePreferences([&](const SwitcherPreferences&) { events.push_back("did"); });

    store.modifyPreferences([](SwitcherPreferences& record) { record.menuBarIconVisible = true; });
    EXPECT_EQ(events, (std::vector<std::string>{"will", "did"}));
    EXPECT_EQ(stored(), encoded(SwitcherPreferences{}));

    store.modifyPreferences([](SwitcherPreferences& record) {
        record.overlayLayoutStyle = SwitcherOverlayLayoutStyle::grid;
    });
    EXPECT_EQ(store.preferences().overlayLayoutStyle, SwitcherOverlayLayoutStyle::grid);
    EXPECT_EQ(PreferencesStore(defaults).preferences().overlayLayoutStyle,
              SwitcherOverlayLayoutStyle::grid);
    EXPECT_EQ(events.size(), 4u);
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
    const auto records = capture.sink().records();
    ASSERT_EQ(records.size(), 1u);
    EXPECT_EQ(records[0].category, LogCategory::preferences);
    EXPECT_EQ(records[0].level, LogLevel::error);
    EXPECT_EQ(records[0].message, "failed to persist preferences: encoder refused");
    EXPECT_EQ(stored(), "old bytes");
    EXPECT_EQ(store.preferences(), changedRecord());
    EXPECT_EQ(told, 1);

    // No retry of its own: the next write tries again.
    failing = false;
    store.setPreferences(changedRecord());
    EXPECT_EQ(stored(), encoded(changedRecord()));
    EXPECT_EQ(capture.sink().records().size(), 1u);
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
    std::vector<std::string> events;
    center.addObserver("brimcote.orvane.open-settings-pane", [&](const PlatformNotification& note) {
        EXPECT_FALSE(note.application.has_value());
        EXPECT_EQ(note.userInfo, (std::map<std::string, std::string>{{"pane", "shortcuts"}}));
        events.push_back("posted");
    });
    bool handled = true;
    const auto activate = [&] { events.push_back("activated"); };
    const auto show = [&] {
        events.push_back("action");
        return handled;
    };

    openSettingsPane(SettingsPane::shortcuts, center, activate, show);
    EXPECT_EQ(events, (std::vector<std::string>{"posted", "activated", "action"}));
    EXPECT_TRUE(capture.sink().records().empty());

    handled = false;
    openSettingsPane(SettingsPane::shortcuts, center, activate, show);
    EXPECT_EQ(events.size(), 6u);
    const auto records = capture.sink().records();
    ASSERT_EQ(records.size(), 1u);
    EXPECT_EQ(records[0].category, LogCategory::preferences);
    EXPECT_EQ(records[0].level, LogLevel::error);
    EXPECT_EQ(records[0].message, "showSettingsWindow: action was not handled");
}

}  // namespace
}  // namespace orvane
