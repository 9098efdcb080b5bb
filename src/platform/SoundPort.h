// The system alert sound, played when a launcher action fails: the user sees no alert.
#pragma once

namespace orvane {

class SoundPort {
  public:
    virtual ~SoundPort() = default;

    // Plays the alert sound once. Main thread only.
    virtual void beep() = 0;
};

}  // namespace orvane
