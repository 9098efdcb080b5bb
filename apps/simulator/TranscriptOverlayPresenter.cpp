#include "TranscriptOverlayPresenter.h"

#include <string>

namespace orvane::simulator {

void TranscriptOverlayPresenter::presentSwitcher(const std::vector<SwitchableWindow>& windows,
                                                 std::ptrdiff_t selectedIndex) {
    std::string identifiers;
    for (const auto& window : windows) {
        identifiers += identifiers.empty() ? "" : ", ";
        identifiers += std::to_string(window.windowIdentifier);
    }
    isPresented_ = true;
    transcript_.effect("overlay", "presentSwitcher windows [" + identifiers + "] selectedIndex " +
                                      std::to_string(selectedIndex));
}

void TranscriptOverlayPresenter::updateSelection(std::ptrdiff_t selectedIndex) {
    transcript_.effect("overlay", "updateSelection " + std::to_string(selectedIndex));
}

void TranscriptOverlayPresenter::presentLauncher(const LauncherOverlayPresentation& presentation) {
    isPresented_ = true;
    transcript_.effect("overlay", "presentLauncher mode \"" + presentation.modeDisplayName +
                                      "\" query \"" + presentation.searchQuery + "\" items " +
                                      std::to_string(presentation.items.size()) +
                                      " selectedIndex " +
                                      std::to_string(presentation.selectedIndex));
}

void TranscriptOverlayPresenter::dismiss() {
    if (!isPresented_) {
        return;
    }
    isPresented_ = false;
    transcript_.effect("overlay", "dismiss");
}

}  // namespace orvane::simulator
