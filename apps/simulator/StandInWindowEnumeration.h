// Enumerates the stand-in desktop: every window, in the order the scenario listed them.
#pragma once

#include <memory>

#include "StandInDesktop.h"
#include "Transcript.h"
#include "core/WindowEnumerationService.h"

namespace orvane::simulator {

class StandInWindowEnumeration final : public WindowEnumerationService {
  public:
    StandInWindowEnumeration(std::shared_ptr<const StandInDesktop> desktop, Transcript& transcript)
        : desktop_(std::move(desktop)), transcript_(transcript) {}

    std::vector<SwitchableWindow> enumerateSwitchableWindows() override;

  private:
    std::shared_ptr<const StandInDesktop> desktop_;
    Transcript& transcript_;
};

}  // namespace orvane::simulator
