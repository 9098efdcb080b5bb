// The launcher mode that searches the open windows by application name and title and brings the
// chosen one forward. It works on a snapshot in most-recently-used order, taken at an empty query
// and reused while the user types, so a keystroke never walks the Accessibility trees.
#pragma once

#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "core/LauncherMode.h"
#include "core/Logger.h"
#include "core/MostRecentlyUsedWindowOrdering.h"
#include "core/SwitchableWindow.h"
#include "core/WindowActivationService.h"
#include "core/WindowEnumerationService.h"
#include "launcher/LauncherCandidateText.h"
#include "platform/SoundPort.h"
#include "platform/WorkspacePort.h"

namespace orvane {

class WindowLauncherMode final : public LauncherMode {
  public:
    // `workspace` gives the row icons, `sound` the beep of a stale commit. Main thread only.
    WindowLauncherMode(std::shared_ptr<WindowEnumerationService> windowEnumerationService,
                       std::shared_ptr<MostRecentlyUsedWindowOrdering> recencyOrdering,
                       std::shared_ptr<WindowActivationService> windowActivationService,
                       std::shared_ptr<WorkspacePort> workspace, std::shared_ptr<SoundPort> sound);

    std::string modeDisplayName() const override { return "Windows"; }
    std::string searchPlaceholder() const override { return "Search windows"; }
    // Takes a fresh snapshot when `query`, as typed, is empty or the last snapshot was empty.
    // Matches "<application> <title>"; higher scores first, then the more recently used.
    std::vector<LauncherItem> items(const std::string& query) override;
    // Activates the snapshot's window of the item; an item missing from the snapshot logs an error
    // and beeps.
    void activate(const LauncherItem& item) override;

    // The identifier of the item that stands for `window`.
    static std::string itemIdentifier(const SwitchableWindow& window);

  private:
    void refreshSnapshot();
    LauncherItem makeItem(const SwitchableWindow& window) const;

    std::shared_ptr<WindowEnumerationService> windowEnumerationService_;
    std::shared_ptr<MostRecentlyUsedWindowOrdering> recencyOrdering_;
    std::shared_ptr<WindowActivationService> windowActivationService_;
    std::shared_ptr<WorkspacePort> workspace_;
    std::shared_ptr<SoundPort> sound_;
    const Logger& log_ = Logger::forCategory(LogCategory::launcher);
    std::unordered_map<std::string, SwitchableWindow> listedWindowsByItemIdentifier_;
    // Most recently used first.
    std::vector<SwitchableWindow> listedWindows_;
    // What each listed window is matched by, folded when the snapshot is taken.
    std::vector<LauncherCandidateText> listedTexts_;
};

}  // namespace orvane
