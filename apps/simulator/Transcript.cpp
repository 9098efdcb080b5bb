#include "Transcript.h"

namespace orvane::simulator {

void Transcript::headline(int lineNumber, std::string_view text) {
    output_ << "[line " << lineNumber << "] " << text << '\n';
}

void Transcript::effect(std::string_view subject, std::string_view text) {
    output_ << "  " << subject << ": " << text << '\n';
}

void Transcript::plain(std::string_view text) {
    output_ << text << '\n';
}

}  // namespace orvane::simulator
