// The overlay's panel on a Wayland compositor: a layer-shell surface on the overlay layer of the
// output that holds the panel, with the keyboard to itself while it is shown, so that the
// gesture's keys and the release of its modifier come to Orvane. It is painted from the overlay's
// view data into shared-memory buffers, only where the picture changed, and leaves the screen by
// unmapping. A panel taller than its output is cut to it, top first.
#pragma once

#include <QImage>
#include <QTimer>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "overlay/OverlayViewBuilder.h"
#include "overlay/SwitcherOverlayViewModel.h"
#include "platform/OverlayPanelPort.h"
#include "platform/wayland/WaylandConnection.h"
#include "platform/wayland/WaylandScreens.h"
#include "ui/qt/QtOverlayRenderer.h"

struct zwlr_layer_surface_v1;

namespace orvane {

class WaylandOverlayPanel final : public OverlayPanelPort {
  public:
    WaylandOverlayPanel(WaylandConnection& connection, const WaylandScreens& screens,
                        QtOverlayRenderer renderer);
    ~WaylandOverlayPanel() override;
    WaylandOverlayPanel(const WaylandOverlayPanel&) = delete;
    WaylandOverlayPanel& operator=(const WaylandOverlayPanel&) = delete;

    // What the panel draws; observed from now on.
    void attach(std::shared_ptr<SwitcherOverlayViewModel> viewModel,
                std::shared_ptr<const OverlayViewBuilder> builder);

    void setFrame(const Rect& frame, bool display) override;
    void orderFrontRegardless() override;
    void orderOut() override;

    // Whether the panel is on screen now: mapped and painted.
    bool isShown() const { return isConfigured_ && surface_ != nullptr; }
    // How many times the panel has gone up.
    std::uint64_t appearances() const { return appearances_; }
    // Paints now what would be painted once the event is over: after a key, whose changes are
    // all made by then.
    void presentPending();
    // Called each time a new picture of the panel has gone to the compositor.
    void setPresentedHandler(std::function<void()> handler) { presented_ = std::move(handler); }

  private:
    struct Buffer;
    struct Listeners;

    void rebuild();
    // Paints what changed into a free buffer and shows it.
    void present();
    Buffer* freeBuffer();
    void destroySurface();

    WaylandConnection& connection_;
    const WaylandScreens& screens_;
    QtOverlayRenderer renderer_;
    std::shared_ptr<SwitcherOverlayViewModel> viewModel_;
    std::shared_ptr<const OverlayViewBuilder> builder_;
    std::vector<std::function<void()>> unsubscribers_;
    QTimer pendingRebuild_;

    // The panel's frame as the logic gave it, and where it stands in the compositor's coordinates.
    Rect frame_;
    Rect onScreen_;
    // The size and place the surface was last given.
    std::optional<Rect> placed_;
    // The panel's line at the surface's top, when the panel is cut to its output.
    int scroll_ = 0;
    const WaylandConnection::Output* output_ = nullptr;
    std::int32_t scale_ = 1;
    wl_surface* surface_ = nullptr;
    zwlr_layer_surface_v1* layerSurface_ = nullptr;
    bool isConfigured_ = false;
    bool visible_ = false;
    std::uint64_t appearances_ = 0;
    std::function<void()> presented_;
    std::vector<std::unique_ptr<Buffer>> buffers_;
    // What each buffer shows, for painting only the difference.
    OverlayViewData shown_;
};

}  // namespace orvane
