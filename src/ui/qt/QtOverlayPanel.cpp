#include "ui/qt/QtOverlayPanel.h"

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
    explicit Surface(bool translucent)
        : QWidget(nullptr, Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint |
                               Qt::X11BypassWindowManagerHint | Qt::WindowDoesNotAcceptFocus |
                               Qt::WindowTransparentForInput),
          translucent(translucent) {
        setAttribute(Qt::WA_ShowWithoutActivating);
        setAttribute(Qt::WA_X11DoNotAcceptFocus);
        // An alpha channel only where a compositor blends it: without one it would only cost.
        setAttribute(Qt::WA_TranslucentBackground, translucent);
        setAttribute(Qt::WA_OpaquePaintEvent, !translucent);
        setFocusPolicy(Qt::NoFocus);
        setWindowTitle(QStringLiteral("Orvane overlay"));
    }

    const bool translucent;

    // Blank pictures of that many device pixels. On X11 they live on the server too: the one
    // shown is the window's background, which the server draws whenever the window comes on
    // screen.
    void preparePictures(QSize pixels, double ratio, xcb_connection_t* connection) {
        const auto format =
            translucent ? QImage::Format_ARGB32_Premultiplied : QImage::Format_RGB32;
        connection_ = connection;
        const auto window = static_cast<xcb_window_t>(winId());
        current_.prepare(pixels, ratio, format, connection, window);
        opening_.prepare(pixels, ratio, format, connection, window);
        shown_ = &current_;
        display(current_);
    }
    QSize pictureSize() const { return current_.size(); }
    bool isOnServer() const { return current_.isOnServer(); }

    // The picture a gesture opens with. On the server it holds what the last gesture foresaw
    // for this one (else the last opening), mostly the same again, so that opening sends only
    // what differs.
    QtServerPicture& opening() {
        if (opening_.isOnServer()) {
            display(opening_);
            return opening_;
        }
        return current_;
    }
    // The picture the panel changes while on screen: the opening one is left as it was.
    QtServerPicture& live() {
        if (shown_ == &opening_) {
            current_.copyFrom(opening_);
            display(current_);
        }
        return current_;
    }
    QtServerPicture& shown() { return *shown_; }
    // The opening picture, to be made ready while the window is out of sight.
    QtServerPicture& openingPicture() { return opening_; }

    // After the picture shown was sent these rectangles: with `onScreen`, the window draws them.
    void update(const std::vector<QRect>& rectangles, bool onScreen) {
        const auto window = static_cast<xcb_window_t>(winId());
        for (const auto& rectangle : rectangles) {
            if (onScreen) {
                xcb_clear_area(connection_, 0, window, static_cast<std::int16_t>(rectangle.x()),
                               static_cast<std::int16_t>(rectangle.y()),
                               static_cast<std::uint16_t>(rectangle.width()),
                               static_cast<std::uint16_t>(rectangle.height()));
            }
        }
        // Qt sends its own requests when it draws; these would wait for its next drawing.
        xcb_flush(connection_);
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
        painter.drawImage(QPoint(0, 0), shown_->image());
    }

  private:
    // Makes `picture` the window's background; it shows the same as the one before at this point.
    void display(QtServerPicture& picture) {
        shown_ = &picture;
        if (picture.isOnServer()) {
            const auto pixmap = picture.pixmap();
            xcb_change_window_attributes(connection_, static_cast<xcb_window_t>(winId()),
                                         XCB_CW_BACK_PIXMAP, &pixmap);
        }
    }

    xcb_connection_t* connection_ = nullptr;
    QtServerPicture current_;
    QtServerPicture opening_;
    QtServerPicture* shown_ = &current_;
};

QtOverlayPanel::QtOverlayPanel(Environment environment, QtOverlayRenderer renderer)
    : environment_(std::move(environment)),
      renderer_(std::move(renderer)),
      surface_(
          std::make_unique<Surface>(environment_.isComposited && environment_.isComposited())) {
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
    unsubscribers_ = viewModel_->observeEveryField([this] { rebuild(); });
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
    if (visible_ && viewModel_) {
        rebuildInto(surface_->live(), *viewModel_);
    }
}

void QtOverlayPanel::rebuildInto(QtServerPicture& picture, const SwitcherOverlayViewModel& model) {
    if (!builder_) {
        return;
    }
    auto data = builder_->build(model, size_);
    scroll_ = scrollFor(data, model);
    auto changed = QtOverlayRenderer::changedRegion(picture.data, data);
    picture.data = std::move(data);
    if (scroll_ != picture.scroll) {
        picture.scroll = scroll_;
        changed = QRegion(QRect(QPoint(0, 0), onScreen_.size()));
    } else {
        changed.translate(0, -scroll_);
    }
    draw(picture, changed & QRect(QPoint(0, 0), onScreen_.size()));
}

