#include "ui/qt/QtOverlayStyle.h"

#include <QGuiApplication>

namespace orvane {

QFont QtOverlayStyle::font(OverlayTextStyle style, OverlayFontWeight weight) {
    QFont font = QGuiApplication::font();
    // Sizes in points of the overlay's layout, which are this desktop's logical pixels.
    double size = 13;
    switch (style) {
        case OverlayTextStyle::headline:
        case OverlayTextStyle::body:
            size = 13;
            break;
        case OverlayTextStyle::title3:
            size = 15;
            break;
        case OverlayTextStyle::callout:
            size = 12;
            break;
        case OverlayTextStyle::caption:
            size = 10;
            break;
        case OverlayTextStyle::caption2:
            size = 9;
            break;
    }
    font.setPixelSize(static_cast<int>(size + 0.5));
    const bool semibold =
        weight == OverlayFontWeight::semibold || style == OverlayTextStyle::headline;
    font.setWeight(semibold ? QFont::DemiBold : QFont::Normal);
    return font;
}

QColor QtOverlayStyle::color(OverlayColorRole role, double opacity) {
    QColor color;
    switch (role) {
        case OverlayColorRole::clear:
            color = QColor(0, 0, 0, 0);
            break;
        case OverlayColorRole::primary:
            color = QColor(255, 255, 255, 235);
            break;
        case OverlayColorRole::secondary:
            color = QColor(255, 255, 255, 165);
            break;
        case OverlayColorRole::tertiary:
            color = QColor(255, 255, 255, 110);
            break;
        case OverlayColorRole::quaternary:
            color = QColor(255, 255, 255, 60);
            break;
        case OverlayColorRole::separator:
            color = QColor(255, 255, 255, 40);
            break;
        case OverlayColorRole::selection:
        case OverlayColorRole::accent:
            color = QColor(10, 132, 255);
            break;
        case OverlayColorRole::black:
            color = QColor(0, 0, 0);
            break;
    }
    color.setAlphaF(static_cast<float>(color.alphaF() * opacity));
    return color;
}

QColor QtOverlayStyle::material(bool opaque) {
    return opaque ? QColor(38, 38, 40) : QColor(30, 30, 32, 225);
}

}  // namespace orvane
