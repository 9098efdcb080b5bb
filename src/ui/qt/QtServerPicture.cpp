#include "ui/qt/QtServerPicture.h"

#include <sys/ipc.h>
#include <sys/shm.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace orvane {

QtServerPicture::~QtServerPicture() {
    release();
}

void QtServerPicture::prepare(QSize pixels, double ratio, QImage::Format format,
                              xcb_connection_t* connection, xcb_window_t window) {
    release();
    data = {};
    scroll = 0;
    connection_ = connection;
    if (connection_ != nullptr && shareMemory(pixels)) {
        image_ = QImage(memory_, pixels.width(), pixels.height(), pixels.width() * 4, format);
    } else {
        image_ = QImage(pixels, format);
    }
    image_.setDevicePixelRatio(ratio);
    image_.fill(Qt::transparent);
    if (connection_ == nullptr) {
        return;
    }
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
}

QImage& QtServerPicture::image() {
    waitUntilSent();
    return image_;
}

void QtServerPicture::send(const std::vector<QRect>& rectangles) {
    if (!isOnServer()) {
        return;
    }
    for (const auto& rectangle : rectangles) {
        if (segment_ == 0) {
            putLines(rectangle);
            continue;
        }
        const auto x = static_cast<std::int16_t>(rectangle.x());
        const auto y = static_cast<std::int16_t>(rectangle.y());
        xcb_shm_put_image(connection_, pixmap_, context_,
                          static_cast<std::uint16_t>(image_.width()),
                          static_cast<std::uint16_t>(image_.height()), x, y,
                          static_cast<std::uint16_t>(rectangle.width()),
                          static_cast<std::uint16_t>(rectangle.height()), x, y, depth_,
                          XCB_IMAGE_FORMAT_Z_PIXMAP, 0, segment_, 0);
    }
    if (segment_ != 0) {
        pendingSend_ = xcb_get_input_focus(connection_);
    }
}

void QtServerPicture::copyFrom(QtServerPicture& other) {
    auto& source = other.image();
    auto& target = image();
    if (source.size() != target.size() || source.format() != target.format()) {
        return;
    }
    std::memcpy(target.bits(), source.constBits(), static_cast<std::size_t>(source.sizeInBytes()));
    if (isOnServer() && other.isOnServer()) {
        xcb_copy_area(connection_, other.pixmap_, pixmap_, context_, 0, 0, 0, 0,
                      static_cast<std::uint16_t>(image_.width()),
                      static_cast<std::uint16_t>(image_.height()));
    }
    data = other.data;
    scroll = other.scroll;
}

void QtServerPicture::waitUntilSent() {
    if (pendingSend_) {
        // Answered long ago as a rule, so this reads a reply already there.
        std::free(xcb_get_input_focus_reply(connection_, *pendingSend_, nullptr));
        pendingSend_.reset();
    }
}

bool QtServerPicture::shareMemory(QSize pixels) {
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
    auto* error =
        memory == reinterpret_cast<void*>(-1)
            ? nullptr
            : xcb_request_check(connection_,
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
void QtServerPicture::putLines(const QRect& rectangle) {
    const auto rowBytes = static_cast<std::size_t>(image_.bytesPerLine());
    const auto maximumRows = std::max<std::size_t>(
        1, (std::size_t{xcb_get_maximum_request_length(connection_)} * 4 - 64) / rowBytes);
    for (int row = rectangle.top(); row <= rectangle.bottom();) {
        const int rows = std::min(rectangle.bottom() + 1 - row, static_cast<int>(maximumRows));
        xcb_put_image(connection_, XCB_IMAGE_FORMAT_Z_PIXMAP, pixmap_, context_,
                      static_cast<std::uint16_t>(image_.width()), static_cast<std::uint16_t>(rows),
                      0, static_cast<std::int16_t>(row), 0, depth_,
                      static_cast<std::uint32_t>(rowBytes * rows), image_.constScanLine(row));
        row += rows;
    }
}

void QtServerPicture::release() {
    waitUntilSent();
    image_ = QImage();
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

}  // namespace orvane
