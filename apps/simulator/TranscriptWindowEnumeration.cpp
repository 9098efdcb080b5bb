#include "TranscriptWindowEnumeration.h"

#include "WindowDescription.h"

namespace orvane::simulator {

std::vector<SwitchableWindow> TranscriptWindowEnumeration::enumerateSwitchableWindows() {
    auto windows = enumeration_->enumerateSwitchableWindows();
    transcript_.effect("enumerate", describeWindowList(windows));
    return windows;
}

}  // namespace orvane::simulator
