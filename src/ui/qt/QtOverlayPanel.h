// The overlay's panel on the desktop: an override-redirect window that never takes the focus,
// painted from the overlay's view data. It follows the view model while it is on screen and
// repaints only what changed. On X11 its picture lives on the server as the window's background,
// and a second picture keeps the last gesture's opening: showing it sends only the cards that
// changed since. It has real transparency when a compositor runs and is a square, solid panel when
// none does. Between gestures it stays mapped far outside the screen, so that showing it is a
// move, not a map. A panel taller than the screen's usable area is cut to it, top first, and
// scrolls to keep the selected card in sight.
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
#include "ui/qt/QtServerPicture.h"

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

  private:
    class Surface;

    // The model changes a field at a time within one event: the picture is built once, when the
    // event is over.
    void rebuild();
    void rebuildNow();
    // Brings the picture up to a view model, painting and sending only what changed.
    void rebuildInto(QtServerPicture& picture, const SwitcherOverlayViewModel& model);
    // What the next gesture will most likely open on, once this one's choice is active; nothing
    // for the launcher.
    std::shared_ptr<const SwitcherOverlayViewModel> nextOpening() const;
    void rehearse();
    // A picture of the window's size, kept on the server where there is one.
    void preparePicture();
    // Paints that region of the window (logical pixels) of the picture from its data, and sends
    // it.
    void draw(QtServerPicture& picture, const QRegion& region);
    // Moves the panel's window there, above all others; on the screen its picture goes up with it.
    void place(QPoint position);
    // The panel's line at the window's top that keeps the selected card in sight: the one shown
    // now when it does.
    int scrollFor(const OverlayViewData& data, const SwitcherOverlayViewModel& model) const;

    Environment environment_;
    QtOverlayRenderer renderer_;
    std::unique_ptr<Surface> surface_;
    std::shared_ptr<SwitcherOverlayViewModel> viewModel_;
    std::shared_ptr<const OverlayViewBuilder> builder_;
    std::vector<std::function<void()>> unsubscribers_;
    // The panel's size, as the logic gave it; the window is `onScreen_`, the panel's part from
    // `scroll_` down.
    Size size_;
    QRect onScreen_;
    int scroll_ = 0;
    // Whether the window stands at `onScreen_` now.
    bool isPlaced_ = false;
    bool visible_ = false;
    QTimer pendingRebuild_;
};

}  // namespace orvane
