#include "ui/qt/QtOverlayPanel.h"

#include <sys/ipc.h>
#include <sys/shm.h>
#include <xcb/shm.h>
#include <xcb/xcb.h>

#include <QGuiApplication>
#include <QPaintEvent>
#include <QPainter>
#include <QPointer>
#include <QScreen>
#include <QTimer>
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "overlay/OverlayGeometry.h"

namespace orvane {

namespace {

// Far outside any screen: where the panel waits between gestures.
constexpr int offscreen = -32000;
// Room kept between the selected card and the cut edge of a panel that scrolls.
constexpr int scrollMargin = 24;

// The usable area of the screen that holds most of a rectangle, in desktop logical pixels.
QRect usableArea(const QRect& rectangle) {
    auto* screen = QGuiApplication::screenAt(rectangle.center());
    if (screen == nullptr) {
        screen = QGuiApplication::primaryScreen();
    }
    return screen != nullptr ? screen->availableGeometry() : rectangle;
}

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
    ~Surface() override { releasePicture(); }

    const bool translucent;
    OverlayViewData data;
    // The panel's picture as the window shows it, in device pixels; in memory shared with the
    // X server where it can be.
    QImage picture;

    // A blank picture of that many device pixels. On X11 the picture lives on the server too, as
    // the window's background: the server draws it whenever the window comes on screen, and only
    // the rectangles that changed are ever sent.
    void preparePicture(QSize pixels, double ratio, xcb_connection_t* connection) {
        releasePicture();
        const auto format =
            translucent ? QImage::Format_ARGB32_Premultiplied : QImage::Format_RGB32;
        connection_ = connection;
        if (connection_ != nullptr && shareMemory(pixels)) {
            picture = QImage(memory_, pixels.width(), pixels.height(), pixels.width() * 4, format);
        } else {
            picture = QImage(pixels, format);
        }
        picture.setDevicePixelRatio(ratio);
        picture.fill(Qt::transparent);
        if (connection_ == nullptr) {
            return;
        }
        const auto window = static_cast<xcb_window_t>(winId());
        auto* geometry =
            xcb_get_geometry_reply(connection_, xcb_get_geometry(connection_, window), nullptr);
        if (geometry == nullptr) {
            return;
        }
        depth_ = geometry->depth;
        std::free(geometry);
        pixmap_ = xcb_generate_id(connection_);
        xcb_create_pixmap(connection_, depth_, pixmap_, window,
                          static_cast<std::uint16_t>(pixels.width()),
                          static_cast<std::uint16_t>(pixels.height()));
        context_ = xcb_generate_id(connection_);
        xcb_create_gc(connection_, context_, pixmap_, 0, nullptr);
        xcb_change_window_attributes(connection_, window, XCB_CW_BACK_PIXMAP, &pixmap_);
    }
    bool isOnServer() const { return pixmap_ != 0; }

    // Before the picture is painted on: the server has read what was last sent from it.
    void waitUntilSent() {
        if (pendingSend_) {
            // Answered long ago as a rule, so this reads a reply already there.
            std::free(xcb_get_input_focus_reply(connection_, *pendingSend_, nullptr));
            pendingSend_.reset();
        }
    }

    // Sends these rectangles of the picture (device pixels) to the server; with `show`, the
    // window draws them now.
    void send(const std::vector<QRect>& rectangles, bool show) {
        if (!isOnServer()) {
            return;
        }
        const auto window = static_cast<xcb_window_t>(winId());
        for (const auto& rectangle : rectangles) {
            const auto x = static_cast<std::int16_t>(rectangle.x());
            const auto y = static_cast<std::int16_t>(rectangle.y());
            const auto width = static_cast<std::uint16_t>(rectangle.width());
            const auto height = static_cast<std::uint16_t>(rectangle.height());
            if (segment_ != 0) {
                xcb_shm_put_image(connection_, pixmap_, context_,
                                  static_cast<std::uint16_t>(picture.width()),
                                  static_cast<std::uint16_t>(picture.height()), x, y, width, height,
                                  x, y, depth_, XCB_IMAGE_FORMAT_Z_PIXMAP, 0, segment_, 0);
            } else {
                putLines(rectangle);
            }
            if (show) {
                xcb_clear_area(connection_, 0, window, x, y, width, height);
            }
        }
        if (segment_ != 0) {
            pendingSend_ = xcb_get_input_focus(connection_);
        }
        // Qt sends its own requests when it draws; these would wait for its next drawing.
        if (show) {
            xcb_flush(connection_);
        }
    }

  protected:
    bool nativeEvent(const QByteArray& eventType, void* message, qintptr* result) override {
        if (eventType == "xcb_generic_event_t") {
            const auto type =
                static_cast<const xcb_generic_event_t*>(message)->response_type & 0x7f;
            // The server answers exposures from the background; and the panel places itself,
            // where Qt's answer to a move is a handful of round trips to the server (frame
            // margins, coordinates) at the start of every gesture.
            if ((type == XCB_EXPOSE && isOnServer()) || type == XCB_CONFIGURE_NOTIFY) {
                return true;
            }
        }
        return QWidget::nativeEvent(eventType, message, result);
    }

