// Writes the overlay's view data as deterministic text, one line per element, for the
// simulator's transcript.
#pragma once

#include <string>

#include "overlay/OverlayViewData.h"

namespace orvane {

class OverlayTextRenderer {
  public:
    // A first line "panel <width>x<height>", then per element, in drawing order:
    // "<part>[ #<key>] <kind> <x>,<y> <width>x<height>" and what it draws, such as
    // `caption #7 text 105,153 30x12 "Notes" caption secondary tail`. Numbers are rounded to
    // 0.1 and written without a trailing ".0"; an opacity of 1 and absent styling are left out.
    static std::string render(const OverlayViewData& data);
};

}  // namespace orvane
