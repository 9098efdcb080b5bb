// The wall clock of the system, in the program's dates (seconds since 2001-01-01).
#pragma once

#include "platform/ClockPort.h"

namespace orvane {

class SystemClock final : public ClockPort {
  public:
    Date now() const override;
};

}  // namespace orvane
