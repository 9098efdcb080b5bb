#include "SimulatorDriver.h"

#include <memory>
#include <string>

#include "SimulatedProgram.h"
#include "Transcript.h"
#include "TranscriptLogSink.h"
#include "core/Log.h"

namespace orvane::simulator {

SimulatorDriver::SimulatorDriver(std::ostream& output, Options options)
    : output_(output), options_(options) {}

void SimulatorDriver::play(const Scenario& scenario, std::string_view scenarioName) {
    Transcript transcript(output_);
    auto logSink = std::make_shared<TranscriptLogSink>(transcript, options_.minimumLogLevel);
    auto previousSinks = Log::shared().replaceSinks({logSink});
    transcript.plain("orvane simulator transcript: " + std::string(scenarioName));
    {
        SimulatedProgram program(transcript, *logSink);
        if (!scenario.startsExplicitly) {
            program.start();
        }
        for (const auto& step : scenario.steps) {
            program.perform(step);
        }
        program.summarize();
    }
    Log::shared().replaceSinks(std::move(previousSinks));
}

}  // namespace orvane::simulator
