// Every text a Linux user reads, taken from the running program over the simulated machine and
// put through the Linux wording: the menu, the three panes, the welcome window, the overlay of the
// switcher and of the launcher, and the start log, each in the states that change its texts. None
// may name a macOS thing. The same texts in the identity wording must: the test reads real ones.

#include <gtest/gtest.h>

#include <memory>
#include <regex>
#include <string>
#include <vector>

#include "app/OrvaneApp.h"
#include "app/SettingsTextRenderer.h"
#include "core/ScopedLogCapture.h"
#include "core/WordedLogSink.h"
#include "overlay/FixedAdvanceOverlayTextMeasurer.h"
#include "overlay/OverlayTextRenderer.h"
#include "overlay/OverlayViewBuilder.h"
#include "platform/simulated/SimulatedKeyboardEvent.h"
#include "simulator/SimulatedMachine.h"
#include "support/SimulatedDesktopBuilders.h"

namespace orvane {
namespace {

using simulator::SimulatedMachine;

// Words and symbols of macOS, its frameworks and calls; permission names in any case.
const std::regex macOSWords(
    R"(\b(Option|Command|Mac|macOS|System Settings|System Preferences|[Mm]enu [Bb]ar|Bundle|)"
    R"(Finder|Dock|Spotlight|Sparkle|SkyLight|[Aa]ccessibility|[Ss]creen ?[Rr]ecording|)"
    R"(event tap|application(Did|Will)\w+|(AX|CG|NS|SL)[A-Z]\w+)\b|⌘|⌥)");

class LinuxWordingTest : public testing::Test {
  protected:
    void SetUp() override {
        for (ProcessIdentifier process : {400, 401}) {
            machine.desktop->launchApplication(
                simulatedApplication(process, process == 400 ? "Files" : "Terminal"));
            auto window = simulatedWindow(static_cast<WindowIdentifier>(process - 299), process);
            window.listTitle = window.accessibilityTitle = "notes.txt";
            machine.desktop->createWindow(window);
        }
        machine.desktop->focusWindow(101);
        // A first start on a Linux desktop: the chord is taken, nothing can be captured, and
        // there is no private focus route.
        machine.skyLight->frameworkMissing = true;
        machine.setPermission(PermissionCapability::accessibility, false);
        machine.setPermission(PermissionCapability::screenRecording, false);
        auto platform = machine.platform();
        platform.wording = Wording::linuxDesktop();
        app = std::make_unique<OrvaneApp>(platform);
        app->finishLaunching();
        settle();
    }
    void settle() { machine.settle(); }

    // What the windows show now: the menu, the panes, the welcome window when it is open.
    void readWindows() {
        for (const auto& entry : app->menuBarScene().content().entries()) {
            texts.push_back(entry.text);
        }
        for (const auto pane : allSettingsPanes) {
            for (const auto& line :
                 SettingsTextRenderer::paneLines(app->settingsView()->pane(pane).content())) {
                texts.push_back(line);
            }
        }
        if (auto view = app->delegate()->permissionOnboardingWindowController()->view()) {
            const auto content = view->content();
            for (const auto* text : {&content.title, &content.subtitle, &content.footnote}) {
                texts.push_back(text->text);
            }
            for (const auto& row : content.rows) {
                texts.insert(texts.end(), {row.title.text, row.description.text,
                                           row.action.text.text, row.action.accessibilityLabel});
            }
            for (const auto& button : content.buttons) {
                texts.push_back(button.title);
            }
        }
    }
    // The overlay as the desktop draws it, already in the wording it is built with.
    void readOverlay(const Wording& wording, std::vector<std::string>& into) {
        const OverlayViewBuilder builder(
            [](ProcessIdentifier, const std::string&) { return std::optional<ImageHandle>(); },
            std::make_shared<FixedAdvanceOverlayTextMeasurer>(), wording);
        into.push_back(OverlayTextRenderer::render(
            builder.build(*app->delegate()->overlayCoordinator()->viewModel(),
                          machine.overlayPanel->frame().size)));
    }

