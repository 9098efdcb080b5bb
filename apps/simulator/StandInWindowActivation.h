// Stands in for window activation: writes the window it was given to the transcript and focuses
// it on the simulated desktop the plain way, as a click would.
#pragma once

#include <memory>

#include "Transcript.h"
#include "core/WindowActivationService.h"
#include "platform/simulated/SimulatedDesktop.h"

namespace orvane::simulator {

class StandInWindowActivation final : public WindowActivationService {
  public:
    StandInWindowActivation(std::shared_ptr<SimulatedDesktop> desktop, Transcript& transcript)
        : desktop_(std::move(desktop)), transcript_(transcript) {}

    void activate(const SwitchableWindow& window) override;

  private:
    std::shared_ptr<SimulatedDesktop> desktop_;
    Transcript& transcript_;
};

}  // namespace orvane::simulator
