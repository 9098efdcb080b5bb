// Plays scenario files through the simulator driver and compares whole transcripts, so that a
// change anywhere on the road of a key event shows up as a changed line.

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "simulator/ScenarioParser.h"
#include "simulator/SimulatorDriver.h"

namespace orvane::simulator {
namespace {

namespace fs = std::filesystem;

std::string readFile(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream contents;
    contents << file.rdbuf();
    return contents.str();
}

std::string play(const fs::path& scenarioPath) {
    auto parsed = ScenarioParser::parse(readFile(scenarioPath));
    EXPECT_TRUE(parsed.scenario) << scenarioPath << ":" << parsed.errorLine << ": "
                                 << parsed.errorMessage;
    if (!parsed.scenario) {
        return {};
    }
    std::ostringstream transcript;
    SimulatorDriver driver(transcript, {});
    driver.play(*parsed.scenario, scenarioPath.filename().string());
    return transcript.str();
}

struct GoldenCase {
    const char* scenario;
    const char* transcript;
};

class ScenarioTranscriptTest : public testing::TestWithParam<GoldenCase> {};

TEST_P(ScenarioTranscriptTest, PlaysToTheRecordedTranscript) {
    const fs::path root = ORVANE_SOURCE_DIR;
    const auto expected = readFile(root / GetParam().transcript);
    ASSERT_FALSE(expected.empty()) << "missing " << GetParam().transcript;
    EXPECT_EQ(play(root / GetParam().scenario), expected);
}

INSTANTIATE_TEST_SUITE_P(
    Scenarios, ScenarioTranscriptTest,
    testing::Values(
        GoldenCase{"examples/gesture.scenario", "tests/apps/scenarios/gesture.transcript"},
        GoldenCase{"examples/launcher.scenario", "tests/apps/scenarios/launcher.transcript"},
        GoldenCase{"tests/apps/scenarios/launcher-and-fallbacks.scenario",
                   "tests/apps/scenarios/launcher-and-fallbacks.transcript"}));

TEST(ScenarioTranscript, PlayingTwiceGivesTheSameTranscript) {
    const fs::path scenario = fs::path(ORVANE_SOURCE_DIR) / "examples/gesture.scenario";
    EXPECT_EQ(play(scenario), play(scenario));
}

}  // namespace
}  // namespace orvane::simulator
