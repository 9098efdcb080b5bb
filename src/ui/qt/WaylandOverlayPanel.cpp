#include "ui/qt/WaylandOverlayPanel.h"

#include <sys/mman.h>
#include <unistd.h>

#include <QPainter>
#include <cmath>

#include "core/Logger.h"
#include "wlr-layer-shell-unstable-v1-client-protocol.h"

namespace orvane {

namespace {

const Logger& log() {
    return Logger::forCategory(LogCategory::overlay);
}

}  // namespace

// A picture in memory the compositor reads: busy from the commit that shows it until the
// compositor releases it.
struct WaylandOverlayPanel::Buffer {
    wl_buffer* buffer = nullptr;
    void* memory = nullptr;
    std::size_t bytes = 0;
    QImage image;
    bool isBusy = false;
    OverlayViewData data;
    int scroll = 0;

    ~Buffer() {
        if (buffer != nullptr) {
            wl_buffer_destroy(buffer);
        }
        if (memory != nullptr) {
            ::munmap(memory, bytes);
        }
    }
};

struct WaylandOverlayPanel::Listeners {
    static void configure(void* data, zwlr_layer_surface_v1* surface, std::uint32_t serial,
                          std::uint32_t, std::uint32_t) {
        auto& panel = *static_cast<WaylandOverlayPanel*>(data);
        zwlr_layer_surface_v1_ack_configure(surface, serial);
        panel.isConfigured_ = true;
        panel.present();
    }
    static void closed(void* data, zwlr_layer_surface_v1*) {
        static_cast<WaylandOverlayPanel*>(data)->destroySurface();
    }
    static void release(void* data, wl_buffer*) { static_cast<Buffer*>(data)->isBusy = false; }
};

WaylandOverlayPanel::WaylandOverlayPanel(WaylandConnection& connection,
                                         const WaylandScreens& screens, QtOverlayRenderer renderer)
    : connection_(connection), screens_(screens), renderer_(std::move(renderer)) {
    pendingRebuild_.setSingleShot(true);
    pendingRebuild_.setInterval(0);
    QObject::connect(&pendingRebuild_, &QTimer::timeout, [this] { present(); });
}

WaylandOverlayPanel::~WaylandOverlayPanel() {
    for (const auto& unsubscribe : unsubscribers_) {
        unsubscribe();
    }
    destroySurface();
    buffers_.clear();
    connection_.flush();
}

void WaylandOverlayPanel::attach(std::shared_ptr<SwitcherOverlayViewModel> viewModel,
                                 std::shared_ptr<const OverlayViewBuilder> builder) {
    viewModel_ = std::move(viewModel);
    builder_ = std::move(builder);
    unsubscribers_ = viewModel_->observeEveryField([this] { rebuild(); });
}

void WaylandOverlayPanel::rebuild() {
    // The model changes a field at a time within one event: painted once, when it is over.
    if (visible_ && !pendingRebuild_.isActive()) {
        pendingRebuild_.start();
    }
}

void WaylandOverlayPanel::presentPending() {
    if (pendingRebuild_.isActive()) {
        pendingRebuild_.stop();
        present();
    }
}

void WaylandOverlayPanel::setFrame(const Rect& frame, bool display) {
    frame_ = frame;
    scroll_ = 0;
    onScreen_ = screens_.toCompositor(frame);
    output_ = screens_.outputAt(onScreen_);
    if (output_ != nullptr && onScreen_.size.height > output_->height) {
        // Taller than its output, the panel starts at its top with the most recent windows.
        onScreen_.origin.y = output_->y;
        onScreen_.size.height = output_->height;
    }
    // Each commit of a new size or place costs a configure from the compositor and a repaint.
    if (surface_ != nullptr && layerSurface_ != nullptr && placed_ != onScreen_) {
        placed_ = onScreen_;
        zwlr_layer_surface_v1_set_size(
            layerSurface_, static_cast<std::uint32_t>(std::ceil(onScreen_.size.width)),
            static_cast<std::uint32_t>(std::ceil(onScreen_.size.height)));
        if (output_ != nullptr) {
            zwlr_layer_surface_v1_set_margin(
                layerSurface_,
                static_cast<std::int32_t>(std::lround(onScreen_.origin.y)) - output_->y, 0, 0,
                static_cast<std::int32_t>(std::lround(onScreen_.origin.x)) - output_->x);
        }
        wl_surface_commit(surface_);
        connection_.flush();
    }
    if (display) {
        rebuild();
    }
}

void WaylandOverlayPanel::orderFrontRegardless() {
    visible_ = true;
    if (surface_ != nullptr) {
        rebuild();
        return;
    }
    auto* shell = connection_.layerShell();
    if (shell == nullptr || connection_.compositor() == nullptr) {
        log().error("the compositor offers no layer shell; the overlay cannot be shown");
        return;
    }
    static const zwlr_layer_surface_v1_listener listener{&Listeners::configure, &Listeners::closed};
    surface_ = wl_compositor_create_surface(connection_.compositor());
    ++appearances_;
    layerSurface_ = zwlr_layer_shell_v1_get_layer_surface(
        shell, surface_, output_ != nullptr ? output_->output : nullptr,
        ZWLR_LAYER_SHELL_V1_LAYER_OVERLAY, "orvane");
    zwlr_layer_surface_v1_add_listener(layerSurface_, &listener, this);
    zwlr_layer_surface_v1_set_anchor(
        layerSurface_, ZWLR_LAYER_SURFACE_V1_ANCHOR_TOP | ZWLR_LAYER_SURFACE_V1_ANCHOR_LEFT);
    zwlr_layer_surface_v1_set_keyboard_interactivity(layerSurface_, 1);
    zwlr_layer_surface_v1_set_exclusive_zone(layerSurface_, -1);
    scale_ = output_ != nullptr ? output_->scale : 1;
    log().debug("overlay panel %{public}dx%{public}d at scale %{public}d",
                static_cast<int>(std::ceil(onScreen_.size.width)),
                static_cast<int>(std::ceil(onScreen_.size.height)), scale_);
    wl_surface_set_buffer_scale(surface_, scale_);
    isConfigured_ = false;
    // The size and place go with the first commit; the picture follows the compositor's answer.
    setFrame(frame_, false);
}

void WaylandOverlayPanel::orderOut() {
    visible_ = false;
    pendingRebuild_.stop();
    destroySurface();
    connection_.flush();
}

void WaylandOverlayPanel::destroySurface() {
    placed_.reset();
    if (layerSurface_ != nullptr) {
        zwlr_layer_surface_v1_destroy(layerSurface_);
        layerSurface_ = nullptr;
    }
    if (surface_ != nullptr) {
        wl_surface_destroy(surface_);
        surface_ = nullptr;
    }
    isConfigured_ = false;
}

WaylandOverlayPanel::Buffer* WaylandOverlayPanel::freeBuffer() {
    const int width = static_cast<int>(std::ceil(onScreen_.size.width * scale_));
    const int height = static_cast<int>(std::ceil(onScreen_.size.height * scale_));
    if (width <= 0 || height <= 0 || connection_.sharedMemory() == nullptr) {
        return nullptr;
    }
    std::erase_if(buffers_, [&](const auto& buffer) {
        return !buffer->isBusy &&
               (buffer->image.width() != width || buffer->image.height() != height);
    });
    for (auto& buffer : buffers_) {
        if (!buffer->isBusy) {
            return buffer.get();
        }
    }
    const int stride = width * 4;
    const auto bytes = static_cast<std::size_t>(stride) * static_cast<std::size_t>(height);
    const int descriptor = ::memfd_create("orvane-overlay", MFD_CLOEXEC);
    if (descriptor < 0 || ::ftruncate(descriptor, static_cast<off_t>(bytes)) != 0) {
        if (descriptor >= 0) {
            ::close(descriptor);
        }
        log().error("no memory could be shared with the compositor for the overlay");
        return nullptr;
    }
    auto buffer = std::make_unique<Buffer>();
    buffer->memory = ::mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_SHARED, descriptor, 0);
    if (buffer->memory == MAP_FAILED) {
        buffer->memory = nullptr;
        ::close(descriptor);
        log().error("no memory could be shared with the compositor for the overlay");
        return nullptr;
    }
    buffer->bytes = bytes;
    auto* pool = wl_shm_create_pool(connection_.sharedMemory(), descriptor,
                                    static_cast<std::int32_t>(bytes));
    buffer->buffer =
        wl_shm_pool_create_buffer(pool, 0, width, height, stride, WL_SHM_FORMAT_ARGB8888);
    wl_shm_pool_destroy(pool);
    ::close(descriptor);
    static const wl_buffer_listener listener{&Listeners::release};
    wl_buffer_add_listener(buffer->buffer, &listener, buffer.get());
    // ARGB8888 little-endian is Qt's premultiplied ARGB32.
    buffer->image = QImage(static_cast<uchar*>(buffer->memory), width, height, stride,
                           QImage::Format_ARGB32_Premultiplied);
    buffer->image.setDevicePixelRatio(scale_);
    buffers_.push_back(std::move(buffer));
    return buffers_.back().get();
}

