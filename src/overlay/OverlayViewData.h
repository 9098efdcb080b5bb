// The overlay as data: every shape, text, image and symbol its views draw, positioned in the
// panel, so that a renderer (the simulator's text, a toolkit) only draws the elements in order.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "core/Geometry.h"
#include "platform/ImageHandle.h"

namespace orvane {

// Colour roles of the platform; a toolkit maps each to its own equivalent.
enum class OverlayColorRole {
    clear,
    primary,
    secondary,
    tertiary,
    quaternary,
    separator,
    selection,
    accent,
    black,
};

enum class OverlayMaterial { regularBlur };

enum class OverlayTextStyle { headline, title3, body, callout, caption, caption2 };

enum class OverlayFontWeight { regular, semibold };

enum class OverlaySymbolName {
    magnifyingGlass,
    macWindow,
    minimizedWindow,
    appDashed,
    returnKey,
};

// The platform's name of the symbol, such as "magnifyingglass".
constexpr std::string_view platformSymbolName(OverlaySymbolName symbol) {
    switch (symbol) {
        case OverlaySymbolName::magnifyingGlass:
            return "magnifyingglass";
        case OverlaySymbolName::macWindow:
            return "macwindow";
        case OverlaySymbolName::minimizedWindow:
            return "arrow.down.right.square";
        case OverlaySymbolName::appDashed:
            return "app.dashed";
        case OverlaySymbolName::returnKey:
            return "return";
    }
    return "";
}

// Which end of a text too wide for its frame gives way.
enum class OverlayTruncation { head, middle, tail };

// Rounded rectangles have continuous corners; a capsule's radius is half its height.
enum class OverlayShapeKind { rectangle, roundedRectangle, capsule };

// What an element stands for, so that tests, transcripts and renderers can tell them apart.
enum class OverlayPart {
    panelBackground,
    panelBorder,
    noWindowsMessage,
    cardBackground,
    cardBorder,
    thumbnail,
    cardIcon,
    badge,
    minimizedGlyph,
    caption,
    searchSymbol,
    query,
    caret,
    placeholder,
    modeBadge,
    modeName,
    modeHint,
    rowBackground,
    rowIcon,
    rowTitle,
    rowSubtitle,
    returnSymbol,
    noMatchesSymbol,
    noMatchesMessage,
};

struct OverlayPaint {
    OverlayColorRole color = OverlayColorRole::clear;
    double opacity = 1.0;
    friend bool operator==(const OverlayPaint&, const OverlayPaint&) = default;
};

// Drawn inside the shape's edge: centred on the outline inset by half the line width.
struct OverlayStroke {
    OverlayPaint paint;
    double lineWidth = 1.0;
    friend bool operator==(const OverlayStroke&, const OverlayStroke&) = default;
};

struct OverlayShadow {
    OverlayPaint paint;
    double blurRadius = 0;
    Point offset;
    friend bool operator==(const OverlayShadow&, const OverlayShadow&) = default;
};

// Filled with the material, then the paint, then stroked; each only when present.
struct OverlayShape {
    Rect frame;
    OverlayShapeKind kind = OverlayShapeKind::rectangle;
    double cornerRadius = 0;
    std::optional<OverlayMaterial> material;
    std::optional<OverlayPaint> fill;
    std::optional<OverlayStroke> stroke;
};

// One line, drawn from the frame's left edge and centred vertically in it. The frame is the
// measured width, narrower when the layout gives less: the renderer truncates to fit it.
struct OverlayText {
    Rect frame;
    std::string text;
    OverlayTextStyle style = OverlayTextStyle::body;
    OverlayFontWeight weight = OverlayFontWeight::regular;
    OverlayColorRole color = OverlayColorRole::primary;
    OverlayTruncation truncation = OverlayTruncation::tail;
};

// Stretched to its frame: the layout has already fitted the frame to the image's aspect ratio
// wherever that must be kept.
struct OverlayImage {
    Rect frame;
    ImageHandle image;
    // Clip to a rounded rectangle of this radius; 0 for no clip.
    double clipCornerRadius = 0;
    double opacity = 1.0;
    std::optional<OverlayShadow> shadow;
    bool highQualityInterpolation = false;
};

// A named symbol scaled to fit its frame, weighted like the text style.
struct OverlaySymbol {
    Rect frame;
    OverlaySymbolName symbol = OverlaySymbolName::macWindow;
    OverlayTextStyle style = OverlayTextStyle::body;
    OverlayColorRole color = OverlayColorRole::primary;
    double opacity = 1.0;
    std::optional<OverlayShadow> shadow;
    std::string tooltip;
    std::string accessibilityDescription;
};

struct OverlayElement {
    OverlayPart part = OverlayPart::panelBackground;
    // The window identifier of a card's elements or the item identifier of a launcher row's;
    // empty elsewhere.
    std::string key;
    std::variant<OverlayShape, OverlayText, OverlayImage, OverlaySymbol> content;

    const Rect& frame() const {
        return std::visit([](const auto& drawn) -> const Rect& { return drawn.frame; }, content);
    }
};

// Coordinates are points with the origin at the panel's top left and y growing downwards.
// Elements are in drawing order: later ones are drawn over earlier ones.
struct OverlayViewData {
    Size panelSize;
    std::vector<OverlayElement> elements;
};

}  // namespace orvane
