#include "TranscriptLauncherSession.h"

#include <string>

namespace orvane::simulator {

void TranscriptLauncherSession::beginLauncherSession() {
    transcript_.effect("launcher", "beginLauncherSession");
    isActive_ = true;
}

void TranscriptLauncherSession::switchLauncherMode() {
    transcript_.effect("launcher", "switchLauncherMode");
}

void TranscriptLauncherSession::appendToSearchQuery(const std::string& text) {
    transcript_.effect("launcher", "appendToSearchQuery \"" + text + "\"");
}

void TranscriptLauncherSession::deleteLastSearchCharacter() {
    transcript_.effect("launcher", "deleteLastSearchCharacter");
}

void TranscriptLauncherSession::moveLauncherSelection(std::ptrdiff_t delta) {
    transcript_.effect("launcher", "moveLauncherSelection " + std::to_string(delta));
}

void TranscriptLauncherSession::commitLauncherSession() {
    transcript_.effect("launcher", "commitLauncherSession");
    isActive_ = false;
}

void TranscriptLauncherSession::endLauncherSession() {
    transcript_.effect("launcher", "endLauncherSession");
    isActive_ = false;
}

}  // namespace orvane::simulator
