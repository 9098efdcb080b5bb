// The wall clock.
#pragma once

#include "core/Date.h"

namespace orvane {

class ClockPort {
  public:
    virtual ~ClockPort() = default;
    virtual Date now() const = 0;
};

}  // namespace orvane
