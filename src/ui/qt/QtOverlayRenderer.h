// Paints the overlay's view data with QPainter: shapes, texts (truncated to their frames), images
// and symbols (themed icons where the desktop has them, simple drawn glyphs otherwise).
#pragma once

#include <QIcon>
#include <QImage>
#include <QPainter>
#include <QRegion>
#include <QStaticText>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <tuple>

#include "overlay/OverlayViewData.h"

namespace orvane {

class QtOverlayRenderer {
  public:
    // The pixels of an image handle; a null image when they are gone.
    using ImageResolver = std::function<QImage(const ImageHandle& image)>;

    explicit QtOverlayRenderer(ImageResolver images) : images_(std::move(images)) {}

    // Draws the elements, in order, into a painter whose unit is one point; with `only`, just
    // those that reach into that region. With `opaque` the panel is a square, solid one (no
    // compositor to blend rounded corners).
    void paint(QPainter& painter, const OverlayViewData& data, bool opaque,
               const QRegion* only = nullptr) const;

    // Where two builds differ, card by card and element by element; the whole panel when the
    // panel's size or its own elements (those of no card) differ in number.
    static QRegion changedRegion(const OverlayViewData& before, const OverlayViewData& after);
    // The panel's line at the top of a window `visibleHeight` tall that keeps the selected card
    // (by its key) in sight, moving as little as it can from `current`; 0 when all of it fits.
    static int scrollToShow(const OverlayViewData& data, const std::string& selectedKey,
                            int current, int visibleHeight);

    // How many scaled images are kept: never more than the last two views painted show.
    std::size_t scaledImageCount() const { return scaled_.size(); }

  private:
    void paintElements(QPainter& painter, const OverlayViewData& data, bool opaque,
                       const QRect* only) const;
    void forgetImagesNotIn(const OverlayViewData& data) const;
    void paintShape(QPainter& painter, const OverlayElement& element, const OverlayShape& shape,
                    bool opaque) const;
    void paintText(QPainter& painter, const OverlayText& text) const;
    void paintImage(QPainter& painter, const OverlayImage& image) const;
    void paintSymbol(QPainter& painter, const OverlaySymbol& symbol) const;

    ImageResolver images_;
    using ScaledKey = std::tuple<std::uint64_t, int, int, double>;
    mutable std::map<ScaledKey, QImage> scaled_;
    // The images of the view painted last and of the one before it.
    mutable std::set<std::uint64_t> shownLast_, shownBefore_;
    // A shape's pixels by kind, position within its pixel, size, corners, scale, material, fill
    // and stroke.
    using PaintKey = std::tuple<int, double>;
    using ShapeKey = std::tuple<int, double, double, double, double, double, double, int, PaintKey,
                                PaintKey, double>;
    mutable std::map<ShapeKey, QImage> shapes_;
    // A text laid out in its font, truncated to a width.
    struct CachedText {
        QStaticText text;
        QFont font;
        double height = 0;
    };
    using TextKey = std::tuple<std::string, int, int, int, double>;
    mutable std::map<TextKey, CachedText> texts_;
    // Theme lookups walk the icon folders: once per symbol is enough.
    mutable std::map<OverlaySymbolName, QIcon> icons_;
};

}  // namespace orvane
