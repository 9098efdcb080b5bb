// Owns one switcher session, from the first trigger tap to the commit or cancellation: takes the
// window list once, keeps the selection, tells the overlay, hands the chosen window to activation.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "core/Identifiers.h"
#include "core/Logger.h"
#include "core/MostRecentlyUsedWindowOrdering.h"
#include "core/SwitcherOverlayPresenting.h"
#include "core/SwitcherSessionDriving.h"
#include "core/WindowActivationService.h"
#include "core/WindowEnumerationService.h"

namespace orvane {

class SwitcherSessionCoordinator final : public SwitcherSessionDriving {
  public:
    // Answers which process is frontmost now; nothing when there is none.
    using FrontmostProcessIdentifierProvider = std::function<std::optional<ProcessIdentifier>()>;

    SwitcherSessionCoordinator(
        std::shared_ptr<WindowEnumerationService> windowEnumerationService,
        std::shared_ptr<MostRecentlyUsedWindowOrdering> recencyOrdering,
        std::shared_ptr<SwitcherOverlayPresenting> overlayPresenter,
        std::shared_ptr<WindowActivationService> windowActivationService,
        FrontmostProcessIdentifierProvider frontmostProcessIdentifierProvider);

    bool isSessionActive() const override { return isSessionActive_; }
    bool startSession(bool backward) override;
    bool startSameApplicationSession(bool backward) override;
    void moveSelection(std::ptrdiff_t delta) override;
    void moveSelection(SwitcherSelectionDirection direction) override;
    void commitSession() override;
    void cancelSession() override;
    // Reads the windows ahead of a gesture that likely comes (its hold key went down), so that
    // its start finds them read where the platform can tell they did not change since.
    void prepare();

    // The session's snapshot, index 0 the most recently used; empty when no session runs.
    const std::vector<SwitchableWindow>& sessionWindows() const { return sessionWindows_; }
    std::ptrdiff_t selectedIndex() const { return selectedIndex_; }

  private:
    bool start(bool backward, bool sameApplicationOnly);
    void endSession();

    std::shared_ptr<WindowEnumerationService> windowEnumerationService_;
    std::shared_ptr<MostRecentlyUsedWindowOrdering> recencyOrdering_;
    std::shared_ptr<SwitcherOverlayPresenting> overlayPresenter_;
    std::shared_ptr<WindowActivationService> windowActivationService_;
    FrontmostProcessIdentifierProvider frontmostProcessIdentifierProvider_;
    std::vector<SwitchableWindow> sessionWindows_;
    std::ptrdiff_t selectedIndex_ = 0;
    bool isSessionActive_ = false;
    const Logger& log_ = Logger::forCategory(LogCategory::overlay);
};

}  // namespace orvane
