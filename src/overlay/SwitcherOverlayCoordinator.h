// Owns the one overlay panel for the switcher and the launcher: chooses the screen under the mouse,
// sizes and places the panel, writes the view model, and feeds thumbnails into it as they arrive.
// Never touches the keyboard: the panel cannot become key.
#pragma once

#include <map>
#include <memory>
#include <optional>

#include "core/CancellationToken.h"
#include "core/Logger.h"
#include "core/PreferencesProviding.h"
#include "core/SwitcherOverlayPresenting.h"
#include "core/WindowThumbnailCaptureService.h"
#include "overlay/SwitcherOverlayViewModel.h"
#include "platform/OverlayPanelPort.h"
#include "platform/RunLoopPort.h"
#include "platform/ScreenPort.h"

namespace orvane {

class SwitcherOverlayCoordinator final
    : public SwitcherOverlayPresenting,
      public std::enable_shared_from_this<SwitcherOverlayCoordinator> {
  public:
    // Must be held by a `std::shared_ptr`: thumbnail tasks hold it weakly.
    SwitcherOverlayCoordinator(
        std::shared_ptr<WindowThumbnailCaptureService> thumbnailCaptureService,
        std::shared_ptr<PreferencesProviding> preferencesProvider,
        std::shared_ptr<ScreenPort> screens, std::shared_ptr<OverlayPanelPort> panel,
        std::shared_ptr<RunLoopPort> runLoop);

    bool isPresented() const override { return isPresented_; }
    void presentSwitcher(const std::vector<SwitchableWindow>& windows,
                         std::ptrdiff_t selectedIndex) override;
    void updateSelection(std::ptrdiff_t selectedIndex) override;
    void presentLauncher(const LauncherOverlayPresentation& presentation) override;
    void dismiss() override;

    // Shared with the views, which read it and never write it.
    const std::shared_ptr<SwitcherOverlayViewModel>& viewModel() const { return viewModel_; }
    std::size_t pendingThumbnailTaskCount() const {
        return thumbnailCaptureTasksByWindowIdentifier_.size();
    }

  private:
    void cancelThumbnailTasks();
    std::optional<ScreenDescription> chooseScreen() const;
    void startThumbnailTasks(const std::vector<SwitchableWindow>& windows);
    void placePanel(const Rect& frame);

    bool isPresented_ = false;
    std::shared_ptr<WindowThumbnailCaptureService> thumbnailCaptureService_;
    std::shared_ptr<PreferencesProviding> preferencesProvider_;
    std::shared_ptr<ScreenPort> screens_;
    std::shared_ptr<OverlayPanelPort> panel_;
    std::shared_ptr<RunLoopPort> runLoop_;
    std::shared_ptr<SwitcherOverlayViewModel> viewModel_ =
        std::make_shared<SwitcherOverlayViewModel>();
    std::map<WindowIdentifier, CancellationToken> thumbnailCaptureTasksByWindowIdentifier_;
    const Logger& log_ = Logger::forCategory(LogCategory::overlay);
};

}  // namespace orvane
