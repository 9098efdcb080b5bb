// Reads a scenario file: one directive per line, `#` comments, quoted texts with escapes. Every
// malformed line is answered with its line number and what is wrong with it.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "Scenario.h"

namespace orvane::simulator {

class ScenarioParser {
  public:
    struct Result {
        std::optional<Scenario> scenario;
        // When `scenario` is absent: the 1-based line of the first error and its description.
        int errorLine = 0;
        std::string errorMessage;
    };

    static Result parse(std::string_view text);
};

}  // namespace orvane::simulator
