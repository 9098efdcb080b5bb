// Passes enumeration through to the real service and writes what it found to the transcript.
#pragma once

#include <memory>

#include "Transcript.h"
#include "core/WindowEnumerationService.h"

namespace orvane::simulator {

class TranscriptWindowEnumeration final : public WindowEnumerationService {
  public:
    TranscriptWindowEnumeration(std::shared_ptr<WindowEnumerationService> enumeration,
                                Transcript& transcript)
        : enumeration_(std::move(enumeration)), transcript_(transcript) {}

    std::vector<SwitchableWindow> enumerateSwitchableWindows() override;

  private:
    std::shared_ptr<WindowEnumerationService> enumeration_;
    Transcript& transcript_;
};

}  // namespace orvane::simulator
