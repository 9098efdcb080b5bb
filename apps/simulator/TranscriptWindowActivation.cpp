#include "TranscriptWindowActivation.h"

#include "WindowDescription.h"

namespace orvane::simulator {

void TranscriptWindowActivation::activate(const SwitchableWindow& window) {
    transcript_.effect("activate", describeWindow(window));
    activation_->activate(window);
}

}  // namespace orvane::simulator
