// What the overlay draws: the switcher's cards or the launcher, as observable fields written by
// the overlay coordinator and read by the views. Main thread only.
#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <optional>
#include <vector>

#include "core/LauncherOverlayPresentation.h"
#include "core/Observable.h"
#include "core/SwitchableWindow.h"
#include "platform/ImageHandle.h"
#include "preferences/SwitcherPreferences.h"

namespace orvane {

class SwitcherOverlayViewModel {
  public:
    // Observers hear of a list with other identifiers in some position, not of changed titles.
    Observable<std::vector<SwitchableWindow>> windows;
    Observable<std::ptrdiff_t> selectedIndex{0};
    // Thumbnails that have arrived so far.
    Observable<std::map<WindowIdentifier, ImageHandle>> thumbnailsByWindowIdentifier;
    Observable<SwitcherOverlayLayoutStyle> layoutStyle{SwitcherOverlayLayoutStyle::row};
    Observable<SwitcherCardSize> cardSize{SwitcherCardSize::medium};
    Observable<bool> thumbnailsEnabled{true};
    Observable<std::ptrdiff_t> columnCount{1};
    // With a value the overlay shows the launcher instead of the cards. Written with `replace`:
    // every write is told.
    Observable<std::optional<LauncherOverlayPresentation>> launcherPresentation;

    // Calls `changed` after a change of any field, until the returned calls are made: what a view
    // that redraws the whole model needs.
    std::vector<std::function<void()>> observeEveryField(const std::function<void()>& changed) {
        std::vector<std::function<void()>> unsubscribers;
        auto follow = [&](auto& observable) {
            const auto token = observable.subscribe([changed](const auto&) { changed(); });
            unsubscribers.push_back([&observable, token] { observable.unsubscribe(token); });
        };
        follow(windows);
        follow(selectedIndex);
        follow(thumbnailsByWindowIdentifier);
        follow(layoutStyle);
        follow(cardSize);
        follow(thumbnailsEnabled);
        follow(columnCount);
        follow(launcherPresentation);
        return unsubscribers;
    }

    // The window at `selectedIndex`, when the index lies inside `windows`.
    std::optional<SwitchableWindow> selectedWindow() const {
        const auto index = selectedIndex.value();
        const auto& list = windows.value();
        if (index < 0 || index >= static_cast<std::ptrdiff_t>(list.size())) {
            return std::nullopt;
        }
        return list[static_cast<std::size_t>(index)];
    }
};

}  // namespace orvane
