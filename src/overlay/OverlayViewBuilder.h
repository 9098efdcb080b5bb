// Turns what the overlay's view model holds into positioned drawing elements: the switcher's cards
// or the launcher, on the panel's rounded background. A renderer only draws the result.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "core/Geometry.h"
#include "core/Identifiers.h"
#include "core/Wording.h"
#include "overlay/OverlayTextMeasuring.h"
#include "overlay/OverlayViewData.h"
#include "overlay/SwitcherOverlayViewModel.h"
#include "platform/ImageHandle.h"

namespace orvane {

class OverlayViewBuilder {
  public:
    // The icon of the running application with that process, or nothing when it has quit.
    using ApplicationIconResolver = std::function<std::optional<ImageHandle>(
        ProcessIdentifier processIdentifier, const std::string& applicationName)>;

    // The measurer must answer as the renderer's fonts will draw.
    // The wording applies to the overlay's own texts, never to titles or names.
    OverlayViewBuilder(ApplicationIconResolver iconResolver,
                       std::shared_ptr<const OverlayTextMeasuring> textMeasurer,
                       Wording wording = {});

    // The elements for a panel of `panelSize`, the frame the coordinator gave it; the content
    // stands centred inside the padding. Reads the model only, and resolves each card's icon anew.
    OverlayViewData build(const SwitcherOverlayViewModel& viewModel, Size panelSize) const;

  private:
    ApplicationIconResolver iconResolver_;
    std::shared_ptr<const OverlayTextMeasuring> textMeasurer_;
    Wording wording_;
};

}  // namespace orvane
