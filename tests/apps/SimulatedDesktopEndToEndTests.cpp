// Whole gestures over the simulated desktop, through the program as it is built for real; the
// transcript shows what the user would see.

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "simulator/ScenarioParser.h"
#include "simulator/SimulatorDriver.h"

namespace orvane::simulator {
namespace {

std::string play(const std::string& scenarioText, LogLevel level = LogLevel::info) {
    auto parsed = ScenarioParser::parse(scenarioText);
    EXPECT_TRUE(parsed.scenario) << parsed.errorLine << ": " << parsed.errorMessage;
    if (!parsed.scenario) {
        return {};
    }
    std::ostringstream transcript;
    SimulatorDriver driver(transcript, {level});
    driver.play(*parsed.scenario, "inline");
    return transcript.str();
}

// The effect lines that start with `prefix` (after the indentation), in order; with `headline`,
// only those under headlines that end with it.
std::vector<std::string> linesStartingWith(const std::string& transcript, const std::string& prefix,
                                           const std::string& headline = "") {
    std::vector<std::string> lines;
    std::istringstream input(transcript);
    bool underHeadline = headline.empty();
    for (std::string line; std::getline(input, line);) {
        if (line.rfind("[line ", 0) == 0) {
            underHeadline = headline.empty() || line.ends_with(headline);
        } else if (underHeadline && line.rfind("  " + prefix, 0) == 0) {
            lines.push_back(line.substr(2));
        }
    }
    return lines;
}

const char* const threeApplications =
    "launch pid=400 name=\"Safari\"\n"
    "launch pid=401 name=\"Terminal\"\n"
    "launch pid=402 name=\"Notes\"\n"
    "window id=101 pid=400 title=\"Start Page\"\n"
    "window id=102 pid=401 title=\"zsh\"\n"
    "window id=103 pid=402 title=\"Groceries\"\n";

TEST(SimulatedDesktopEndToEnd, OneTapAndReleaseGoesBackToThePreviousWindow) {
    const auto transcript = play(std::string(threeApplications) +
                                 "focus id=101\nadvance 1\n"
                                 "focus id=103\nadvance 1\n"
                                 "focus id=102\nadvance 1\n"
                                 // The listing raises nothing: the z-order is not the recency.
                                 "flags option\ntap tab\nflags none\n"
                                 "advance 1\n"
                                 "flags option\ntap tab\nflags none\n");
    EXPECT_EQ(
        linesStartingWith(transcript, "overlay: switcher"),
        (std::vector<std::string>{"overlay: switcher 3 windows [102, 103, 101], selected 1",
                                  "overlay: switcher 3 windows [103, 102, 101], selected 1"}));
    EXPECT_EQ(linesStartingWith(transcript, "desktop:", "flags none"),
              (std::vector<std::string>{"desktop: frontmost pid 402, focused window 103",
                                        "desktop: frontmost pid 401, focused window 102"}));
}

TEST(SimulatedDesktopEndToEnd, AWindowClosedDuringTheSessionStaysSelectable) {
    const auto transcript = play(std::string(threeApplications) +
                                 "focus id=101\nfocus id=102\n"
                                 "flags option\ntap tab\n"
                                 "destroy id=101\n"
                                 "flags none\n"
                                 "flags option\ntap tab\nflags none\n");
    // The session's list is a snapshot; the activation finds the window gone.
    EXPECT_EQ(linesStartingWith(transcript, "desktop:", "flags none"),
              (std::vector<std::string>{"desktop: frontmost pid 400, focused window none",
                                        "desktop: frontmost pid 402, focused window 103"}));
    // The private route fails on the stale window; the public one brings its application forward.
    EXPECT_EQ(linesStartingWith(transcript, "log error windowactivation:"),
              (std::vector<std::string>{
                  "log error windowactivation: private focus: _SLPSSetFrontProcessWithOptions "
                  "failed for window 101 (error 1001)",
                  "log error windowactivation: Failed to raise window of Safari",
                  "log error windowactivation: Failed to mark window main for Safari"}));
    EXPECT_EQ(linesStartingWith(transcript, "overlay: switcher").back(),
              "overlay: switcher 2 windows [102, 103], selected 1");
}

TEST(SimulatedDesktopEndToEnd, ApplicationsRefusingNotificationsAreOrderedByTheirActivation) {
    const auto transcript = play(
        "launch pid=500 name=\"Editor\"\n"
        "launch pid=501 name=\"Legacy\" refuse-notifications=AXFocusedWindowChanged,"
        "AXApplicationActivated,AXWindowCreated,AXUIElementDestroyed,AXWindowMiniaturized,"
        "AXWindowDeminiaturized\n"
        "launch pid=502 name=\"Old Tool\" observer-fails\n"
        "window id=1 pid=500 title=\"a1\"\n"
        "window id=2 pid=501 title=\"b1\"\n"
        "window id=3 pid=502 title=\"c1\"\n"
        "focus id=3\nadvance 1\n"
        "focus id=2\nadvance 1\n"
        // A new window of the editor comes in front without being used.
        "create id=4 pid=500 title=\"a2\"\n"
        "flags option\ntap tab\nflags none\n");
    // Neither refusing application reported a focused window, so their last activations order
    // them, latest first, ahead of the windows nobody used (listed front to back: 4, 2, 3, 1).
    EXPECT_EQ(linesStartingWith(transcript, "overlay: switcher"),
              (std::vector<std::string>{"overlay: switcher 4 windows [2, 3, 4, 1], selected 1"}));
    EXPECT_EQ(linesStartingWith(transcript, "desktop:", "flags none"),
              (std::vector<std::string>{"desktop: frontmost pid 502, focused window 3"}));
}

}  // namespace
}  // namespace orvane::simulator
