// Renders a log format string in the platform's notation with its arguments filled in. Privacy
// annotations are dropped ("%{public}s" is "%s"); "%{bool}d" prints true or false.
#pragma once

#include <span>
#include <string>
#include <string_view>

#include "core/LogArgument.h"

namespace orvane {

class LogMessageFormatter {
  public:
    // Never fails: a missing argument renders as "<missing>", an unknown conversion as written.
    static std::string format(std::string_view formatString,
                              std::span<const LogArgument> arguments);
};

}  // namespace orvane
