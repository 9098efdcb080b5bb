// The overlay's panel on the desktop: an override-redirect window that never takes the focus,
// painted from the overlay's view data. It follows the view model while it is on screen and
// repaints only what changed; it has real transparency when a compositor runs and is a square,
// solid panel when none does. Between gestures it stays mapped far outside the screen, so that
// showing it is a move, not a map.
#pragma once

#include <QTimer>
#include <QWidget>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "core/Observable.h"
#include "overlay/OverlayViewBuilder.h"
#include "overlay/SwitcherOverlayViewModel.h"
#include "platform/OverlayPanelPort.h"
#include "ui/qt/QtOverlayRenderer.h"

namespace orvane {

class QtOverlayPanel final : public OverlayPanelPort {
  public:
    struct Environment {
        // Whether a compositor blends windows now.
        std::function<bool()> isComposited;
        // Program points (origin bottom left of the primary screen) to desktop logical pixels
        // (origin top left).
        std::function<Rect(const Rect&)> toDesktop;
        // Calls back once the window manager has answered the activation asked of it last; at
        // once when none is outstanding.
        std::function<void(std::function<void()>)> afterActivation;
    };

    QtOverlayPanel(Environment environment, QtOverlayRenderer renderer);
    ~QtOverlayPanel() override;

    // What the panel draws; observed from now on.
    void attach(std::shared_ptr<SwitcherOverlayViewModel> viewModel,
                std::shared_ptr<const OverlayViewBuilder> builder);

    void setFrame(const Rect& frame, bool display) override;
    void orderFrontRegardless() override;
    void orderOut() override;

    QWidget& widget();
    // Called after each paint with what was painted, for measurements.
    std::function<void()> onPainted;

  private:
    class Surface;

    // The model changes a field at a time within one event: the picture is built once, when the
    // event is over.
    void rebuild();
    void rebuildNow();
    void rehearse();
    // Moves the panel's window there, above all others; on the screen its picture goes up with it.
    void place(QPoint position);

    Environment environment_;
    QtOverlayRenderer renderer_;
    std::unique_ptr<Surface> surface_;
    std::shared_ptr<SwitcherOverlayViewModel> viewModel_;
    std::shared_ptr<const OverlayViewBuilder> builder_;
    std::vector<std::function<void()>> unsubscribers_;
    Size size_;
    QPoint onScreen_;
    bool visible_ = false;
    QTimer pendingRebuild_;
};

}  // namespace orvane
