// The compositor's outputs as screens, in the program's coordinates: origin at the bottom left of
// the first output, y growing upwards, in the compositor's logical pixels (points), each with its
// own scale. The main screen holds the active window, else it is the first output. Wayland tells
// no pointer position to a program without a surface under it: the mouse is taken to be at the
// main screen's centre.
#pragma once

#include "platform/ScreenPort.h"
#include "platform/linux/DesktopWindows.h"
#include "platform/wayland/WaylandConnection.h"

namespace orvane {

class WaylandScreens final : public ScreenPort {
  public:
    WaylandScreens(WaylandConnection& connection, DesktopWindows& windows);

    std::vector<ScreenDescription> screens() const override;
    std::optional<ScreenDescription> mainScreen() const override;
    Point mouseLocation() const override;

    // The program's frame in the compositor's logical coordinates (origin top left).
    Rect toCompositor(const Rect& frame) const;
    // The output that holds most of a frame given in the compositor's coordinates; null when
    // there is none.
    const WaylandConnection::Output* outputAt(const Rect& frame) const;

  private:
    // The outputs whose geometry is known.
    std::vector<const WaylandConnection::Output*> described() const;
    // The top edge of the first output, around which y flips.
    double pivot() const;
    ScreenDescription describe(const WaylandConnection::Output& output) const;

    WaylandConnection& connection_;
    DesktopWindows& windows_;
};

}  // namespace orvane
