// Plays scenario files through the simulator driver and compares whole transcripts, so that a
// change anywhere on the road of a key event shows up as a changed line.

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

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

// Every shipped example and every scenario of the suite, each beside its recorded transcript
// (tests/apps/scenarios/NAME.transcript).
std::vector<fs::path> scenarioFiles() {
    const fs::path root = ORVANE_SOURCE_DIR;
    std::vector<fs::path> files;
    for (const auto& folder : {root / "examples", root / "tests/apps/scenarios"}) {
        for (const auto& entry : fs::directory_iterator(folder)) {
            if (entry.path().extension() == ".scenario") {
                files.push_back(entry.path());
            }
        }
    }
    std::sort(files.begin(), files.end());
    return files;
}

class ScenarioTranscriptTest : public testing::TestWithParam<fs::path> {};

TEST_P(ScenarioTranscriptTest, PlaysToTheRecordedTranscript) {
    const auto transcriptPath = fs::path(ORVANE_SOURCE_DIR) / "tests/apps/scenarios" /
                                GetParam().filename().replace_extension(".transcript");
    const auto expected = readFile(transcriptPath);
    ASSERT_FALSE(expected.empty())
        << "missing " << transcriptPath << " (record it with scripts/record-transcripts.sh)";
    EXPECT_EQ(play(GetParam()), expected);
}

INSTANTIATE_TEST_SUITE_P(Scenarios, ScenarioTranscriptTest, testing::ValuesIn(scenarioFiles()),
                         [](const testing::TestParamInfo<fs::path>& info) {
                             auto name = info.param.stem().string();
                             std::replace(name.begin(), name.end(), '-', '_');
                             return name;
                         });

TEST(ScenarioTranscript, PlayingTwiceGivesTheSameTranscript) {
    const fs::path scenario = fs::path(ORVANE_SOURCE_DIR) / "examples/gesture.scenario";
    EXPECT_EQ(play(scenario), play(scenario));
}

}  // namespace
}  // namespace orvane::simulator
