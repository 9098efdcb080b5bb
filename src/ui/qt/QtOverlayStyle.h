// The overlay's fonts and colours on this desktop: each text style to a font of the application's
// family at the size the layout expects, each colour role to a colour for a dark panel.
#pragma once

#include <QColor>
#include <QFont>

#include "overlay/OverlayViewData.h"

namespace orvane {

class QtOverlayStyle {
  public:
    static QFont font(OverlayTextStyle style, OverlayFontWeight weight);
    // With `opaque`, the panel's material has no transparency (no compositor to blend it).
    static QColor color(OverlayColorRole role, double opacity = 1.0);
    static QColor material(bool opaque);
};

}  // namespace orvane
