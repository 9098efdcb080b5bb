// One picture of the overlay panel in device pixels: an image in memory shared with the X server
// where it can be, and a pixmap on the server that a window shows as its background. Only the
// rectangles painted since are ever sent. Without a connection it is the image alone.
#pragma once

#include <xcb/shm.h>
#include <xcb/xcb.h>

#include <QImage>
#include <QRect>
#include <optional>
#include <vector>

#include "overlay/OverlayViewData.h"

namespace orvane {

class QtServerPicture final {
  public:
    QtServerPicture() = default;
    ~QtServerPicture();
    QtServerPicture(const QtServerPicture&) = delete;
    QtServerPicture& operator=(const QtServerPicture&) = delete;

    // A blank picture of that many device pixels, kept on the server beside `window` when there
    // is a connection.
    void prepare(QSize pixels, double ratio, QImage::Format format, xcb_connection_t* connection,
                 xcb_window_t window);
    bool isOnServer() const { return pixmap_ != 0; }
    xcb_pixmap_t pixmap() const { return pixmap_; }
    QSize size() const { return image_.size(); }

    // To paint on, once the server has read what was last sent from it.
    QImage& image();
    // Sends these rectangles of the image to the server's pixmap.
    void send(const std::vector<QRect>& rectangles);
    // Becomes the same picture as `other`, on both sides.
    void copyFrom(QtServerPicture& other);

    // What the picture shows: the panel's data, from line `scroll` down.
    OverlayViewData data;
    int scroll = 0;

  private:
    bool shareMemory(QSize pixels);
    void putLines(const QRect& rectangle);
    void waitUntilSent();
    void release();

    QImage image_;
    xcb_connection_t* connection_ = nullptr;
    xcb_pixmap_t pixmap_ = 0;
    xcb_gcontext_t context_ = 0;
    std::uint8_t depth_ = 0;
    xcb_shm_seg_t segment_ = 0;
    uchar* memory_ = nullptr;
    std::optional<xcb_get_input_focus_cookie_t> pendingSend_;
};

}  // namespace orvane
