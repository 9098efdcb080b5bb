// Plays a scenario through the real keyboard interception, state machine and switcher session,
// over the stand-in desktop, and writes the transcript of what each step did.
#pragma once

#include <ostream>
#include <string_view>

#include "Scenario.h"
#include "core/LogRecord.h"

namespace orvane::simulator {

class SimulatorDriver {
  public:
    struct Options {
        // Log lines below this level stay out of the transcript.
        LogLevel minimumLogLevel = LogLevel::info;
    };

    SimulatorDriver(std::ostream& output, Options options);

    // Plays every step in order. The program's log goes to the transcript while this runs.
    void play(const Scenario& scenario, std::string_view scenarioName);

  private:
    std::ostream& output_;
    Options options_;
};

}  // namespace orvane::simulator
