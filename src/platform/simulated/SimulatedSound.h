// The alert sound of the simulated desktop: counts the beeps instead of playing them.
#pragma once

#include <cstddef>

#include "platform/SoundPort.h"

namespace orvane {

class SimulatedSound final : public SoundPort {
  public:
    void beep() override { ++beepCount_; }

    std::size_t beepCount() const { return beepCount_; }

  private:
    std::size_t beepCount_ = 0;
};

}  // namespace orvane
