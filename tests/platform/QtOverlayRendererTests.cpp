// The overlay's renderer over many gestures: previews come with a new identifier at every capture,
// so its scaled images must follow the view painted, not pile up gesture after gesture.

#include <gtest/gtest.h>

#include <QImage>
#include <QPainter>

#include "support/OffscreenQtApplication.h"
#include "ui/qt/QtOverlayRenderer.h"

namespace orvane {
namespace {

TEST(QtOverlayRendererTest, KeepsOnlyTheScaledImagesOfTheViewPaintedLast) {
    ensureOffscreenQtApplication();
    QImage preview(64, 48, QImage::Format_ARGB32_Premultiplied);
    preview.fill(Qt::darkCyan);
    const QtOverlayRenderer renderer([&preview](const ImageHandle&) { return preview; });
    QImage panel(400, 100, QImage::Format_ARGB32_Premultiplied);
    std::uint64_t nextIdentifier = 1;
    for (int gesture = 0; gesture < 100; ++gesture) {
        OverlayViewData view;
        view.panelSize = {400, 100};
        for (int card = 0; card < 3; ++card) {
            OverlayElement element;
            OverlayImage image;
            image.frame = {{10.0 + 130 * card, 10}, {120, 80}};
            image.image.identifier = nextIdentifier++;
            image.clipCornerRadius = 6;
            element.content = image;
            view.elements.push_back(element);
        }
        QPainter painter(&panel);
        renderer.paint(painter, view, false);
    }
    EXPECT_EQ(renderer.scaledImageCount(), 3u);
}

}  // namespace
}  // namespace orvane
