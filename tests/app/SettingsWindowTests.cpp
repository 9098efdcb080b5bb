// What the scenario transcripts cannot show of the Settings window and the menu: when the window
// title is set, that the About pane's poll runs exactly while the pane shows, that the menu is
// told of a permission change without being asked, and what a change the disk refuses shows.

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "app/OrvaneApp.h"
#include "core/ScopedLogCapture.h"
#include "simulator/SimulatedMachine.h"

namespace orvane {
namespace {

using simulator::SimulatedMachine;

class SettingsWindowTest : public testing::Test {
  protected:
    void SetUp() override {
        app = std::make_unique<OrvaneApp>(machine.platform());
        app->finishLaunching();
        settle();
        window = machine.application->addWindow("", window_style_mask::titled, false, true);
    }
    void settle() { machine.settle(); }
    std::string title() const { return machine.application->window(window)->title; }
    void postOpenSettings(std::map<std::string, std::string> userInfo) {
        machine.applicationNotifications->postNotification(
            {openSettingsPaneNotificationName, std::nullopt, std::move(userInfo)});
    }
    SettingsView& settings() { return *app->settingsView(); }

    ScopedLogCapture capture;
    SimulatedMachine machine;
    std::unique_ptr<OrvaneApp> app;
    PlatformWindowHandle window = 0;
};

TEST_F(SettingsWindowTest, TheTitleFollowsThePaneAfterTheUpdateAndOnlyWhileInAWindow) {
    settings().attach(window);
    EXPECT_EQ(title(), "");
    settle();
    EXPECT_EQ(title(), "Orvane Settings — General");

    postOpenSettings({{"pane", "shortcuts"}});
    EXPECT_EQ(settings().selectedPane().value(), SettingsPane::shortcuts);
    EXPECT_EQ(title(), "Orvane Settings — General") << "set during the update";
    settle();
    EXPECT_EQ(title(), "Orvane Settings — Shortcuts");

    for (const auto& ignored : std::vector<std::map<std::string, std::string>>{
             {{"pane", "Shortcuts"}}, {{"pane", "privacy"}}, {{"panel", "about"}}, {}}) {
        postOpenSettings(ignored);
        settle();
        EXPECT_EQ(settings().selectedPane().value(), SettingsPane::shortcuts);
    }

    settings().attach(std::nullopt);
    settings().select(SettingsPane::about);
    settle();
    EXPECT_EQ(title(), "Orvane Settings — Shortcuts") << "no window to title";
}

TEST_F(SettingsWindowTest, TheAboutPanePollsOnceASecondExactlyWhileItShows) {
    auto& about = settings().pane(SettingsPane::about);
    std::size_t redraws = 0;
    about.redraws().subscribe([&](const std::uint64_t&) { ++redraws; });
    const auto secondsOfPolling = [&](double seconds) {
        redraws = 0;
        machine.desktop->runLoop().advance(seconds);
        settle();
        return redraws;
    };

    settings().select(SettingsPane::about);
    EXPECT_EQ(secondsOfPolling(3.5), 0u) << "the window is not showing";
    settings().windowDidShow();
    EXPECT_EQ(secondsOfPolling(3.5), 3u);
    // Appearing again replaces the timer rather than adding a second one.
    about.appear();
    EXPECT_EQ(secondsOfPolling(3.5), 3u);
    settings().select(SettingsPane::general);
    EXPECT_EQ(secondsOfPolling(3.5), 0u);
    settings().select(SettingsPane::about);
    EXPECT_EQ(secondsOfPolling(2.5), 2u);
    settings().windowDidHide();
    EXPECT_EQ(secondsOfPolling(3.5), 0u);
}

TEST_F(SettingsWindowTest, TheMenuIsToldOfPermissionAndUpdaterChangesAndTheIconFollowsTheSetting) {
    auto& scene = app->menuBarScene();
    std::size_t redraws = 0;
    scene.content().redraws().subscribe([&](const std::uint64_t&) { ++redraws; });
    EXPECT_EQ(scene.content().entries()[2].text, "Accessibility permission granted");

    machine.setPermission(PermissionCapability::accessibility, false);
    // The coordinator reads the permissions again when the program comes forward.
    machine.applicationNotifications->postNotification({applicationDidBecomeActiveNotification});
    settle();
    EXPECT_GE(redraws, 1u);
    EXPECT_EQ(scene.content().entries()[2].text, "Open Accessibility Settings…");

    redraws = 0;
    machine.updater->setCanCheckForUpdates(!machine.updater->canCheckForUpdates());
    EXPECT_EQ(redraws, 1u);

    scene.setInserted(false);
    EXPECT_FALSE(app->delegate()->preferencesStore()->preferences().menuBarIconVisible);
    auto preferences = app->delegate()->preferencesStore()->preferences();
    preferences.menuBarIconVisible = true;
    app->delegate()->preferencesStore()->setPreferences(preferences);
    EXPECT_TRUE(scene.isInserted().value());
}

// A change the disk refuses is undone, so the control shows what is in effect, and the pane says
// why under that control's section; the next change that is kept clears the note.
TEST_F(SettingsWindowTest, AChangeTheDiskRefusesIsUndoneAndSaidBesideItsControl) {
    auto& general = settings().pane(SettingsPane::general);
    const auto layoutFooter = [&] {
        for (const auto& section : general.content().sections) {
            if (section.header == "Layout") {
                return std::get<PaneFootnote>(section.footer.front()).text;
            }
        }
        return std::string();
    };
    const auto store = app->delegate()->preferencesStore();
    machine.userDefaults->failWrites("cannot write prefs.json (Read-only file system)");
    EXPECT_TRUE(general.pick("Card size", 2));
    EXPECT_EQ(store->preferences().cardSize, SwitcherCardSize::medium);
    EXPECT_EQ(layoutFooter(),
              "This change could not be saved: cannot write prefs.json (Read-only file system). "
              "The setting shown is the one in effect.");

    machine.userDefaults->failWrites(std::nullopt);
    EXPECT_TRUE(general.pick("Card size", 2));
    EXPECT_EQ(store->preferences().cardSize, SwitcherCardSize::large);
    EXPECT_EQ(layoutFooter().find("could not be saved"), std::string::npos);
}

}  // namespace
}  // namespace orvane
