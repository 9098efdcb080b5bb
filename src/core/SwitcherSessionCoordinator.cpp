#include "core/SwitcherSessionCoordinator.h"

#include <algorithm>
#include <utility>

namespace orvane {

SwitcherSessionCoordinator::SwitcherSessionCoordinator(
    std::shared_ptr<WindowEnumerationService> windowEnumerationService,
    std::shared_ptr<MostRecentlyUsedWindowOrdering> recencyOrdering,
    std::shared_ptr<SwitcherOverlayPresenting> overlayPresenter,
    std::shared_ptr<WindowActivationService> windowActivationService,
    FrontmostProcessIdentifierProvider frontmostProcessIdentifierProvider)
    : windowEnumerationService_(std::move(windowEnumerationService)),
      recencyOrdering_(std::move(recencyOrdering)),
      overlayPresenter_(std::move(overlayPresenter)),
      windowActivationService_(std::move(windowActivationService)),
      frontmostProcessIdentifierProvider_(std::move(frontmostProcessIdentifierProvider)) {}

bool SwitcherSessionCoordinator::startSession(bool backward) {
    return start(backward, false);
}

bool SwitcherSessionCoordinator::startSameApplicationSession(bool backward) {
    return start(backward, true);
}

void SwitcherSessionCoordinator::prepare() {
    if (!isSessionActive_) {
        windowEnumerationService_->enumerateSwitchableWindows();
    }
}

bool SwitcherSessionCoordinator::start(bool backward, bool sameApplicationOnly) {
    if (isSessionActive_) {
        return true;
    }
    auto windows =
        recencyOrdering_->orderedByRecency(windowEnumerationService_->enumerateSwitchableWindows());

    if (sameApplicationOnly) {
        auto frontmost = frontmostProcessIdentifierProvider_ ? frontmostProcessIdentifierProvider_()
                                                             : std::nullopt;
        if (!frontmost) {
            return false;
        }
        // Filtering after the ordering keeps the recency order of the full list.
        std::erase_if(windows, [&](const SwitchableWindow& window) {
            return window.owningProcessIdentifier != *frontmost;
        });
    }

    if (windows.empty()) {
        log_.info("switcher session not started — no switchable windows");
        return false;
    }

    sessionWindows_ = std::move(windows);
    isSessionActive_ = true;
    const auto count = static_cast<std::ptrdiff_t>(sessionWindows_.size());
    // Index 0 is the current window, so a plain tap and release goes back to the previous one.
    selectedIndex_ = backward ? count - 1 : (count >= 2 ? 1 : 0);
    overlayPresenter_->presentSwitcher(sessionWindows_, selectedIndex_);
    return true;
}

void SwitcherSessionCoordinator::moveSelection(std::ptrdiff_t delta) {
    if (!isSessionActive_ || sessionWindows_.empty()) {
        return;
    }
    const auto count = static_cast<std::ptrdiff_t>(sessionWindows_.size());
    selectedIndex_ = (((selectedIndex_ + delta) % count) + count) % count;
    overlayPresenter_->updateSelection(selectedIndex_);
}

void SwitcherSessionCoordinator::moveSelection(SwitcherSelectionDirection direction) {
    // A grid's up and down step one card, like left and right: no row arithmetic.
    switch (direction) {
        case SwitcherSelectionDirection::left:
        case SwitcherSelectionDirection::up:
            moveSelection(std::ptrdiff_t{-1});
            return;
        case SwitcherSelectionDirection::right:
        case SwitcherSelectionDirection::down:
            moveSelection(std::ptrdiff_t{+1});
            return;
    }
}

void SwitcherSessionCoordinator::commitSession() {
    if (!isSessionActive_) {
        return;
    }
    std::optional<SwitchableWindow> selectedWindow;
    if (selectedIndex_ >= 0 &&
        selectedIndex_ < static_cast<std::ptrdiff_t>(sessionWindows_.size())) {
        selectedWindow = sessionWindows_[static_cast<std::size_t>(selectedIndex_)];
    }
    endSession();
    // The overlay is gone before anything comes forward.
    overlayPresenter_->dismiss();
    if (selectedWindow) {
        windowActivationService_->activate(*selectedWindow);
    }
}

void SwitcherSessionCoordinator::cancelSession() {
    if (!isSessionActive_) {
        return;
    }
    endSession();
    overlayPresenter_->dismiss();
}

void SwitcherSessionCoordinator::endSession() {
    isSessionActive_ = false;
    sessionWindows_.clear();
    selectedIndex_ = 0;
}

}  // namespace orvane
