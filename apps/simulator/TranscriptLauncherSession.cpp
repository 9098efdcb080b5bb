#include "TranscriptLauncherSession.h"

#include <string>

namespace orvane::simulator {

void TranscriptLauncherSession::beginLauncherSession() {
    transcript_.effect("launcher", "beginLauncherSession");
    session_->beginLauncherSession();
}

void TranscriptLauncherSession::switchLauncherMode() {
    transcript_.effect("launcher", "switchLauncherMode");
    session_->switchLauncherMode();
}

void TranscriptLauncherSession::appendToSearchQuery(const std::string& text) {
    transcript_.effect("launcher", "appendToSearchQuery \"" + text + "\"");
    session_->appendToSearchQuery(text);
}

void TranscriptLauncherSession::deleteLastSearchCharacter() {
    transcript_.effect("launcher", "deleteLastSearchCharacter");
    session_->deleteLastSearchCharacter();
}

void TranscriptLauncherSession::moveLauncherSelection(std::ptrdiff_t delta) {
    transcript_.effect("launcher", "moveLauncherSelection " + std::to_string(delta));
    session_->moveLauncherSelection(delta);
}

void TranscriptLauncherSession::commitLauncherSession() {
    transcript_.effect("launcher", "commitLauncherSession");
    session_->commitLauncherSession();
}

void TranscriptLauncherSession::endLauncherSession() {
    transcript_.effect("launcher", "endLauncherSession");
    session_->endLauncherSession();
}

}  // namespace orvane::simulator
