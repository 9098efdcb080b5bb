// Scenario text of any shape: the parser answers with a scenario or a line and a message.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "simulator/ScenarioParser.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    const auto parsed = orvane::simulator::ScenarioParser::parse(text);
    if (!parsed.scenario && parsed.errorMessage.empty()) {
        std::abort();
    }
    return 0;
}