    ScopedLogCapture capture;
    SimulatedMachine machine;
    std::unique_ptr<OrvaneApp> app;
    std::vector<std::string> texts;
};

TEST_F(LinuxWordingTest, NoTextALinuxUserReadsNamesAMacOSThing) {
    // Not granted, before and after the row's first button; then granted.
    readWindows();
    app->delegate()->permissionOnboardingWindowController()->view()->pressRowAction(
        PermissionCapability::accessibility);
    settle();
    readWindows();
    machine.setPermission(PermissionCapability::accessibility, true);
    machine.setPermission(PermissionCapability::screenRecording, true);
    app->delegate()->permissionStatusCoordinator()->refresh();
    machine.desktop->runLoop().advance(OrvaneApplicationDelegate::interceptionRetryInterval);
    settle();
    readWindows();

    std::vector<std::string> rawOverlays;
    std::vector<std::string> linuxOverlays;
    machine.key(keyboard_event_type::flagsChanged, 0, keyboard_event_flag::option);
    machine.key(keyboard_event_type::keyDown, 48, keyboard_event_flag::option);
    ASSERT_TRUE(app->delegate()->switcherSessionCoordinator()->isSessionActive());
    readOverlay({}, rawOverlays);
    readOverlay(Wording::linuxDesktop(), linuxOverlays);
    machine.key(keyboard_event_type::keyDown, 53, keyboard_event_flag::option);
    machine.key(keyboard_event_type::flagsChanged, 0, 0);
    machine.key(keyboard_event_type::flagsChanged, 0, keyboard_event_flag::option);
    machine.key(keyboard_event_type::keyDown, 49, keyboard_event_flag::option);
    ASSERT_TRUE(app->delegate()->launcherSessionCoordinator()->isLauncherSessionActive());
    readOverlay({}, rawOverlays);
    readOverlay(Wording::linuxDesktop(), linuxOverlays);
    app->terminate();

    // The log as the desktop's sink writes it: worded, expected absences lowered to debug.
    auto worded = std::make_shared<CapturingLogSink>();
    WordedLogSink sink(worded, Wording::linuxDesktop());
    std::vector<std::string> rawLog;
    for (const auto& record : capture.sink().records()) {
        sink.write(record);
        if (record.level != LogLevel::debug) {
            rawLog.push_back(record.message);
        }
    }
    std::vector<std::string> linuxLog;
    std::vector<std::string> linuxErrors;
    for (const auto& record : worded->records()) {
        if (record.level != LogLevel::debug) {
            linuxLog.push_back(record.message);
        }
        if (record.level == LogLevel::error) {
            linuxErrors.push_back(record.message);
        }
    }
    // No private focus route and a tap that waits for its chord are this desktop's normal.
    EXPECT_EQ(linuxErrors, std::vector<std::string>{});

    const auto offenders = [](const std::vector<std::string>& lines) {
        std::vector<std::string> found;
        for (const auto& line : lines) {
            if (std::regex_search(line, macOSWords)) {
                found.push_back(line);
            }
        }
        return found;
    };
    std::vector<std::string> linuxTexts;
    for (const auto& text : texts) {
        linuxTexts.push_back(Wording::linuxDesktop().apply(text));
    }
    EXPECT_EQ(offenders(linuxTexts), std::vector<std::string>{});
    EXPECT_EQ(offenders(linuxOverlays), std::vector<std::string>{});
    EXPECT_EQ(offenders(linuxLog), std::vector<std::string>{});
    // The same texts as the simulated desktop keeps them.
    EXPECT_GT(offenders(texts).size(), 10u);
    EXPECT_FALSE(offenders(rawOverlays).empty());
    EXPECT_GT(offenders(rawLog).size(), 5u);
}

}  // namespace
}  // namespace orvane
