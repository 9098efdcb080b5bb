#include "platform/wayland/WaylandScreenCapture.h"

#include <pixman.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>

#include "core/Logger.h"
#include "wlr-screencopy-unstable-v1-client-protocol.h"

namespace orvane {

namespace {

const Logger& log() {
    return Logger::forCategory(LogCategory::thumbnailcapture);
}

constexpr std::int64_t largestSide = 4096;
// A screen that keeps changing (a video, a build's output) is copied this often at most.
constexpr double watchSeconds = 2.0;

}  // namespace

// One screencopy under way: the frame, the shared memory it is copied into, and who waits.
struct WaylandScreenCapture::Capture {
    WaylandScreenCapture* owner = nullptr;
    const WaylandConnection::Output* output = nullptr;
    zwlr_screencopy_frame_v1* frame = nullptr;
    wl_buffer* buffer = nullptr;
    void* memory = nullptr;
    std::size_t bytes = 0;
    std::uint32_t format = 0;
    int sourceWidth = 0, sourceHeight = 0, stride = 0;
    bool isInverted = false;
    // Waits for the output to change rather than copying the next frame.
    bool onChange = false;
    // How many times the overlay had gone up when the copy was asked for.
    std::uint64_t coverings = 0;
    // Answered; destroyed once the compositor's event that answered is over.
    bool isFinished = false;

    ~Capture() {
        if (frame != nullptr) {
            zwlr_screencopy_frame_v1_destroy(frame);
        }
        if (buffer != nullptr) {
            wl_buffer_destroy(buffer);
        }
        if (memory != nullptr) {
            ::munmap(memory, bytes);
        }
    }

    static Capture& of(void* data) { return *static_cast<Capture*>(data); }
    static void bufferOffered(void* data, zwlr_screencopy_frame_v1* frame, std::uint32_t format,
                              std::uint32_t width, std::uint32_t height, std::uint32_t stride) {
        auto& capture = of(data);
        capture.format = format;
        capture.sourceWidth = static_cast<int>(width);
        capture.sourceHeight = static_cast<int>(height);
        capture.stride = static_cast<int>(stride);
        // Before version 3 no other offer follows: copy now.
        if (zwlr_screencopy_frame_v1_get_version(frame) < 3) {
            capture.copy();
        }
    }
    static void flags(void* data, zwlr_screencopy_frame_v1*, std::uint32_t flags) {
        of(data).isInverted = (flags & ZWLR_SCREENCOPY_FRAME_V1_FLAGS_Y_INVERT) != 0;
    }
    static void ready(void* data, zwlr_screencopy_frame_v1*, std::uint32_t, std::uint32_t,
                      std::uint32_t) {
        of(data).owner->finish(of(data), true);
    }
    static void failed(void* data, zwlr_screencopy_frame_v1*) {
        of(data).owner->finish(of(data), false);
    }
    static void damage(void*, zwlr_screencopy_frame_v1*, std::uint32_t, std::uint32_t,
                       std::uint32_t, std::uint32_t) {}
    static void dmabuf(void*, zwlr_screencopy_frame_v1*, std::uint32_t, std::uint32_t,
                       std::uint32_t) {}
    static void bufferDone(void* data, zwlr_screencopy_frame_v1*) { of(data).copy(); }

    void copy() {
        const bool readable = format == WL_SHM_FORMAT_XRGB8888 || format == WL_SHM_FORMAT_ARGB8888;
        bytes = static_cast<std::size_t>(stride) * static_cast<std::size_t>(sourceHeight);
        const int descriptor =
            readable && bytes > 0 ? ::memfd_create("orvane-preview", MFD_CLOEXEC) : -1;
        if (descriptor < 0 || ::ftruncate(descriptor, static_cast<off_t>(bytes)) != 0) {
            if (descriptor >= 0) {
                ::close(descriptor);
            }
            owner->finish(*this, false);
            return;
        }
        memory = ::mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_SHARED, descriptor, 0);
        if (memory == MAP_FAILED) {
            memory = nullptr;
            ::close(descriptor);
            owner->finish(*this, false);
            return;
        }
        auto* pool = wl_shm_create_pool(owner->connection_.sharedMemory(), descriptor,
                                        static_cast<std::int32_t>(bytes));
        buffer = wl_shm_pool_create_buffer(pool, 0, sourceWidth, sourceHeight, stride, format);
        wl_shm_pool_destroy(pool);
        ::close(descriptor);
        if (onChange) {
            zwlr_screencopy_frame_v1_copy_with_damage(frame, buffer);
        } else {
            zwlr_screencopy_frame_v1_copy(frame, buffer);
        }
        owner->connection_.flush();
    }
};

