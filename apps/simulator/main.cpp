// orvane-simulator: plays scenario files over the simulated desktop and prints their transcripts.

#include <fstream>
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

#include "ScenarioParser.h"
#include "SimulatorDriver.h"

namespace {

constexpr int exitScenarioError = 1;
constexpr int exitUsageError = 2;

void printUsage(std::ostream& output) {
    output << "usage: orvane-simulator [--log-level debug|info|error] SCENARIO...\n"
              "Plays each scenario file in turn and prints its transcript on standard output.\n";
}

}  // namespace

int main(int argumentCount, char** arguments) {
    using orvane::LogLevel;
    orvane::simulator::SimulatorDriver::Options options;
    std::vector<std::string> paths;
    for (int index = 1; index < argumentCount; ++index) {
        const std::string argument = arguments[index];
        if (argument == "--help" || argument == "-h") {
            printUsage(std::cout);
            return 0;
        }
        if (argument == "--log-level") {
            if (index + 1 >= argumentCount) {
                std::cerr << "orvane-simulator: --log-level needs a level\n";
                return exitUsageError;
            }
            const std::string level = arguments[++index];
            if (level == "debug") {
                options.minimumLogLevel = LogLevel::debug;
            } else if (level == "info") {
                options.minimumLogLevel = LogLevel::info;
            } else if (level == "error") {
                options.minimumLogLevel = LogLevel::error;
            } else {
                std::cerr << "orvane-simulator: unknown log level \"" << level
                          << "\" (expected debug, info or error)\n";
                return exitUsageError;
            }
            continue;
        }
        if (argument.starts_with("--")) {
            std::cerr << "orvane-simulator: unknown option " << argument << '\n';
            printUsage(std::cerr);
            return exitUsageError;
        }
        paths.push_back(argument);
    }
    if (paths.empty()) {
        printUsage(std::cerr);
        return exitUsageError;
    }

    // Every file is read and checked before anything plays, so a bad file leaves no half
    // transcript.
    std::vector<orvane::simulator::Scenario> scenarios;
    for (const auto& path : paths) {
        std::ifstream file(path, std::ios::binary);
        if (!file) {
            std::cerr << "orvane-simulator: cannot read " << path << '\n';
            return exitUsageError;
        }
        std::ostringstream contents;
        contents << file.rdbuf();
        auto parsed = orvane::simulator::ScenarioParser::parse(contents.str());
        if (!parsed.scenario) {
            std::cerr << path << ":" << parsed.errorLine << ": error: " << parsed.errorMessage
                      << '\n';
            return exitScenarioError;
        }
        scenarios.push_back(std::move(*parsed.scenario));
    }

    orvane::simulator::SimulatorDriver driver(std::cout, options);
    for (std::size_t index = 0; index < scenarios.size(); ++index) {
        if (index > 0) {
            std::cout << '\n';
        }
        driver.play(scenarios[index], paths[index]);
    }
    return 0;
}
