#include "ui/qt/QtOverlayPanel.h"

#include <xcb/xcb.h>

#include <QBackingStore>
#include <QGuiApplication>
#include <QPaintEvent>
#include <QPainter>
#include <QPointer>
#include <QTimer>

#include "overlay/OverlayGeometry.h"

namespace orvane {

namespace {

// Far outside any screen: where the panel waits between gestures.
constexpr int offscreen = -32000;

}  // namespace

class QtOverlayPanel::Surface final : public QWidget {
  public:
    Surface(QtOverlayPanel& panel, bool translucent)
        : QWidget(nullptr, Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint |
                               Qt::X11BypassWindowManagerHint | Qt::WindowDoesNotAcceptFocus |
                               Qt::WindowTransparentForInput),
          translucent(translucent),
          panel_(panel) {
        setAttribute(Qt::WA_ShowWithoutActivating);
        setAttribute(Qt::WA_X11DoNotAcceptFocus);
        // An alpha channel only where a compositor blends it: without one it would only cost.
        setAttribute(Qt::WA_TranslucentBackground, translucent);
        setAttribute(Qt::WA_OpaquePaintEvent, !translucent);
        setFocusPolicy(Qt::NoFocus);
        setWindowTitle(QStringLiteral("Orvane overlay"));
    }

    const bool translucent;
    OverlayViewData data;
    // The Expose events of this request are already answered: the whole picture went up right
    // after it.
    std::optional<std::uint16_t> answeredRequest;

  protected:
    bool nativeEvent(const QByteArray& eventType, void* message, qintptr* result) override {
        if (eventType == "xcb_generic_event_t") {
            const auto* event = static_cast<const xcb_generic_event_t*>(message);
            const auto type = event->response_type & 0x7f;
            if (type == XCB_EXPOSE && answeredRequest && event->sequence == *answeredRequest) {
                return true;
            }
            // The panel places itself, and Qt's answer to a move is a handful of round trips to
            // the server (frame margins, coordinates) at the start of every gesture.
            if (type == XCB_CONFIGURE_NOTIFY) {
                return true;
            }
        }
        return QWidget::nativeEvent(eventType, message, result);
    }

    void paintEvent(QPaintEvent* event) override {
        QPainter painter(this);
        if (translucent) {
            painter.setCompositionMode(QPainter::CompositionMode_Source);
            painter.fillRect(event->rect(), Qt::transparent);
            painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
        }
        painter.setClipRegion(event->region());
        panel_.renderer_.paint(painter, data, !translucent, &event->region());
        if (panel_.onPainted) {
            panel_.onPainted();
        }
    }