WaylandScreenCapture::WaylandScreenCapture(WaylandConnection& connection, WaylandWindowModel& model,
                                           const WaylandScreens& screens,
                                           std::shared_ptr<RunLoopPort> runLoop)
    : connection_(connection), model_(model), screens_(screens), runLoop_(std::move(runLoop)) {
    model_.addListener(
        [this](DesktopWindows::ChangeKind kind, const DesktopWindows::Window& window) {
            if (kind == DesktopWindows::ChangeKind::removed) {
                thumbnails_.erase(window.window);
            }
        });
}

WaylandScreenCapture::~WaylandScreenCapture() {
    if (watch_) {
        runLoop_->cancelTimer(*watch_);
    }
}

bool WaylandScreenCapture::preflightScreenCaptureAccess() const {
    return connection_.screencopyManager() != nullptr && connection_.sharedMemory() != nullptr;
}

void WaylandScreenCapture::getShareableContent(bool, bool onScreenWindowsOnly,
                                               ShareableContentCompletion completion) {
    ShareableContent content;
    for (auto handle : model_.frontToBack()) {
        const auto* window = model_.window(handle);
        if (window == nullptr || (onScreenWindowsOnly && window->isHidden)) {
            continue;
        }
        content.windows.push_back({window->identifier, window->frame});
    }
    runLoop_->post([completion = std::move(completion), content] { completion(content); });
}

std::optional<double> WaylandScreenCapture::mainScreenBackingScaleFactor() const {
    const auto main = screens_.mainScreen();
    return main ? std::optional(main->backingScaleFactor) : std::nullopt;
}

const WindowThumbnail* WaylandScreenCapture::thumbnail(std::uint64_t identifier) const {
    for (const auto& [window, thumbnail] : thumbnails_) {
        if (thumbnail.identifier == identifier) {
            return &thumbnail;
        }
    }
    return nullptr;
}

std::optional<ImageHandle> WaylandScreenCapture::lastCapture(DesktopWindows::Handle window) const {
    const auto found = thumbnails_.find(window);
    if (found == thumbnails_.end()) {
        return std::nullopt;
    }
    const auto& thumbnail = found->second;
    return ImageHandle{thumbnail.identifier,
                       static_cast<double>(thumbnail.width),
                       static_cast<double>(thumbnail.height),
                       "preview",
                       0,
                       0};
}

void WaylandScreenCapture::captureImage(const ContentFilter& filter,
                                        const StreamConfiguration& configuration,
                                        ImageCompletion completion) {
    const auto* window = model_.windowOf(filter.desktopIndependentWindow);
    std::optional<ImageHandle> image;
    if (window != nullptr) {
        sizes_[window->window] = {
            static_cast<int>(std::clamp<std::int64_t>(configuration.width, 1, largestSide)),
            static_cast<int>(std::clamp<std::int64_t>(configuration.height, 1, largestSide))};
        image = lastCapture(window->window);
    }
    runLoop_->post([completion = std::move(completion), image] { completion(image); });
}

void WaylandScreenCapture::refresh() {
    // A copy waiting for a change gives way to one now.
    forgetWaitingCopies();
    if (!isCapturing()) {
        capture(false);
    }
}

void WaylandScreenCapture::standBack() {
    forgetWaitingCopies();
    watchLater();
}

void WaylandScreenCapture::forgetWaitingCopies() {
    std::erase_if(captures_,
                  [](const auto& capture) { return capture->onChange && !capture->isFinished; });
}

bool WaylandScreenCapture::isCapturing() const {
    return std::any_of(captures_.begin(), captures_.end(),
                       [](const auto& capture) { return !capture->isFinished; });
}

void WaylandScreenCapture::watchLater() {
    if (watch_ || isCapturing()) {
        return;
    }
    watch_ = runLoop_->scheduleTimer(watchSeconds, false, 0.5, [this] {
        watch_.reset();
        if (cover().isUp) {
            watchLater();
        } else if (!isCapturing()) {
            capture(true);
        }
    });
}