void QtOverlayPanel::preparePicture() {
    const double ratio = surface_->devicePixelRatioF();
    const QSize pixels = QSize(static_cast<int>(std::ceil(onScreen_.width() * ratio)),
                               static_cast<int>(std::ceil(onScreen_.height() * ratio)))
                             .expandedTo(QSize(1, 1));
    if (surface_->pictureSize() == pixels) {
        return;
    }
    auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    surface_->preparePictures(pixels, ratio, x11 != nullptr ? x11->connection() : nullptr);
}

void QtOverlayPanel::draw(QtServerPicture& picture, const QRegion& region) {
    if (region.isEmpty()) {
        return;
    }
    auto& image = picture.image();
    {
        QPainter painter(&image);
        if (surface_->translucent) {
            painter.setCompositionMode(QPainter::CompositionMode_Source);
            for (const QRect& rect : region) {
                painter.fillRect(rect, Qt::transparent);
            }
            painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
        }
        // The window shows the panel from `scroll` down; the renderer clips to the region.
        const auto panelRegion = region.translated(0, picture.scroll);
        painter.translate(0, -picture.scroll);
        renderer_.paint(painter, picture.data, !surface_->translucent, &panelRegion);
    }
    if (!picture.isOnServer()) {
        surface_->repaint(region);
        return;
    }
    const double ratio = image.devicePixelRatio();
    std::vector<QRect> rectangles;
    for (const QRect& rect : region) {
        rectangles.push_back(
            QRect(QPoint(static_cast<int>(std::floor(rect.left() * ratio)),
                         static_cast<int>(std::floor(rect.top() * ratio))),
                  QPoint(static_cast<int>(std::ceil((rect.right() + 1) * ratio)) - 1,
                         static_cast<int>(std::ceil((rect.bottom() + 1) * ratio)) - 1))
                .intersected(image.rect()));
    }
    picture.send(rectangles);
    surface_->update(rectangles, isPlaced_);
}

int QtOverlayPanel::scrollFor(const OverlayViewData& data,
                              const SwitcherOverlayViewModel& model) const {
    const auto selected = model.selectedWindow();
    return QtOverlayRenderer::scrollToShow(
        data, selected ? std::to_string(selected->windowIdentifier) : std::string(), scroll_,
        onScreen_.height());
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
        surface_ = std::make_unique<Surface>(composited);
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
    if (viewModel_) {
        rebuildInto(surface_->opening(), *viewModel_);
    }
    place(onScreen_.topLeft());
    // The picture the panel changes from now on is made ready after the opening, not on the
    // next key.
    QTimer::singleShot(0, surface_.get(), [this] {
        if (visible_) {
            surface_->live();
        }
    });
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
    auto next = nextOpening();
    // The window coming forward is asked for after this, in the same key event. The panel leaves
    // once the window manager has brought it: the screen goes from the overlay straight to the
    // result, and the window manager doesn't wait behind the redrawing of all that the panel
    // uncovers. It stays mapped, so showing it again costs no map.
    QTimer::singleShot(0, surface_.get(), [this, next = std::move(next)] {
        auto leave = [this, surface = QPointer<QWidget>(surface_.get()), next] {
            if (!surface || visible_) {
                return;
            }
            place(QPoint(offscreen, offscreen));
            // The next gesture most likely opens on what this one chose: painted and sent now,
            // it finds its picture on the server already.
            if (next && surface_->isOnServer()) {
                rebuildInto(surface_->openingPicture(), *next);
            }
        };
        if (environment_.afterActivation) {
            environment_.afterActivation(leave);
        } else {
            leave();
        }
    });
}

std::shared_ptr<const SwitcherOverlayViewModel> QtOverlayPanel::nextOpening() const {
    if (!viewModel_ || viewModel_->launcherPresentation.value()) {
        return nullptr;
    }
    auto windows = viewModel_->windows.value();
    const auto chosen = viewModel_->selectedIndex.value();
    if (windows.empty() || chosen < 0 || chosen >= static_cast<std::ptrdiff_t>(windows.size())) {
        return nullptr;
    }
    // As recency will have it once the chosen window is active: it first, the rest in order, and
    // no previews, as every gesture opens.
    std::rotate(windows.begin(), windows.begin() + chosen, windows.begin() + chosen + 1);
    auto model = std::make_shared<SwitcherOverlayViewModel>();
    model->layoutStyle.set(viewModel_->layoutStyle.value());
    model->cardSize.set(viewModel_->cardSize.value());
    model->thumbnailsEnabled.set(viewModel_->thumbnailsEnabled.value());
    model->columnCount.set(viewModel_->columnCount.value());
    model->selectedIndex.set(windows.size() >= 2 ? 1 : 0);
    model->windows.set(std::move(windows));
    return model;
}

}  // namespace orvane
