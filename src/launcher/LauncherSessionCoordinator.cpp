#include "launcher/LauncherSessionCoordinator.h"

#include <optional>
#include <utility>

#include "core/LauncherOverlayPresentation.h"

namespace orvane {

LauncherSessionCoordinator::LauncherSessionCoordinator(
    std::shared_ptr<LauncherMode> windowLauncherMode,
    std::shared_ptr<LauncherMode> installedApplicationLauncherMode,
    std::shared_ptr<SwitcherOverlayPresenting> overlayPresenter)
    : windowLauncherMode_(std::move(windowLauncherMode)),
      installedApplicationLauncherMode_(std::move(installedApplicationLauncherMode)),
      overlayPresenter_(std::move(overlayPresenter)) {}

void LauncherSessionCoordinator::beginLauncherSession() {
    if (isLauncherSessionActive_) {
        return;
    }
    isLauncherSessionActive_ = true;
    activeModeSelection_ = ActiveModeSelection::windows;
    searchQuery_.clear();
    log_.info("launcher session began");
    refresh();
}

void LauncherSessionCoordinator::switchLauncherMode() {
    if (!isLauncherSessionActive_) {
        return;
    }
    activeModeSelection_ = activeModeSelection_ == ActiveModeSelection::windows
                               ? ActiveModeSelection::installedApplications
                               : ActiveModeSelection::windows;
    // The typed text belongs to the mode it was typed for.
    searchQuery_.clear();
    refresh();
}

void LauncherSessionCoordinator::appendToSearchQuery(const std::string& text) {
    if (!isLauncherSessionActive_ || text.empty()) {
        return;
    }
    searchQuery_ += text;
    refresh();
}

void LauncherSessionCoordinator::deleteLastSearchCharacter() {
    if (!isLauncherSessionActive_ || searchQuery_.empty()) {
        return;
    }
    // One Delete erases what the user sees as one character, however many code points it has.
    searchQuery_.erase(graphemeClusters_.lastClusterStart(searchQuery_));
    refresh();
}

void LauncherSessionCoordinator::moveLauncherSelection(std::ptrdiff_t delta) {
    if (!isLauncherSessionActive_ || visibleItems_.empty()) {
        return;
    }
    const auto count = static_cast<std::ptrdiff_t>(visibleItems_.size());
    selectedIndex_ = (((selectedIndex_ + delta) % count) + count) % count;
    publish();
}

void LauncherSessionCoordinator::commitLauncherSession() {
    if (!isLauncherSessionActive_) {
        return;
    }
    std::optional<LauncherItem> item;
    if (selectedIndex_ >= 0 && selectedIndex_ < static_cast<std::ptrdiff_t>(visibleItems_.size())) {
        item = visibleItems_[static_cast<std::size_t>(selectedIndex_)];
    }
    // Held by value: the mode must outlive the session's end, whatever runs next.
    const std::shared_ptr<LauncherMode> mode = activeModeSelection_ == ActiveModeSelection::windows
                                                   ? windowLauncherMode_
                                                   : installedApplicationLauncherMode_;
    // The overlay goes first, so that the activated window or application is not covered by it.
    endLauncherSession();
    if (item) {
        mode->activate(*item);
    }
}

void LauncherSessionCoordinator::endLauncherSession() {
    isLauncherSessionActive_ = false;
    searchQuery_.clear();
    visibleItems_.clear();
    selectedIndex_ = 0;
    overlayPresenter_->dismiss();
    log_.info("launcher session ended");
}

LauncherMode& LauncherSessionCoordinator::activeMode() const {
    return activeModeSelection_ == ActiveModeSelection::windows
               ? *windowLauncherMode_
               : *installedApplicationLauncherMode_;
}

void LauncherSessionCoordinator::refresh() {
    std::vector<LauncherItem> items = activeMode().items(searchQuery_);
    if (items.size() > maximumVisibleItems) {
        items.resize(maximumVisibleItems);
    }
    visibleItems_ = std::move(items);
    selectedIndex_ = 0;
    publish();
}

void LauncherSessionCoordinator::publish() {
    const LauncherMode& mode = activeMode();
    overlayPresenter_->presentLauncher(
        LauncherOverlayPresentation{mode.modeDisplayName(), mode.searchPlaceholder(), searchQuery_,
                                    visibleItems_, selectedIndex_});
}

}  // namespace orvane
