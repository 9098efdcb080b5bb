// Owns one launcher session: the query as typed, the active mode, the visible results and the
// selected row. Publishes a complete presentation to the overlay at every change and hands the
// committed item to the mode that listed it. Has no key handling: the event tap calls it.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "core/LauncherItem.h"
#include "core/LauncherMode.h"
#include "core/LauncherSessionDriving.h"
#include "core/Logger.h"
#include "core/SwitcherOverlayPresenting.h"
#include "launcher/GraphemeClusters.h"

namespace orvane {

class LauncherSessionCoordinator final : public LauncherSessionDriving {
  public:
    enum class ActiveModeSelection { windows, installedApplications };

    // The session shows at most this many results; the modes apply no limit of their own.
    static constexpr std::size_t maximumVisibleItems = 8;

    // All three are held for the coordinator's life and must not be null.
    LauncherSessionCoordinator(std::shared_ptr<LauncherMode> windowLauncherMode,
                               std::shared_ptr<LauncherMode> installedApplicationLauncherMode,
                               std::shared_ptr<SwitcherOverlayPresenting> overlayPresenter);

    bool isLauncherSessionActive() const override { return isLauncherSessionActive_; }
    // Starts in the windows mode with an empty query; ignored while a session runs.
    void beginLauncherSession() override;
    // Flips the mode, empties the query, selects row 0; ignored outside a session.
    void switchLauncherMode() override;
    // Ignored outside a session and for empty text; selects row 0.
    void appendToSearchQuery(const std::string& text) override;
    // Removes the last grapheme cluster; ignored outside a session and for an empty query.
    void deleteLastSearchCharacter() override;
    // Wraps at both ends and asks the mode nothing; ignored outside a session and with no results.
    void moveLauncherSelection(std::ptrdiff_t delta) override;
    // Ends the session (the overlay is dismissed first), then activates the selected item, if
    // any, through the mode that was active. Ignored outside a session.
    void commitLauncherSession() override;
    // Clears the session and dismisses the overlay. Does not test the flag: outside a session it
    // still logs and dismisses.
    void endLauncherSession() override;

    ActiveModeSelection activeModeSelection() const { return activeModeSelection_; }
    // The query as typed: untrimmed and unfolded.
    const std::string& searchQuery() const { return searchQuery_; }
    const std::vector<LauncherItem>& visibleItems() const { return visibleItems_; }
    std::ptrdiff_t selectedIndex() const { return selectedIndex_; }

  private:
    LauncherMode& activeMode() const;
    // Asks the mode again and selects the first row: every change of the query or mode does.
    void refresh();
    void publish();

    std::shared_ptr<LauncherMode> windowLauncherMode_;
    std::shared_ptr<LauncherMode> installedApplicationLauncherMode_;
    std::shared_ptr<SwitcherOverlayPresenting> overlayPresenter_;
    const Logger& log_ = Logger::forCategory(LogCategory::launcher);
    bool isLauncherSessionActive_ = false;
    ActiveModeSelection activeModeSelection_ = ActiveModeSelection::windows;
    std::string searchQuery_;
    std::vector<LauncherItem> visibleItems_;
    std::ptrdiff_t selectedIndex_ = 0;
    GraphemeClusters graphemeClusters_;
};

}  // namespace orvane
