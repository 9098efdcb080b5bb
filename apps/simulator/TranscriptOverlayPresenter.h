// Stands in for the overlay: tracks whether it is presented and writes every call to the
// transcript.
#pragma once

#include "Transcript.h"
#include "core/SwitcherOverlayPresenting.h"

namespace orvane::simulator {

class TranscriptOverlayPresenter final : public SwitcherOverlayPresenting {
  public:
    explicit TranscriptOverlayPresenter(Transcript& transcript) : transcript_(transcript) {}

    bool isPresented() const override { return isPresented_; }
    void presentSwitcher(const std::vector<SwitchableWindow>& windows,
                         std::ptrdiff_t selectedIndex) override;
    void updateSelection(std::ptrdiff_t selectedIndex) override;
    void presentLauncher(const LauncherOverlayPresentation& presentation) override;
    void dismiss() override;

  private:
    Transcript& transcript_;
    bool isPresented_ = false;
};

}  // namespace orvane::simulator
