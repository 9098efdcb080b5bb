// Passes activation through to the real service and writes the window it was given.
#pragma once

#include <memory>

#include "Transcript.h"
#include "core/WindowActivationService.h"

namespace orvane::simulator {

class TranscriptWindowActivation final : public WindowActivationService {
  public:
    TranscriptWindowActivation(std::shared_ptr<WindowActivationService> activation,
                               Transcript& transcript)
        : activation_(std::move(activation)), transcript_(transcript) {}

    void activate(const SwitchableWindow& window) override;

  private:
    std::shared_ptr<WindowActivationService> activation_;
    Transcript& transcript_;
};

}  // namespace orvane::simulator
