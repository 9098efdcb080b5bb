// Stands in for window activation: writes the window it was given to the transcript.
#pragma once

#include "Transcript.h"
#include "core/WindowActivationService.h"

namespace orvane::simulator {

class TranscriptWindowActivation final : public WindowActivationService {
  public:
    explicit TranscriptWindowActivation(Transcript& transcript) : transcript_(transcript) {}
    void activate(const SwitchableWindow& window) override;

  private:
    Transcript& transcript_;
};

}  // namespace orvane::simulator
