#include "overlay/OverlayTextRenderer.h"

#include <string_view>

#include "core/FormatPoints.h"

namespace orvane {

namespace {

std::string_view name(OverlayPart part) {
    switch (part) {
        case OverlayPart::panelBackground:
            return "panelBackground";
        case OverlayPart::panelBorder:
            return "panelBorder";
        case OverlayPart::noWindowsMessage:
            return "noWindowsMessage";
        case OverlayPart::cardBackground:
            return "cardBackground";
        case OverlayPart::cardBorder:
            return "cardBorder";
        case OverlayPart::thumbnail:
            return "thumbnail";
        case OverlayPart::cardIcon:
            return "cardIcon";
        case OverlayPart::badge:
            return "badge";
        case OverlayPart::minimizedGlyph:
            return "minimizedGlyph";
        case OverlayPart::caption:
            return "caption";
        case OverlayPart::searchSymbol:
            return "searchSymbol";
        case OverlayPart::query:
            return "query";
        case OverlayPart::caret:
            return "caret";
        case OverlayPart::placeholder:
            return "placeholder";
        case OverlayPart::modeBadge:
            return "modeBadge";
        case OverlayPart::modeName:
            return "modeName";
        case OverlayPart::modeHint:
            return "modeHint";
        case OverlayPart::rowBackground:
            return "rowBackground";
        case OverlayPart::rowIcon:
            return "rowIcon";
        case OverlayPart::rowTitle:
            return "rowTitle";
        case OverlayPart::rowSubtitle:
            return "rowSubtitle";
        case OverlayPart::returnSymbol:
            return "returnSymbol";
        case OverlayPart::noMatchesSymbol:
            return "noMatchesSymbol";
        case OverlayPart::noMatchesMessage:
            return "noMatchesMessage";
    }
    return "?";
}

std::string_view name(OverlayColorRole color) {
    switch (color) {
        case OverlayColorRole::clear:
            return "clear";
        case OverlayColorRole::primary:
            return "primary";
        case OverlayColorRole::secondary:
            return "secondary";
        case OverlayColorRole::tertiary:
            return "tertiary";
        case OverlayColorRole::quaternary:
            return "quaternary";
        case OverlayColorRole::separator:
            return "separator";
        case OverlayColorRole::selection:
            return "selection";
        case OverlayColorRole::accent:
            return "accent";
        case OverlayColorRole::black:
            return "black";
    }
    return "?";
}

std::string_view name(OverlayTextStyle style) {
    switch (style) {
        case OverlayTextStyle::headline:
            return "headline";
        case OverlayTextStyle::title3:
            return "title3";
        case OverlayTextStyle::body:
            return "body";
        case OverlayTextStyle::callout:
            return "callout";
        case OverlayTextStyle::caption:
            return "caption";
        case OverlayTextStyle::caption2:
            return "caption2";
    }
    return "?";
}

std::string_view name(OverlayTruncation truncation) {
    switch (truncation) {
        case OverlayTruncation::head:
            return "head";
        case OverlayTruncation::middle:
            return "middle";
        case OverlayTruncation::tail:
            return "tail";
    }
    return "?";
}

std::string_view name(OverlayShapeKind kind) {
    switch (kind) {
        case OverlayShapeKind::rectangle:
            return "rectangle";
        case OverlayShapeKind::roundedRectangle:
            return "roundedRectangle";
        case OverlayShapeKind::capsule:
            return "capsule";
    }
    return "?";
}

class LineWriter {
  public:
    explicit LineWriter(std::string& out) : out_(out) {}

    void operator()(const OverlayShape& shape) {
        out_ += ' ';
        out_ += name(shape.kind);
        if (shape.kind == OverlayShapeKind::roundedRectangle) {
            out_ += " radius " + formatPoints(shape.cornerRadius);
        }
        if (shape.material) {
            out_ += " material regularBlur";
        }
        if (shape.fill) {
            paint(" fill ", *shape.fill);
        }
        if (shape.stroke) {
            paint(" stroke ", shape.stroke->paint);
            out_ += " width " + formatPoints(shape.stroke->lineWidth);
        }
    }

    void operator()(const OverlayText& text) {
        out_ += " \"" + text.text + "\" ";
        out_ += name(text.style);
        if (text.weight == OverlayFontWeight::semibold) {
            out_ += " semibold";
        }
        out_ += ' ';
        out_ += name(text.color);
        out_ += ' ';
        out_ += name(text.truncation);
    }

    void operator()(const OverlayImage& image) {
        out_ += " \"" + image.image.description + "\"";
        if (image.clipCornerRadius > 0) {
            out_ += " clip " + formatPoints(image.clipCornerRadius);
        }
        opacity(image.opacity);
        shadow(image.shadow);
        if (image.highQualityInterpolation) {
            out_ += " smooth";
        }
    }

    void operator()(const OverlaySymbol& symbol) {
        out_ += ' ';
        out_ += platformSymbolName(symbol.symbol);
        out_ += ' ';
        out_ += name(symbol.style);
        out_ += ' ';
        out_ += name(symbol.color);
        opacity(symbol.opacity);
        shadow(symbol.shadow);
        if (!symbol.tooltip.empty()) {
            out_ += " tooltip \"" + symbol.tooltip + "\"";
        }
        if (!symbol.accessibilityDescription.empty()) {
            out_ += " label \"" + symbol.accessibilityDescription + "\"";
        }
    }

  private:
    void paint(std::string_view lead, const OverlayPaint& paint) {
        out_ += lead;
        out_ += name(paint.color);
        opacity(paint.opacity);
    }

    void opacity(double value) {
        if (value != 1.0) {
            out_ += " opacity " + formatPoints(value * 100) + "%";
        }
    }

    void shadow(const std::optional<OverlayShadow>& shadow) {
        if (shadow) {
            paint(" shadow ", shadow->paint);
            out_ += " blur " + formatPoints(shadow->blurRadius);
        }
    }

    std::string& out_;
};

std::string_view kind(const OverlayElement& element) {
    static constexpr std::string_view kinds[] = {"shape", "text", "image", "symbol"};
    return kinds[element.content.index()];
}

}  // namespace

std::string OverlayTextRenderer::render(const OverlayViewData& data) {
    std::string out = "panel " + formatPoints(data.panelSize.width) + "x" +
                      formatPoints(data.panelSize.height) + "\n";
    for (const auto& element : data.elements) {
        out += name(element.part);
        if (!element.key.empty()) {
            out += " #" + element.key;
        }
        out += ' ';
        out += kind(element);
        const Rect& frame = element.frame();
        out += ' ' + formatPoints(frame.minX()) + ',' + formatPoints(frame.minY()) + ' ' +
               formatPoints(frame.width()) + 'x' + formatPoints(frame.height());
        std::visit(LineWriter{out}, element.content);
        out += '\n';
    }
    return out;
}

}  // namespace orvane
