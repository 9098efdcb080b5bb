// The monitors from RandR, the pointer from the server, and the scale factor from the desktop's
// DPI setting (Xft.dpi), in the program's screen coordinates: origin at the bottom left of the
// primary monitor, y growing upwards. Both are read once and again only after the server says
// they changed, so a gesture costs no round trip for them.
#pragma once

#include "platform/ScreenPort.h"
#include "platform/x11/X11Connection.h"
#include "platform/x11/X11WindowModel.h"

namespace orvane {

class X11Screens final : public ScreenPort {
  public:
    X11Screens(X11Connection& connection, X11WindowModel& model);

    std::vector<ScreenDescription> screens() const override;
    // The monitor of the active window, else the pointer's.
    std::optional<ScreenDescription> mainScreen() const override;
    Point mouseLocation() const override;

    // Pixels per point of the desktop (1 at 96 DPI).
    double scaleFactor() const;
    // The height of the primary monitor in pixels: the pivot between X and program coordinates.
    double primaryHeight() const;

  private:
    struct Monitor {
        Rect frame;  // X coordinates, top left origin
        bool primary = false;
    };
    const std::vector<Monitor>& monitors() const;
    std::vector<Monitor> readMonitors() const;
    double readScaleFactor() const;
    ScreenDescription describe(const Monitor& monitor, double pivot) const;

    X11Connection& connection_;
    X11WindowModel& model_;
    mutable std::optional<std::vector<Monitor>> monitors_;
    mutable std::optional<double> scaleFactor_;
};

}  // namespace orvane