    void paintEvent(QPaintEvent* event) override {
        // What Qt paints by itself (after a resize, or without X11) is the same picture.
        QPainter painter(this);
        painter.setCompositionMode(QPainter::CompositionMode_Source);
        painter.setClipRegion(event->region());
        painter.drawImage(QPoint(0, 0), picture);
        if (panel_.onPainted) {
            panel_.onPainted();
        }
    }

  private:
    bool shareMemory(QSize pixels) {
        const auto* extension = xcb_get_extension_data(connection_, &xcb_shm_id);
        if (extension == nullptr || !extension->present) {
            return false;
        }
        const auto bytes = static_cast<std::size_t>(pixels.width()) * pixels.height() * 4;
        const int identifier = ::shmget(IPC_PRIVATE, bytes, IPC_CREAT | 0600);
        if (identifier < 0) {
            return false;
        }
        void* memory = ::shmat(identifier, nullptr, 0);
        segment_ = xcb_generate_id(connection_);
        auto* error = memory == reinterpret_cast<void*>(-1)
                          ? nullptr
                          : xcb_request_check(
                                connection_,
                                xcb_shm_attach_checked(connection_, segment_,
                                                       static_cast<std::uint32_t>(identifier), 0));
        // Gone with the last detach, whatever happens to either side.
        ::shmctl(identifier, IPC_RMID, nullptr);
        if (memory == reinterpret_cast<void*>(-1) || error != nullptr) {
            std::free(error);
            if (memory != reinterpret_cast<void*>(-1)) {
                ::shmdt(memory);
            }
            segment_ = 0;
            return false;
        }
        memory_ = static_cast<uchar*>(memory);
        return true;
    }

    // Without shared memory: whole lines, as many to a request as the server takes.
    void putLines(const QRect& rectangle) {
        const auto rowBytes = static_cast<std::size_t>(picture.bytesPerLine());
        const auto maximumRows = std::max<std::size_t>(
            1, (std::size_t{xcb_get_maximum_request_length(connection_)} * 4 - 64) / rowBytes);
        for (int row = rectangle.top(); row <= rectangle.bottom();) {
            const int rows = std::min(rectangle.bottom() + 1 - row, static_cast<int>(maximumRows));
            xcb_put_image(connection_, XCB_IMAGE_FORMAT_Z_PIXMAP, pixmap_, context_,
                          static_cast<std::uint16_t>(picture.width()),
                          static_cast<std::uint16_t>(rows), 0, static_cast<std::int16_t>(row), 0,
                          depth_, static_cast<std::uint32_t>(rowBytes * rows),
                          picture.constScanLine(row));
            row += rows;
        }
    }

    void releasePicture() {
        waitUntilSent();
        picture = QImage();
        if (pixmap_ != 0) {
            xcb_free_gc(connection_, context_);
            xcb_free_pixmap(connection_, pixmap_);
            pixmap_ = 0;
        }
        if (segment_ != 0) {
            xcb_shm_detach(connection_, segment_);
            // The server must let go before the memory goes.
            std::free(
                xcb_get_input_focus_reply(connection_, xcb_get_input_focus(connection_), nullptr));
            ::shmdt(memory_);
            segment_ = 0;
            memory_ = nullptr;
        }
    }

