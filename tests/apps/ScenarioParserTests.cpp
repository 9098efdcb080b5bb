// The scenario reader: what a line means, and the line number and reason of every malformed line.

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <set>
#include <string>

#include "simulator/ScenarioParser.h"

namespace orvane::simulator {
namespace {

const KeyEventStep& keyEventAt(const Scenario& scenario, std::size_t index) {
    return std::get<KeyEventStep>(scenario.steps.at(index).action);
}

TEST(ScenarioParser, KeyEventsCarryTheHeldModifiersAndTheirText) {
    auto parsed = ScenarioParser::parse(
        "flags option shift\n"
        "tap a\n"
        "down e text=\"e\\u{301}\" repeat\n"
        "down 48 flags=control\n"
        "flags none\n"
        "down b\n");
    ASSERT_TRUE(parsed.scenario) << parsed.errorMessage;
    const auto& steps = parsed.scenario->steps;
    ASSERT_EQ(steps.size(), 7u);

    EXPECT_EQ(keyEventAt(*parsed.scenario, 0).type, keyboard_event_type::flagsChanged);
    EXPECT_EQ(keyEventAt(*parsed.scenario, 0).flags,
              keyboard_event_flag::option | keyboard_event_flag::shift);

    const auto& tapDown = keyEventAt(*parsed.scenario, 1);
    const auto& tapUp = keyEventAt(*parsed.scenario, 2);
    EXPECT_EQ(tapDown.type, keyboard_event_type::keyDown);
    EXPECT_EQ(tapDown.keyCode, 0);
    EXPECT_EQ(tapDown.typedText, u"A");
    EXPECT_EQ(tapUp.type, keyboard_event_type::keyUp);
    EXPECT_EQ(tapUp.flags, tapDown.flags);
    EXPECT_TRUE(tapUp.typedText.empty());
    EXPECT_EQ(steps[1].lineNumber, 2);
    EXPECT_EQ(steps[2].lineNumber, 2);

    const auto& accented = keyEventAt(*parsed.scenario, 3);
    EXPECT_EQ(accented.typedText, u"e\u0301");
    EXPECT_TRUE(accented.isAutorepeat);

    const auto& explicitFlags = keyEventAt(*parsed.scenario, 4);
    EXPECT_EQ(explicitFlags.keyCode, 48);
    EXPECT_EQ(explicitFlags.flags, keyboard_event_flag::control);

    EXPECT_EQ(keyEventAt(*parsed.scenario, 6).flags, 0u);
    EXPECT_EQ(keyEventAt(*parsed.scenario, 6).typedText, u"b");
}

TEST(ScenarioParser, DesktopDirectives) {
    auto parsed = ScenarioParser::parse(
        "  # a comment line\n"
        "window id=5 pid=9 app=\"Text Edit\" title=\"a \\\"b\\\"\" frame=1,2,3,4 minimized\r\n"
        "\n"
        "frontmost none\n"
        "frontmost pid=9 # trailing comment\n"
        "preferences {\"cardSize\":\"large\"}\n"
        "note \"hello\"\n"
        "launch pid=7 name=\"Legacy\" policy=accessory refuses-accessibility=-25211 "
        "accessibility-delay=0.5 refuse-notifications=AXWindowCreated,AXUIElementDestroyed "
        "observer-fails pid-lookup-fails windows-not-array\n"
        "create id=6 pid=7 list-title=\"L\" ax-title=\"A\" ax-frame=0,0,50,50 layer=3 "
        "alpha=0.5 subrole=none wrong-type=AXSize missing-keys=kCGWindowAlpha offscreen "
        "hidden-from-accessibility\n"
        "focus id=6\nminimize id=5\nunminimize id=5\ndestroy id=6\nquit pid=7\n"
        "advance 2.5\nwindow-list fails=17,16 malformed\nprint desktop\nlog-level debug\n");
    ASSERT_TRUE(parsed.scenario) << parsed.errorLine << ": " << parsed.errorMessage;
    const auto& steps = parsed.scenario->steps;
    ASSERT_EQ(steps.size(), 16u);
    const auto& listed = std::get<AddWindowStep>(steps[0].action);
    EXPECT_EQ(steps[0].lineNumber, 2);
    EXPECT_FALSE(listed.inFront);
    EXPECT_EQ(listed.applicationName, "Text Edit");
    EXPECT_EQ(listed.window.windowIdentifier, 5u);
    EXPECT_EQ(listed.window.owningProcessIdentifier, 9);
    EXPECT_EQ(listed.window.listTitle, "a \"b\"");
    EXPECT_EQ(listed.window.accessibilityTitle, "a \"b\"");
    EXPECT_EQ(listed.window.bounds, (Rect{{1, 2}, {3, 4}}));
    EXPECT_TRUE(listed.window.isMinimized);
    EXPECT_FALSE(std::get<SetFrontmostStep>(steps[1].action).processIdentifier);
    EXPECT_EQ(std::get<SetFrontmostStep>(steps[2].action).processIdentifier, 9);
    EXPECT_EQ(std::get<SetPreferencesStep>(steps[3].action).preferences.cardSize,
              SwitcherCardSize::large);
    EXPECT_EQ(std::get<NoteStep>(steps[4].action).text, "hello");

    const auto& application = std::get<LaunchStep>(steps[5].action).application;
    EXPECT_EQ(application.runningApplication.processIdentifier, 7);
    EXPECT_EQ(application.runningApplication.localizedName, "Legacy");
    EXPECT_EQ(application.runningApplication.activationPolicy,
              ApplicationActivationPolicy::accessory);
    EXPECT_EQ(application.windowsAttributeError, accessibility_error::apiDisabled);
    EXPECT_EQ(application.accessibilityResponseDelay, 0.5);
    EXPECT_EQ(application.refusedNotifications,
              (std::set<std::string>{"AXWindowCreated", "AXUIElementDestroyed"}));
    EXPECT_TRUE(application.observerCreationFails);
    EXPECT_TRUE(application.processIdentifierLookupFails);
    EXPECT_TRUE(application.windowsAttributeIsNotArray);

    const auto& created = std::get<AddWindowStep>(steps[6].action);
    EXPECT_TRUE(created.inFront);
    EXPECT_EQ(created.window.listTitle, "L");
    EXPECT_EQ(created.window.accessibilityTitle, "A");
    EXPECT_EQ(created.window.accessibilityFrame, (Rect{{0, 0}, {50, 50}}));
    EXPECT_EQ(created.window.layer, 3);
    EXPECT_EQ(created.window.alpha, 0.5);
    EXPECT_FALSE(created.window.subrole);
    EXPECT_EQ(created.window.wronglyTypedAttributes, (std::set<std::string>{"AXSize"}));
    EXPECT_EQ(created.window.missingWindowListKeys, (std::set<std::string>{"kCGWindowAlpha"}));
    EXPECT_TRUE(created.window.isOffScreen);
    EXPECT_FALSE(created.window.isInAccessibilityTree);

    EXPECT_EQ(std::get<FocusWindowStep>(steps[7].action).windowIdentifier, 6u);
    EXPECT_TRUE(std::get<MinimizeWindowStep>(steps[8].action).minimized);
    EXPECT_FALSE(std::get<MinimizeWindowStep>(steps[9].action).minimized);
    EXPECT_EQ(std::get<DestroyWindowStep>(steps[10].action).windowIdentifier, 6u);
    EXPECT_EQ(std::get<QuitStep>(steps[11].action).processIdentifier, 7);
    EXPECT_EQ(std::get<AdvanceClockStep>(steps[12].action).seconds, 2.5);
    const auto& fault = std::get<WindowListFaultStep>(steps[13].action);
    EXPECT_EQ(fault.failingOptions, (std::set<std::uint32_t>{16, 17}));
    EXPECT_TRUE(fault.malformed);
    EXPECT_TRUE(std::holds_alternative<PrintStep>(steps[14].action));
    EXPECT_EQ(std::get<LogLevelStep>(steps[15].action).minimumLevel, LogLevel::debug);
}

struct MalformedCase {
    const char* text;
    int line;
    const char* messagePart;
};

class MalformedScenarioTest : public testing::TestWithParam<MalformedCase> {};

TEST_P(MalformedScenarioTest, NamesTheLineAndTheFault) {
    auto parsed = ScenarioParser::parse(GetParam().text);
    ASSERT_FALSE(parsed.scenario);
    EXPECT_EQ(parsed.errorLine, GetParam().line);
    EXPECT_NE(parsed.errorMessage.find(GetParam().messagePart), std::string::npos)
        << parsed.errorMessage;
}

INSTANTIATE_TEST_SUITE_P(
    Lines, MalformedScenarioTest,
    testing::Values(
        MalformedCase{"flags option\nfrobnicate\n", 2, "unknown directive \"frobnicate\""},
        MalformedCase{"tap\n", 1, "needs a key"},
        MalformedCase{"\n\ndown hyper\n", 3, "unknown key \"hyper\""},
        MalformedCase{"down 70000\n", 1, "unknown key"},
        MalformedCase{"flags option meta\n", 1, "unknown modifier \"meta\""},
        MalformedCase{"flags\n", 1, "lists the modifiers"},
        MalformedCase{"down a flags=option,hyper\n", 1, "unknown modifier \"hyper\""},
        MalformedCase{"up a repeat\n", 1, "unknown key flag"},
        MalformedCase{"up a text=\"x\"\n", 1, "types no text"},
        MalformedCase{"window pid=1 app=\"A\"\n", 1, "needs id="},
        MalformedCase{"window id=x pid=1 app=\"A\"\n", 1, "id must be an integer"},
        MalformedCase{"window id=4294967296 pid=1 app=\"A\"\n", 1, "id must be an integer"},
        MalformedCase{"window id=1 pid=1 app=\"A\" colour=red\n", 1,
                      "unknown attribute \"colour\""},
        MalformedCase{"window id=1 pid=1 app=\"A\" id=2\n", 1, "given twice"},
        MalformedCase{"window id=1 pid=1 app=\"A\" frame=1,2,3\n", 1, "frame must be"},
        MalformedCase{"window id=1 pid=1 app=\"A\" frame=0,0,-5,4\n", 1, "frame must be"},
        MalformedCase{"window id=1 pid=1 app=A\nwindow id=1 pid=2 app=B\n", 2,
                      "already on the desktop"},
        MalformedCase{"window id=1 pid=1 app=\"A\" hidden\n", 1, "unknown window flag"},
        MalformedCase{"window id=1 pid=1\n", 1, "process 1 is not running"},
        MalformedCase{"window id=0 pid=1 app=A\n", 1, "names no window"},
        MalformedCase{"launch pid=3\nlaunch pid=3\n", 2, "already running"},
        MalformedCase{"quit pid=3\n", 1, "is not running"},
        MalformedCase{"launch pid=3\nwindow id=8 pid=3\nquit pid=3\nfocus id=8\n", 4,
                      "window 8 is not on the desktop"},
        MalformedCase{"window id=8 pid=3 app=A\ndestroy id=8\nminimize id=8\n", 3,
                      "not on the desktop"},
        MalformedCase{"launch pid=3 policy=background\n", 1, "policy must be"},
        MalformedCase{"launch pid=3 accessibility-delay=-1\n", 1, "0 or more seconds"},
        MalformedCase{"launch pid=3 sleepy\n", 1, "unknown application flag"},
        MalformedCase{"frontmost pid=4\n", 1, "process 4 is not running"},
        MalformedCase{"advance -1\n", 1, "only moves forward"},
        MalformedCase{"advance soon\n", 1, "must be a number"},
        MalformedCase{"window-list fails=seventeen\n", 1, "fails must be an integer"},
        MalformedCase{"print everything\n", 1, "takes what to print"},
        MalformedCase{"log-level verbose\n", 1, "debug, info or error"},
        MalformedCase{"note \"unterminated\n", 1, "unterminated quoted text"},
        MalformedCase{"note \"bad \\q escape\"\n", 1, "unknown escape"},
        MalformedCase{"note \"\\u{D800}\"\n", 1, "no Unicode scalar value"},
        MalformedCase{"note \"\\u{110000}\"\n", 1, "no Unicode scalar value"},
        MalformedCase{"note one two\n", 1, "one quoted text"},
        MalformedCase{"frontmost pid=1 extra\n", 1, "pid=N or none"},
        MalformedCase{"preferences {\"cardSize\":\"huge\"}\n", 1, "cardSize"},
        MalformedCase{"preferences not json\n", 1, "preferences record rejected"},
        MalformedCase{"key=value\n", 1, "starts with a directive"},
        MalformedCase{"accessibility maybe\n", 1, "takes granted or denied"},
        MalformedCase{"start now\n", 1, "takes nothing more"},
        MalformedCase{"start\nstart\n", 2, "started once"},
        MalformedCase{"diagnostics\nstart\n", 2, "comes before any line that needs"},
        MalformedCase{"quit-program\nwelcome continue\n", 2, "after the program has quit"},
        MalformedCase{"welcome press camera\n", 1, "press accessibility|screen-recording"},
        MalformedCase{"settings advanced\n", 1, "general, shortcuts or about"},
        MalformedCase{"tap-disabled soon\n", 1, "timeout or user-input"},
        MalformedCase{"tap-disabled timeout delay=-1\n", 1, "not negative"},
        MalformedCase{"reopen twice\n", 1, "takes windows-visible"}));

// The driver itself: a malformed file ends it with status 1 and the line on standard error, and
// nothing is played.
TEST(SimulatorExecutable, MalformedScenarioExitsWithTheLineNumber) {
    const auto directory = std::filesystem::temp_directory_path();
    const auto scenarioPath = directory / "orvane-malformed.scenario";
    const auto errorPath = directory / "orvane-malformed.stderr";
    const auto outputPath = directory / "orvane-malformed.stdout";
    {
        std::ofstream file(scenarioPath);
        file << "flags option\ntap tab\ndown nosuchkey\n";
    }
    const std::string command = std::string("'") + ORVANE_SIMULATOR_PATH + "' '" +
                                scenarioPath.string() + "' >'" + outputPath.string() + "' 2>'" +
                                errorPath.string() + "'";
    const int status = std::system(command.c_str());
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 1);

    std::ifstream errors(errorPath);
    std::string line;
    std::getline(errors, line);
    EXPECT_EQ(line, scenarioPath.string() + ":3: error: unknown key \"nosuchkey\"");
    EXPECT_EQ(std::filesystem::file_size(outputPath), 0u);
    std::filesystem::remove(scenarioPath);
    std::filesystem::remove(errorPath);
    std::filesystem::remove(outputPath);
}

}  // namespace
}  // namespace orvane::simulator
