// The overlay's renderer over many gestures: previews come with a new identifier at every capture,
// so its scaled images must follow the view painted, not pile up gesture after gesture; and a card
// that changes is repainted alone.

#include <gtest/gtest.h>

#include <QImage>
#include <QPainter>
#include <string>

#include "support/OffscreenQtApplication.h"
#include "ui/qt/QtOverlayRenderer.h"

namespace orvane {
namespace {

TEST(QtOverlayRendererTest, KeepsOnlyTheScaledImagesOfTheLastTwoViewsAndRepaintsOnlyWhatChanged) {
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
            element.key = std::to_string(card);
            OverlayImage image;
            image.frame = {{10.0 + 130 * card, 10}, {120, 80}};
            image.image.identifier = nextIdentifier++;
            image.clipCornerRadius = 6;
            element.content = image;
            view.elements.push_back(element);
        }
        QPainter painter(&panel);
        renderer.paint(painter, view, false);
        if (gesture == 0) {
            // The middle card gains a badge, and the first one's preview is new: only they change.
            auto later = view;
            OverlayElement badge = later.elements[1];
            std::get<OverlayImage>(badge.content).frame = {{220, 60}, {20, 20}};
            later.elements.push_back(badge);
            std::get<OverlayImage>(later.elements[0].content).image.identifier = 0;
            EXPECT_EQ(QtOverlayRenderer::changedRegion(view, later).boundingRect(),
                      QRect(QPoint(7, 7), QPoint(262, 92)));
            EXPECT_TRUE(QtOverlayRenderer::changedRegion(view, view).isEmpty());
        }
    }
    EXPECT_EQ(renderer.scaledImageCount(), 6u) << "the last two views' images";
}

}  // namespace
}  // namespace orvane