  private:
    QtOverlayPanel& panel_;
};

QtOverlayPanel::QtOverlayPanel(Environment environment, QtOverlayRenderer renderer)
    : environment_(std::move(environment)),
      renderer_(std::move(renderer)),
      surface_(std::make_unique<Surface>(
          *this, environment_.isComposited && environment_.isComposited())) {
    // The window is mapped out of sight now, so the first gesture pays no map.
    surface_->move(offscreen, offscreen);
    surface_->show();
    pendingRebuild_.setSingleShot(true);
    pendingRebuild_.setInterval(0);
    QObject::connect(&pendingRebuild_, &QTimer::timeout, [this] { rebuildNow(); });
}

QtOverlayPanel::~QtOverlayPanel() {
    for (const auto& unsubscribe : unsubscribers_) {
        unsubscribe();
    }
}

QWidget& QtOverlayPanel::widget() {
    return *surface_;
}

void QtOverlayPanel::attach(std::shared_ptr<SwitcherOverlayViewModel> viewModel,
                            std::shared_ptr<const OverlayViewBuilder> builder) {
    viewModel_ = std::move(viewModel);
    builder_ = std::move(builder);
    auto follow = [this](auto& observable) {
        const auto token = observable.subscribe([this](const auto&) { rebuild(); });
        unsubscribers_.push_back([&observable, token] { observable.unsubscribe(token); });
    };
    follow(viewModel_->windows);
    follow(viewModel_->selectedIndex);
    follow(viewModel_->thumbnailsByWindowIdentifier);
    follow(viewModel_->layoutStyle);
    follow(viewModel_->cardSize);
    follow(viewModel_->thumbnailsEnabled);
    follow(viewModel_->columnCount);
    follow(viewModel_->launcherPresentation);
    QTimer::singleShot(0, surface_.get(), [this] { rehearse(); });
}

void QtOverlayPanel::rehearse() {
    // Two made-up windows painted out of sight, once the program runs: the card shapes at the
    // chosen size, the fonts and the paint path are ready before the first gesture.
    SwitcherOverlayViewModel model;
    model.cardSize.set(viewModel_->cardSize.value());
    model.thumbnailsEnabled.set(viewModel_->thumbnailsEnabled.value());
    model.layoutStyle.set(viewModel_->layoutStyle.value());
    std::vector<SwitchableWindow> windows(2);
    windows[0].windowTitle = windows[1].windowTitle = "Orvane";
    windows[1].windowIdentifier = 1;
    const auto geometry = overlayGeometry(2, std::nullopt, model.cardSize.value());
    model.columnCount.set(geometry.columnCount);
    model.windows.set(std::move(windows));
    model.selectedIndex.set(1);
    const auto data = builder_->build(model, {geometry.panelWidth, geometry.panelHeight});
    const double ratio = surface_->devicePixelRatioF();
    QImage image(static_cast<int>(std::ceil(geometry.panelWidth * ratio)),
                 static_cast<int>(std::ceil(geometry.panelHeight * ratio)),
                 QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(ratio);
    QPainter painter(&image);
    renderer_.paint(painter, data, !surface_->translucent);
}

void QtOverlayPanel::rebuild() {
    if (visible_ && !pendingRebuild_.isActive()) {
        pendingRebuild_.start();
    }
}

void QtOverlayPanel::rebuildNow() {
    if (!visible_ || !viewModel_ || !builder_) {
        return;
    }
    auto data = builder_->build(*viewModel_, size_);
    const auto changed = QtOverlayRenderer::changedRegion(surface_->data, data);
    surface_->data = std::move(data);
    if (!changed.isEmpty()) {
        surface_->repaint(changed);
    }
}

void QtOverlayPanel::setFrame(const Rect& frame, bool display) {
    const auto desktop = environment_.toDesktop ? environment_.toDesktop(frame) : frame;
    size_ = frame.size;
    onScreen_ = QPoint(static_cast<int>(std::lround(desktop.origin.x)),
                       static_cast<int>(std::lround(desktop.origin.y)));
    surface_->setGeometry(QRect(visible_ ? onScreen_ : QPoint(offscreen, offscreen),
                                QSize(static_cast<int>(std::ceil(desktop.size.width)),
                                      static_cast<int>(std::ceil(desktop.size.height)))));
    if (display && visible_) {
        rebuild();
    }
}

void QtOverlayPanel::orderFrontRegardless() {
    const bool composited = environment_.isComposited && environment_.isComposited();
    if (composited != surface_->translucent) {
        // A compositor came or went: the panel needs the other kind of window.
        surface_ = std::make_unique<Surface>(*this, composited);
        surface_->resize(static_cast<int>(std::ceil(size_.width)),
                         static_cast<int>(std::ceil(size_.height)));
    }
    visible_ = true;
    if (!surface_->isVisible()) {
        surface_->move(offscreen, offscreen);
        surface_->show();
    }
    // Painted while still out of sight, and only where it differs from the last gesture's
    // picture, which the panel still holds.
    pendingRebuild_.stop();
    rebuildNow();
    place(onScreen_);
}

void QtOverlayPanel::place(QPoint position) {
    auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    if (x11 == nullptr) {
        surface_->move(position);
        surface_->raise();
        return;
    }
    // Moved and raised in one request, and the whole picture put up right behind it: the screen
    // shows it without waiting for the server's Expose and a second trip through the event loop.
    auto* connection = x11->connection();
    const double ratio = surface_->devicePixelRatioF();
    const std::uint32_t values[] = {
        static_cast<std::uint32_t>(static_cast<std::int32_t>(std::lround(position.x() * ratio))),
        static_cast<std::uint32_t>(static_cast<std::int32_t>(std::lround(position.y() * ratio))),
        XCB_STACK_MODE_ABOVE};
    const auto request = xcb_configure_window(
        connection, static_cast<xcb_window_t>(surface_->winId()),
        XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y | XCB_CONFIG_WINDOW_STACK_MODE, values);
    surface_->answeredRequest.reset();
    if (position == onScreen_) {
        surface_->answeredRequest = static_cast<std::uint16_t>(request.sequence);
        surface_->backingStore()->flush(QRegion(surface_->rect()), surface_->windowHandle());
    }
    xcb_flush(connection);
}

void QtOverlayPanel::orderOut() {
    visible_ = false;
    pendingRebuild_.stop();
    // The window coming forward is asked for after this, in the same key event. The panel leaves
    // once the window manager has brought it: the screen goes from the overlay straight to the
    // result, and the window manager doesn't wait behind the redrawing of all that the panel
    // uncovers. It stays mapped, so showing it again costs no map.
    QTimer::singleShot(0, surface_.get(), [this] {
        auto leave = [this, surface = QPointer<QWidget>(surface_.get())] {
            if (surface && !visible_) {
                place(QPoint(offscreen, offscreen));
            }
        };
        if (environment_.afterActivation) {
            environment_.afterActivation(leave);
        } else {
            leave();
        }
    });
}

}  // namespace orvane
