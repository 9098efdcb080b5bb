#include "overlay/SwitcherOverlayCoordinator.h"

#include <algorithm>
#include <utility>

#include "overlay/OverlayGeometry.h"

namespace orvane {

namespace {

constexpr double launcherPanelWidth = 640;
constexpr double launcherEmptyPanelHeight = 160;
constexpr double launcherRowHeight = 40;
constexpr double launcherRowSpacing = 4;
constexpr double launcherSearchRowAndSpacing = 48;
constexpr double launcherPadding = 40;

std::ptrdiff_t clamped(std::ptrdiff_t index, std::size_t count) {
    if (count == 0) {
        return 0;
    }
    return std::min(static_cast<std::ptrdiff_t>(count) - 1, std::max<std::ptrdiff_t>(index, 0));
}

// The platform's test for unflipped coordinates: the bottom edge is outside, the top edge inside.
bool mouseInRect(const Point& point, const Rect& rect) {
    return point.x >= rect.minX() && point.x < rect.maxX() && point.y > rect.minY() &&
           point.y <= rect.maxY();
}

double midX(const Rect& rect) {
    return rect.minX() + rect.width() / 2;
}
double midY(const Rect& rect) {
    return rect.minY() + rect.height() / 2;
}

}  // namespace

SwitcherOverlayCoordinator::SwitcherOverlayCoordinator(
    std::shared_ptr<WindowThumbnailCaptureService> thumbnailCaptureService,
    std::shared_ptr<PreferencesProviding> preferencesProvider, std::shared_ptr<ScreenPort> screens,
    std::shared_ptr<OverlayPanelPort> panel, std::shared_ptr<RunLoopPort> runLoop)
    : thumbnailCaptureService_(std::move(thumbnailCaptureService)),
      preferencesProvider_(std::move(preferencesProvider)),
      screens_(std::move(screens)),
      panel_(std::move(panel)),
      runLoop_(std::move(runLoop)) {}

void SwitcherOverlayCoordinator::cancelThumbnailTasks() {
    for (auto& [identifier, task] : thumbnailCaptureTasksByWindowIdentifier_) {
        task.cancel();
    }
    thumbnailCaptureTasksByWindowIdentifier_.clear();
}

std::optional<ScreenDescription> SwitcherOverlayCoordinator::chooseScreen() const {
    // The screen under the mouse, not the one of the active window.
    const auto screens = screens_->screens();
    // With one screen there is nothing to choose: asking where the mouse is costs a round trip.
    if (screens.size() == 1) {
        return screens.front();
    }
    const auto mouse = screens_->mouseLocation();
    for (const auto& screen : screens) {
        if (mouseInRect(mouse, screen.frame)) {
            return screen;
        }
    }
    return screens_->mainScreen();
}

void SwitcherOverlayCoordinator::placePanel(const Rect& frame) {
    panel_->setFrame(frame, true);
    panel_->orderFrontRegardless();
    isPresented_ = true;
}

void SwitcherOverlayCoordinator::presentSwitcher(const std::vector<SwitchableWindow>& windows,
                                                 std::ptrdiff_t selectedIndex) {
    cancelThumbnailTasks();
    viewModel_->launcherPresentation.replace(std::nullopt);

    const auto preferences = preferencesProvider_->preferences();
    viewModel_->layoutStyle.set(preferences.overlayLayoutStyle);
    viewModel_->cardSize.set(preferences.cardSize);
    viewModel_->thumbnailsEnabled.set(preferences.thumbnailsEnabled);
    viewModel_->windows.set(windows);
    viewModel_->selectedIndex.set(clamped(selectedIndex, windows.size()));

    // Thumbnails of windows still listed stay; the others go.
    auto thumbnails = viewModel_->thumbnailsByWindowIdentifier.value();
    std::erase_if(thumbnails, [&](const auto& entry) {
        return std::none_of(windows.begin(), windows.end(), [&](const SwitchableWindow& window) {
            return window.windowIdentifier == entry.first;
        });
    });
    viewModel_->thumbnailsByWindowIdentifier.set(std::move(thumbnails));

    const auto screen = chooseScreen();
    const auto geometry =
        overlayGeometry(static_cast<std::ptrdiff_t>(windows.size()),
                        screen ? std::optional<double>(screen->visibleFrame.width()) : std::nullopt,
                        preferences.cardSize);
    viewModel_->columnCount.set(geometry.columnCount);

    Point origin;
    if (screen) {
        origin = Point{midX(screen->visibleFrame) - geometry.panelWidth / 2,
                       midY(screen->visibleFrame) - geometry.panelHeight / 2};
    }
    placePanel(Rect{origin, {geometry.panelWidth, geometry.panelHeight}});

    if (preferences.thumbnailsEnabled) {
        startThumbnailTasks(windows);
    }
    log_.info("presented switcher: %{public}ld windows, %{public}ld columns", windows.size(),
              geometry.columnCount);
}

void SwitcherOverlayCoordinator::startThumbnailTasks(const std::vector<SwitchableWindow>& windows) {
    std::weak_ptr<SwitcherOverlayCoordinator> weakSelf = weak_from_this();
    // In list order, so the most recent windows are asked first.
    for (const auto& window : windows) {
        const auto identifier = window.windowIdentifier;
        if (viewModel_->thumbnailsByWindowIdentifier.value().contains(identifier)) {
            continue;
        }
        CancellationToken task;
        thumbnailCaptureTasksByWindowIdentifier_.insert_or_assign(identifier, task);
        runLoop_->post([weakSelf, window, task] {
            auto self = weakSelf.lock();
            if (!self) {
                return;
            }
            self->thumbnailCaptureService_->captureThumbnail(
                window, task,
                [weakSelf, identifier = window.windowIdentifier,
                 task](std::optional<ImageHandle> image) {
                    auto self = weakSelf.lock();
                    // A cancelled task writes nothing and leaves the map alone: a newer task for
                    // the same window may stand in it.
                    if (!self || task.isCancelled()) {
                        return;
                    }
                    if (image) {
                        auto thumbnails = self->viewModel_->thumbnailsByWindowIdentifier.value();
                        thumbnails.insert_or_assign(identifier, std::move(*image));
                        self->viewModel_->thumbnailsByWindowIdentifier.set(std::move(thumbnails));
                    } else {
                        self->log_.debug(
                            "no thumbnail for window %{public}u; keeping application-icon fallback",
                            identifier);
                    }
                    self->thumbnailCaptureTasksByWindowIdentifier_.erase(identifier);
                });
        });
    }
}

void SwitcherOverlayCoordinator::updateSelection(std::ptrdiff_t selectedIndex) {
    viewModel_->selectedIndex.set(clamped(selectedIndex, viewModel_->windows.value().size()));
}

void SwitcherOverlayCoordinator::presentLauncher(const LauncherOverlayPresentation& presentation) {
    cancelThumbnailTasks();
    viewModel_->windows.set({});
    viewModel_->thumbnailsByWindowIdentifier.set({});
    viewModel_->launcherPresentation.replace(presentation);

    const auto screen = chooseScreen();
    const auto count = static_cast<double>(presentation.items.size());
    const double height = presentation.items.empty()
                              ? launcherEmptyPanelHeight
                              : count * launcherRowHeight + count * launcherRowSpacing +
                                    launcherSearchRowAndSpacing + launcherPadding;
    Point origin;
    if (screen) {
        // Centred, so the top edge moves as the number of results changes.
        origin = Point{midX(screen->visibleFrame) - launcherPanelWidth / 2,
                       midY(screen->visibleFrame) - height / 2};
    }
    placePanel(Rect{origin, {launcherPanelWidth, height}});
}

void SwitcherOverlayCoordinator::dismiss() {
    if (!isPresented_) {
        return;
    }
    cancelThumbnailTasks();
    panel_->orderOut();
    isPresented_ = false;
    viewModel_->thumbnailsByWindowIdentifier.set({});
    viewModel_->launcherPresentation.replace(std::nullopt);
    log_.info("dismissed switcher");
}

}  // namespace orvane
