// Passes every overlay call through to the real coordinator and writes it to the transcript.
#pragma once

#include <memory>

#include "Transcript.h"
#include "core/SwitcherOverlayPresenting.h"

namespace orvane::simulator {

class TranscriptOverlayPresenter final : public SwitcherOverlayPresenting {
  public:
    TranscriptOverlayPresenter(std::shared_ptr<SwitcherOverlayPresenting> presenter,
                               Transcript& transcript)
        : presenter_(std::move(presenter)), transcript_(transcript) {}

    bool isPresented() const override { return presenter_->isPresented(); }
    void presentSwitcher(const std::vector<SwitchableWindow>& windows,
                         std::ptrdiff_t selectedIndex) override;
    void updateSelection(std::ptrdiff_t selectedIndex) override;
    void presentLauncher(const LauncherOverlayPresentation& presentation) override;
    void dismiss() override;

  private:
    std::shared_ptr<SwitcherOverlayPresenting> presenter_;
    Transcript& transcript_;
};

}  // namespace orvane::simulator
