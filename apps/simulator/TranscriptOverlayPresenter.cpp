#include "TranscriptOverlayPresenter.h"

#include <string>

#include "WindowDescription.h"

namespace orvane::simulator {

void TranscriptOverlayPresenter::presentSwitcher(const std::vector<SwitchableWindow>& windows,
                                                 std::ptrdiff_t selectedIndex) {
    transcript_.effect("overlay", "presentSwitcher " + describeWindowList(windows) +
                                      " selectedIndex " + std::to_string(selectedIndex));
    presenter_->presentSwitcher(windows, selectedIndex);
}

void TranscriptOverlayPresenter::updateSelection(std::ptrdiff_t selectedIndex) {
    transcript_.effect("overlay", "updateSelection " + std::to_string(selectedIndex));
    presenter_->updateSelection(selectedIndex);
}

void TranscriptOverlayPresenter::presentLauncher(const LauncherOverlayPresentation& presentation) {
    transcript_.effect("overlay", "presentLauncher mode \"" + presentation.modeDisplayName +
                                      "\" query \"" + presentation.searchQuery + "\" items " +
                                      std::to_string(presentation.items.size()) +
                                      " selectedIndex " +
                                      std::to_string(presentation.selectedIndex));
    presenter_->presentLauncher(presentation);
}

void TranscriptOverlayPresenter::dismiss() {
    if (presenter_->isPresented()) {
        transcript_.effect("overlay", "dismiss");
    }
    presenter_->dismiss();
}

}  // namespace orvane::simulator
