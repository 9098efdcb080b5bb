// Passes every launcher call through to the real launcher session and writes it to the transcript.
#pragma once

#include <memory>

#include "Transcript.h"
#include "core/LauncherSessionDriving.h"

namespace orvane::simulator {

class TranscriptLauncherSession final : public LauncherSessionDriving {
  public:
    TranscriptLauncherSession(std::shared_ptr<LauncherSessionDriving> session,
                              Transcript& transcript)
        : session_(std::move(session)), transcript_(transcript) {}

    bool isLauncherSessionActive() const override { return session_->isLauncherSessionActive(); }
    void beginLauncherSession() override;
    void switchLauncherMode() override;
    void appendToSearchQuery(const std::string& text) override;
    void deleteLastSearchCharacter() override;
    void moveLauncherSelection(std::ptrdiff_t delta) override;
    void commitLauncherSession() override;
    void endLauncherSession() override;

  private:
    std::shared_ptr<LauncherSessionDriving> session_;
    Transcript& transcript_;
};

}  // namespace orvane::simulator