void WaylandOverlayPanel::present() {
    if (!visible_ || !isConfigured_ || surface_ == nullptr || !builder_ || !viewModel_) {
        return;
    }
    auto* buffer = freeBuffer();
    if (buffer == nullptr) {
        return;
    }
    auto data = builder_->build(*viewModel_, frame_.size);
    const QRect whole(0, 0, static_cast<int>(std::ceil(onScreen_.size.width)),
                      static_cast<int>(std::ceil(onScreen_.size.height)));
    // A panel cut to its output scrolls to keep the selected card in sight.
    const auto selected = viewModel_->selectedWindow();
    scroll_ = QtOverlayRenderer::scrollToShow(
        data, selected ? std::to_string(selected->windowIdentifier) : std::string(), scroll_,
        whole.height());
    QRegion region = whole;
    if (!buffer->data.elements.empty() && buffer->scroll == scroll_) {
        region = QtOverlayRenderer::changedRegion(buffer->data, data).translated(0, -scroll_);
    }
    region &= whole;
    if (!region.isEmpty()) {
        QPainter painter(&buffer->image);
        painter.setCompositionMode(QPainter::CompositionMode_Source);
        for (const QRect& rect : region) {
            painter.fillRect(rect, Qt::transparent);
        }
        painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
        // The surface shows the panel from `scroll` down; the renderer clips to the region.
        const auto panelRegion = region.translated(0, scroll_);
        painter.translate(0, -scroll_);
        renderer_.paint(painter, data, false, &panelRegion);
    }
    buffer->data = std::move(data);
    buffer->scroll = scroll_;
    buffer->isBusy = true;
    wl_surface_attach(surface_, buffer->buffer, 0, 0);
    // The whole buffer may differ from the one shown before: damage all of it.
    wl_surface_damage_buffer(surface_, 0, 0, buffer->image.width(), buffer->image.height());
    wl_surface_commit(surface_);
    connection_.flush();
    if (presented_) {
        presented_();
    }
}

}  // namespace orvane
