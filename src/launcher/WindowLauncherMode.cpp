#include "launcher/WindowLauncherMode.h"

#include <algorithm>
#include <utility>

#include "launcher/LauncherMatchScore.h"

namespace orvane {

WindowLauncherMode::WindowLauncherMode(
    std::shared_ptr<WindowEnumerationService> windowEnumerationService,
    std::shared_ptr<MostRecentlyUsedWindowOrdering> recencyOrdering,
    std::shared_ptr<WindowActivationService> windowActivationService,
    std::shared_ptr<WorkspacePort> workspace, std::shared_ptr<SoundPort> sound)
    : windowEnumerationService_(std::move(windowEnumerationService)),
      recencyOrdering_(std::move(recencyOrdering)),
      windowActivationService_(std::move(windowActivationService)),
      workspace_(std::move(workspace)),
      sound_(std::move(sound)) {}

std::string WindowLauncherMode::itemIdentifier(const SwitchableWindow& window) {
    return "window-" + std::to_string(window.windowIdentifier);
}

std::vector<LauncherItem> WindowLauncherMode::items(const std::string& query) {
    // The raw query decides: a query of one space keeps the snapshot while the user types.
    if (query.empty() || listedWindows_.empty()) {
        refreshSnapshot();
    }

    struct ScoredWindow {
        int score;
        const SwitchableWindow* window;
    };
    std::vector<ScoredWindow> matches;
    for (std::size_t index = 0; index < listedWindows_.size(); ++index) {
        if (const auto score = launcherMatchScore(query, listedTexts_[index])) {
            matches.push_back({*score, &listedWindows_[index]});
        }
    }
    // Stable: equal scores keep the snapshot's recency order.
    std::stable_sort(matches.begin(), matches.end(),
                     [](const ScoredWindow& left, const ScoredWindow& right) {
                         return left.score > right.score;
                     });

    std::vector<LauncherItem> result;
    result.reserve(matches.size());
    for (const auto& match : matches) {
        result.push_back(makeItem(*match.window));
    }
    return result;
}

void WindowLauncherMode::activate(const LauncherItem& item) {
    const auto found = listedWindowsByItemIdentifier_.find(item.identifier);
    if (found == listedWindowsByItemIdentifier_.end()) {
        log_.error("launcher window item is stale; nothing activated");
        sound_->beep();
        return;
    }
    // The snapshot's record: a window closed since is the activation service's to handle.
    windowActivationService_->activate(found->second);
}

void WindowLauncherMode::refreshSnapshot() {
    listedWindows_ =
        recencyOrdering_->orderedByRecency(windowEnumerationService_->enumerateSwitchableWindows());
    listedWindowsByItemIdentifier_.clear();
    listedTexts_.clear();
    listedTexts_.reserve(listedWindows_.size());
    for (const auto& window : listedWindows_) {
        // Application first, so the prefix tier favours application names.
        listedTexts_.emplace_back(window.owningApplicationName + " " + window.windowTitle);
        // emplace keeps the first window of a repeated identifier.
        listedWindowsByItemIdentifier_.emplace(itemIdentifier(window), window);
    }
}

LauncherItem WindowLauncherMode::makeItem(const SwitchableWindow& window) const {
    LauncherItem item;
    item.identifier = itemIdentifier(window);
    item.title = window.windowTitle.empty() ? window.owningApplicationName : window.windowTitle;
    item.subtitle = window.owningApplicationName;
    if (const auto application = workspace_->runningApplication(window.owningProcessIdentifier)) {
        item.icon = application->icon;
    }
    return item;
}

}  // namespace orvane
