// The alert sound: the desktop's bell.
#pragma once

#include "platform/SoundPort.h"

namespace orvane {

class QtSound final : public SoundPort {
  public:
    void beep() override;
};

}  // namespace orvane
