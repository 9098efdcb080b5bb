// Stands in for the launcher session: knows only whether it is open and writes every call to the
// transcript.
#pragma once

#include "Transcript.h"
#include "core/LauncherSessionDriving.h"

namespace orvane::simulator {

class TranscriptLauncherSession final : public LauncherSessionDriving {
  public:
    explicit TranscriptLauncherSession(Transcript& transcript) : transcript_(transcript) {}

    bool isLauncherSessionActive() const override { return isActive_; }
    void beginLauncherSession() override;
    void switchLauncherMode() override;
    void appendToSearchQuery(const std::string& text) override;
    void deleteLastSearchCharacter() override;
    void moveLauncherSelection(std::ptrdiff_t delta) override;
    void commitLauncherSession() override;
    void endLauncherSession() override;

  private:
    Transcript& transcript_;
    bool isActive_ = false;
};

}  // namespace orvane::simulator