void WaylandScreenCapture::capture(bool onChange) {
    const auto now = cover();
    if (!preflightScreenCaptureAccess() || now.isUp) {
        return;
    }
    static const zwlr_screencopy_frame_v1_listener listener{
        &Capture::bufferOffered, &Capture::flags,  &Capture::ready,     &Capture::failed,
        &Capture::damage,        &Capture::dmabuf, &Capture::bufferDone};
    for (const auto& output : connection_.outputs()) {
        auto capture = std::make_unique<Capture>();
        capture->owner = this;
        capture->output = output.get();
        capture->onChange = onChange;
        capture->coverings = now.times;
        capture->frame = zwlr_screencopy_manager_v1_capture_output(connection_.screencopyManager(),
                                                                   0, output->output);
        zwlr_screencopy_frame_v1_add_listener(capture->frame, &listener, capture.get());
        captures_.push_back(std::move(capture));
    }
    connection_.flush();
}

void WaylandScreenCapture::finish(Capture& capture, bool succeeded) {
    capture.isFinished = true;
    const auto now = cover();
    if (succeeded && capture.memory != nullptr && !now.isUp && now.times == capture.coverings) {
        cutOut(capture);
    } else {
        log().debug("the compositor copied no picture of an output for previews");
    }
    runLoop_->post([weak = weak_from_this()] {
        if (auto self = weak.lock()) {
            std::erase_if(self->captures_, [](const auto& held) { return held->isFinished; });
            self->watchLater();
        }
    });
}

void WaylandScreenCapture::cutOut(const Capture& capture) {
    const auto& output = *capture.output;
    if (output.width <= 0 || output.height <= 0) {
        return;
    }
    // Logical pixels to the copy's pixels.
    const double scaleX = double(capture.sourceWidth) / output.width;
    const double scaleY = double(capture.sourceHeight) / output.height;
    auto* source =
        pixman_image_create_bits(PIXMAN_x8r8g8b8, capture.sourceWidth, capture.sourceHeight,
                                 static_cast<std::uint32_t*>(capture.memory), capture.stride);
    pixman_image_set_filter(source, PIXMAN_FILTER_GOOD, nullptr, 0);
    for (auto handle : model_.frontToBack()) {
        const auto* window = model_.window(handle);
        if (window == nullptr || window->isHidden || !window->isFrameKnown ||
            !model_.isOnCurrentDesktop(*window) || screens_.outputAt(window->frame) != &output) {
            continue;
        }
        const double left = (window->frame.minX() - output.x) * scaleX;
        const double top = (window->frame.minY() - output.y) * scaleY;
        const double width = window->frame.width() * scaleX;
        const double height = window->frame.height() * scaleY;
        if (width < 1 || height < 1) {
            continue;
        }
        auto [targetWidth, targetHeight] =
            sizes_.count(handle) != 0 ? sizes_[handle] : std::pair<int, int>{0, 0};
        if (targetWidth <= 0 || targetHeight <= 0) {
            targetWidth = static_cast<int>(std::min(width, 480.0));
            targetHeight = std::max(1, static_cast<int>(height * targetWidth / width));
        }
        std::vector<std::uint32_t> pixels(static_cast<std::size_t>(targetWidth) * targetHeight);
        auto* target = pixman_image_create_bits(PIXMAN_a8r8g8b8, targetWidth, targetHeight,
                                                pixels.data(), targetWidth * 4);
        // From the preview's pixels to the copy's: scaled, moved to the window, and turned
        // upside down when the compositor copied it so.
        pixman_transform_t transform;
        pixman_transform_init_identity(&transform);
        const double rows = capture.isInverted ? -height / targetHeight : height / targetHeight;
        transform.matrix[0][0] = pixman_double_to_fixed(width / targetWidth);
        transform.matrix[0][2] = pixman_double_to_fixed(left);
        transform.matrix[1][1] = pixman_double_to_fixed(rows);
        transform.matrix[1][2] =
            pixman_double_to_fixed(capture.isInverted ? capture.sourceHeight - top : top);
        pixman_image_set_transform(source, &transform);
        pixman_image_composite32(PIXMAN_OP_SRC, source, nullptr, target, 0, 0, 0, 0, 0, 0,
                                 targetWidth, targetHeight);
        pixman_image_unref(target);
        // A window that looks as it did keeps its thumbnail: its card needs no new picture.
        auto& thumbnail = thumbnails_[handle];
        if (thumbnail.width != targetWidth || thumbnail.height != targetHeight ||
            thumbnail.pixels != pixels) {
            thumbnail.identifier = thumbnailIdentifierBit | ++lastIdentifier_;
            thumbnail.width = targetWidth;
            thumbnail.height = targetHeight;
            thumbnail.pixels = std::move(pixels);
        }
    }
    pixman_image_unref(source);
}

}  // namespace orvane