    QtOverlayPanel& panel_;
    xcb_connection_t* connection_ = nullptr;
    xcb_pixmap_t pixmap_ = 0;
    xcb_gcontext_t context_ = 0;
    std::uint8_t depth_ = 0;
    xcb_shm_seg_t segment_ = 0;
    uchar* memory_ = nullptr;
    std::optional<xcb_get_input_focus_cookie_t> pendingSend_;
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
    const auto scroll = scrollFor(data);
    auto changed = QtOverlayRenderer::changedRegion(surface_->data, data);
    surface_->data = std::move(data);
    if (scroll != scroll_) {
        scroll_ = scroll;
        changed = QRegion(QRect(QPoint(0, 0), onScreen_.size()));
    } else {
        changed.translate(0, -scroll_);
    }
    draw(changed & QRect(QPoint(0, 0), onScreen_.size()));
}

void QtOverlayPanel::preparePicture() {
    const double ratio = surface_->devicePixelRatioF();
    const QSize pixels = QSize(static_cast<int>(std::ceil(onScreen_.width() * ratio)),
                               static_cast<int>(std::ceil(onScreen_.height() * ratio)))
                             .expandedTo(QSize(1, 1));
    if (surface_->picture.size() == pixels) {
        return;
    }
    auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    surface_->preparePicture(pixels, ratio, x11 != nullptr ? x11->connection() : nullptr);
    // Nothing of the last picture is left to compare with: the next one is drawn whole.
    surface_->data = {};
}

void QtOverlayPanel::draw(const QRegion& region) {
    if (region.isEmpty()) {
        return;
    }
    auto& picture = surface_->picture;
    surface_->waitUntilSent();
    {
        QPainter painter(&picture);
        if (surface_->translucent) {
            painter.setCompositionMode(QPainter::CompositionMode_Source);
            for (const QRect& rect : region) {
                painter.fillRect(rect, Qt::transparent);
            }
            painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
        }
        // The window shows the panel from `scroll_` down; the renderer clips to the region.
        const auto panelRegion = region.translated(0, scroll_);
        painter.translate(0, -scroll_);
        renderer_.paint(painter, surface_->data, !surface_->translucent, &panelRegion);
    }
    if (!surface_->isOnServer()) {
        surface_->repaint(region);
        return;
    }
    const double ratio = picture.devicePixelRatio();
    std::vector<QRect> rectangles;
    for (const QRect& rect : region) {
        rectangles.push_back(
            QRect(QPoint(static_cast<int>(std::floor(rect.left() * ratio)),
                         static_cast<int>(std::floor(rect.top() * ratio))),
                  QPoint(static_cast<int>(std::ceil((rect.right() + 1) * ratio)) - 1,
                         static_cast<int>(std::ceil((rect.bottom() + 1) * ratio)) - 1))
                .intersected(picture.rect()));
    }
    surface_->send(rectangles, isPlaced_);
    if (onPainted) {
        onPainted();
    }
}

int QtOverlayPanel::scrollFor(const OverlayViewData& data) const {
    const int overflow = static_cast<int>(std::ceil(size_.height)) - onScreen_.height();
    const auto selected = viewModel_ ? viewModel_->selectedWindow() : std::nullopt;
    if (overflow <= 0 || !selected) {
        return 0;
    }
    const auto key = std::to_string(selected->windowIdentifier);
    const auto card = std::find_if(data.elements.begin(), data.elements.end(), [&](const auto& e) {
        return e.part == OverlayPart::cardBackground && e.key == key;
    });
    if (card == data.elements.end()) {
        return std::clamp(scroll_, 0, overflow);
    }
    const int top = static_cast<int>(std::floor(card->frame().minY())) - scrollMargin;
    const int bottom = static_cast<int>(std::ceil(card->frame().maxY())) + scrollMargin;
    int scroll = scroll_;
    if (top < scroll) {
        scroll = top;
    } else if (bottom > scroll + onScreen_.height()) {
        scroll = bottom - onScreen_.height();
    }
    return std::clamp(scroll, 0, overflow);
}

void QtOverlayPanel::setFrame(const Rect& frame, bool display) {
    const auto desktop = environment_.toDesktop ? environment_.toDesktop(frame) : frame;
    size_ = frame.size;
    onScreen_ = QRect(static_cast<int>(std::lround(desktop.origin.x)),
                      static_cast<int>(std::lround(desktop.origin.y)),
                      static_cast<int>(std::ceil(desktop.size.width)),
                      static_cast<int>(std::ceil(desktop.size.height)));
    // Taller than the screen, the panel starts at the top of its usable area with the most
    // recent windows; the window is no larger than the area, and its backing store neither.
    const auto area = usableArea(onScreen_);
    if (onScreen_.height() > area.height()) {
        onScreen_.moveTop(area.top());
        onScreen_.setHeight(area.height());
    }
    scroll_ = 0;
    isPlaced_ = visible_;
    surface_->setGeometry(visible_ ? onScreen_
                                   : QRect(QPoint(offscreen, offscreen), onScreen_.size()));
    preparePicture();
    if (display && visible_) {
        rebuild();
    }
}

void QtOverlayPanel::orderFrontRegardless() {
    const bool composited = environment_.isComposited && environment_.isComposited();
    if (composited != surface_->translucent) {
        // A compositor came or went: the panel needs the other kind of window.
        surface_ = std::make_unique<Surface>(*this, composited);
        surface_->resize(onScreen_.size());
    }
    visible_ = true;
    if (!surface_->isVisible()) {
        surface_->move(offscreen, offscreen);
        surface_->show();
    }
    preparePicture();
    // Painted while still out of sight, and only where it differs from the last gesture's
    // picture, which the panel still holds.
    pendingRebuild_.stop();
    rebuildNow();
    place(onScreen_.topLeft());
}

void QtOverlayPanel::place(QPoint position) {
    isPlaced_ = position == onScreen_.topLeft();
    auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    if (x11 == nullptr) {
        surface_->move(position);
        surface_->raise();
        return;
    }
    // Moved and raised in one request; the server draws the picture it holds as the window's
    // background at once, without an Expose and a trip through the event loop.
    auto* connection = x11->connection();
    const double ratio = surface_->devicePixelRatioF();
    const std::uint32_t values[] = {
        static_cast<std::uint32_t>(static_cast<std::int32_t>(std::lround(position.x() * ratio))),
        static_cast<std::uint32_t>(static_cast<std::int32_t>(std::lround(position.y() * ratio))),
        XCB_STACK_MODE_ABOVE};
    xcb_configure_window(connection, static_cast<xcb_window_t>(surface_->winId()),
                         XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y | XCB_CONFIG_WINDOW_STACK_MODE,
                         values);
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
