#include "ui/qt/QtOverlayRenderer.h"

#include <QFontMetricsF>
#include <QIcon>
#include <QPainterPath>
#include <cmath>
#include <map>
#include <set>
#include <string_view>

#include "ui/qt/QtOverlayStyle.h"

namespace orvane {

namespace {

QRectF qrect(const Rect& rect) {
    return {rect.origin.x, rect.origin.y, rect.size.width, rect.size.height};
}

QPainterPath outline(const QRectF& frame, OverlayShapeKind kind, double cornerRadius) {
    QPainterPath path;
    switch (kind) {
        case OverlayShapeKind::rectangle:
            path.addRect(frame);
            break;
        case OverlayShapeKind::roundedRectangle:
            path.addRoundedRect(frame, cornerRadius, cornerRadius);
            break;
        case OverlayShapeKind::capsule: {
            const double radius = frame.height() / 2;
            path.addRoundedRect(frame, radius, radius);
            break;
        }
    }
    return path;
}

// What a user can see of an element, for telling two builds apart.
bool looksAlike(const OverlayElement& a, const OverlayElement& b) {
    if (a.part != b.part || a.key != b.key || !(a.frame() == b.frame()) ||
        a.content.index() != b.content.index()) {
        return false;
    }
    if (const auto* shape = std::get_if<OverlayShape>(&a.content)) {
        const auto& other = std::get<OverlayShape>(b.content);
        return shape->fill == other.fill && shape->stroke == other.stroke &&
               shape->material == other.material && shape->kind == other.kind;
    }
    if (const auto* text = std::get_if<OverlayText>(&a.content)) {
        const auto& other = std::get<OverlayText>(b.content);
        return text->text == other.text && text->color == other.color &&
               text->style == other.style && text->weight == other.weight;
    }
    if (const auto* image = std::get_if<OverlayImage>(&a.content)) {
        const auto& other = std::get<OverlayImage>(b.content);
        return image->image == other.image && image->opacity == other.opacity;
    }
    const auto& symbol = std::get<OverlaySymbol>(a.content);
    const auto& other = std::get<OverlaySymbol>(b.content);
    return symbol.symbol == other.symbol && symbol.color == other.color &&
           symbol.opacity == other.opacity;
}

const char* themeIconName(OverlaySymbolName symbol) {
    switch (symbol) {
        case OverlaySymbolName::magnifyingGlass:
            return "edit-find";
        case OverlaySymbolName::macWindow:
            return "window";
        case OverlaySymbolName::minimizedWindow:
            return "window-minimize";
        case OverlaySymbolName::appDashed:
            return "application-x-executable";
        case OverlaySymbolName::returnKey:
            return "key-enter";
    }
    return "";
}

// Cards, titles and the panel come back at every gesture; the caches stay small all the same.
constexpr std::size_t maximumCachedShapes = 256;
constexpr std::size_t maximumCachedTexts = 1024;

}  // namespace

QRegion QtOverlayRenderer::changedRegion(const OverlayViewData& before,
                                         const OverlayViewData& after) {
    const QRect whole(0, 0, static_cast<int>(std::ceil(after.panelSize.width)),
                      static_cast<int>(std::ceil(after.panelSize.height)));
    if (!(before.panelSize == after.panelSize)) {
        return whole;
    }
    // The likely case when a gesture opens on the picture prepared for it: nothing differs.
    if (std::equal(before.elements.begin(), before.elements.end(), after.elements.begin(),
                   after.elements.end(), looksAlike)) {
        return {};
    }
    // Card by card (a card's elements share its key): a card that gains its preview, moves or
    // goes changes its own place and nothing else.
    std::map<std::string_view,
             std::pair<std::vector<const OverlayElement*>, std::vector<const OverlayElement*>>>
        byKey;
    for (const auto& element : before.elements) {
        byKey[element.key].first.push_back(&element);
    }
    for (const auto& element : after.elements) {
        byKey[element.key].second.push_back(&element);
    }
    QRegion region;
    for (const auto& [key, elements] : byKey) {
        const auto& [was, is] = elements;
        const bool alike =
            was.size() == is.size() &&
            std::equal(was.begin(), was.end(), is.begin(),
                       [](const auto* one, const auto* other) { return looksAlike(*one, *other); });
        if (alike) {
            continue;
        }
        if (key.empty() && was.size() != is.size()) {
            return whole;
        }
        // A stroke or a shadow may reach a little past the frame.
        for (const auto* side : {&was, &is}) {
            for (const auto* element : *side) {
                region += qrect(element->frame()).toAlignedRect().adjusted(-3, -3, 3, 3);
            }
        }
    }
    return region;
}

int QtOverlayRenderer::scrollToShow(const OverlayViewData& data, const std::string& selectedKey,
                                    int current, int visibleHeight) {
    // Room above and below the selected card, so that its neighbours show it has some.
    constexpr int margin = 24;
    const int overflow = static_cast<int>(std::ceil(data.panelSize.height)) - visibleHeight;
    if (overflow <= 0) {
        return 0;
    }
    const auto card = std::find_if(data.elements.begin(), data.elements.end(), [&](const auto& e) {
        return e.part == OverlayPart::cardBackground && e.key == selectedKey;
    });
    if (selectedKey.empty()) {
        return 0;
    }
    if (card == data.elements.end()) {
        return std::clamp(current, 0, overflow);
    }
    const int top = static_cast<int>(std::floor(card->frame().minY())) - margin;
    const int bottom = static_cast<int>(std::ceil(card->frame().maxY())) + margin;
    int scroll = current;
    if (top < scroll) {
        scroll = top;
    } else if (bottom > scroll + visibleHeight) {
        scroll = bottom - visibleHeight;
    }
    return std::clamp(scroll, 0, overflow);
}

void QtOverlayRenderer::paint(QPainter& painter, const OverlayViewData& data, bool opaque,
                              const QRegion* only) const {
    forgetImagesNotIn(data);
    painter.setRenderHint(QPainter::Antialiasing, true);
    painter.setRenderHint(QPainter::TextAntialiasing, true);
    if (only == nullptr) {
        paintElements(painter, data, opaque, nullptr);
        return;
    }
    // One plain rectangle at a time: under a rectangular clip Qt copies images straight, where a
    // clip of several rectangles sends each of them through its span filler and thread pool.
    for (const QRect& rect : *only) {
        painter.save();
        painter.setClipRect(rect);
        paintElements(painter, data, opaque, &rect);
        painter.restore();
    }
}

void QtOverlayRenderer::forgetImagesNotIn(const OverlayViewData& data) const {
    // Previews get a new identifier whenever their window changed: only what the last two views
    // show is worth keeping. Two, because a gesture starts with icons and its previews follow, the
    // same ones as last time when their windows stayed as they were.
    std::set<std::uint64_t> shown;
    for (const auto& element : data.elements) {
        if (const auto* image = std::get_if<OverlayImage>(&element.content)) {
            shown.insert(image->image.identifier);
        }
    }
    if (shown == shownLast_) {
        return;
    }
    shownBefore_ = std::move(shownLast_);
    shownLast_ = std::move(shown);
    std::erase_if(scaled_, [this](const auto& entry) {
        const auto identifier = std::get<0>(entry.first);
        return !shownLast_.contains(identifier) && !shownBefore_.contains(identifier);
    });
}

void QtOverlayRenderer::paintElements(QPainter& painter, const OverlayViewData& data, bool opaque,
                                      const QRect* only) const {
    for (const auto& element : data.elements) {
        // A stroke or a shadow may reach a little past the frame.
        if (only != nullptr &&
            !only->intersects(qrect(element.frame()).toAlignedRect().adjusted(-3, -3, 3, 3))) {
            continue;
        }
        std::visit(
            [&](const auto& drawn) {
                using Drawn = std::decay_t<decltype(drawn)>;
                if constexpr (std::is_same_v<Drawn, OverlayShape>) {
                    paintShape(painter, element, drawn, opaque);
                } else if constexpr (std::is_same_v<Drawn, OverlayText>) {
                    paintText(painter, drawn);
                } else if constexpr (std::is_same_v<Drawn, OverlayImage>) {
                    paintImage(painter, drawn);
                } else {
                    paintSymbol(painter, drawn);
                }
            },
            element.content);
    }
}

void QtOverlayRenderer::paintShape(QPainter& painter, const OverlayElement& element,
                                   const OverlayShape& shape, bool opaque) const {
    // Without a compositor the panel's own corners would come out black: it is square then.
    const bool squarePanel = opaque && (element.part == OverlayPart::panelBackground ||
                                        element.part == OverlayPart::panelBorder);
    const auto frame = qrect(shape.frame);
    const double ratio = painter.device() ? painter.device()->devicePixelRatioF() : 1.0;
    // Drawn once into an image of its own, then copied: filling a path costs far more than a copy,
    // and the same cards come back at every gesture.
    const QPointF origin(std::floor(frame.x()), std::floor(frame.y()));
    const QRectF local = frame.translated(-origin);
    const QSize pixels(static_cast<int>(std::ceil(local.right() * ratio)),
                       static_cast<int>(std::ceil(local.bottom() * ratio)));
    if (pixels.isEmpty()) {
        return;
    }
    // An unselected card's background and border are clear: blending their images would change
    // no pixel.
    const auto isClear = [](const std::optional<OverlayPaint>& paint) {
        return !paint || QtOverlayStyle::color(paint->color, paint->opacity).alpha() == 0;
    };
    if (!shape.material && isClear(shape.fill) &&
        isClear(shape.stroke ? std::optional(shape.stroke->paint) : std::nullopt)) {
        return;
    }
    const auto kind = squarePanel ? OverlayShapeKind::rectangle : shape.kind;
    if (kind == OverlayShapeKind::rectangle) {
        // Straight fills: the image of a whole panel would blend far more than the clip shows.
        // Pixel-aligned, they need no antialiasing, which would send them through the rasterizer.
        painter.save();
        painter.setRenderHint(QPainter::Antialiasing, frame != frame.toAlignedRect().toRectF());
        if (shape.material) {
            painter.fillRect(frame, QtOverlayStyle::material(opaque));
        }
        if (shape.fill) {
            painter.fillRect(frame, QtOverlayStyle::color(shape.fill->color, shape.fill->opacity));
        }
        if (shape.stroke) {
            const double width =
                std::min(shape.stroke->lineWidth, std::min(frame.width(), frame.height()) / 2);
            const auto color =
                QtOverlayStyle::color(shape.stroke->paint.color, shape.stroke->paint.opacity);
            painter.fillRect(QRectF(frame.left(), frame.top(), frame.width(), width), color);
            painter.fillRect(QRectF(frame.left(), frame.bottom() - width, frame.width(), width),
                             color);
            painter.fillRect(
                QRectF(frame.left(), frame.top() + width, width, frame.height() - 2 * width),
                color);
            painter.fillRect(QRectF(frame.right() - width, frame.top() + width, width,
                                    frame.height() - 2 * width),
                             color);
        }
        painter.restore();
        return;
    }
    const auto paintKey = [](const std::optional<OverlayPaint>& paint) {
        return paint ? std::make_tuple(static_cast<int>(paint->color), paint->opacity)
                     : std::make_tuple(-1, 0.0);
    };
    const ShapeKey key{static_cast<int>(kind),
                       local.x(),
                       local.y(),
                       local.width(),
                       local.height(),
                       shape.cornerRadius,
                       ratio,
                       shape.material ? (opaque ? 2 : 1) : 0,
                       paintKey(shape.fill),
                       paintKey(shape.stroke ? std::optional(shape.stroke->paint) : std::nullopt),
                       shape.stroke ? shape.stroke->lineWidth : 0.0};
    auto cached = shapes_.find(key);
    if (cached == shapes_.end()) {
        QImage image(pixels, QImage::Format_ARGB32_Premultiplied);
        image.setDevicePixelRatio(ratio);
        image.fill(Qt::transparent);
        QPainter drawer(&image);
        drawer.setRenderHint(QPainter::Antialiasing, true);
        const double inset = shape.stroke ? shape.stroke->lineWidth / 2 : 0;
        const auto path = outline(local.adjusted(inset, inset, -inset, -inset), kind,
                                  std::max(0.0, shape.cornerRadius - inset));
        if (shape.material) {
            drawer.fillPath(path, QtOverlayStyle::material(opaque));
        }
        if (shape.fill) {
            drawer.fillPath(path, QtOverlayStyle::color(shape.fill->color, shape.fill->opacity));
        }
        if (shape.stroke) {
            drawer.strokePath(path, QPen(QtOverlayStyle::color(shape.stroke->paint.color,
                                                               shape.stroke->paint.opacity),
                                         shape.stroke->lineWidth));
        }
        drawer.end();
        if (shapes_.size() >= maximumCachedShapes) {
            shapes_.clear();
        }
        cached = shapes_.emplace(key, std::move(image)).first;
    }
    painter.drawImage(origin, cached->second);
}

void QtOverlayRenderer::paintText(QPainter& painter, const OverlayText& text) const {
    const auto frame = qrect(text.frame);
    const TextKey key{text.text, static_cast<int>(text.style), static_cast<int>(text.weight),
                      static_cast<int>(text.truncation), frame.width()};
    auto cached = texts_.find(key);
    if (cached == texts_.end()) {
        const auto font = QtOverlayStyle::font(text.style, text.weight);
        const QFontMetricsF metrics(font);
        auto words = QString::fromUtf8(text.text.data(), static_cast<qsizetype>(text.text.size()));
        if (metrics.horizontalAdvance(words) > frame.width() + 0.5) {
            const auto mode = text.truncation == OverlayTruncation::head     ? Qt::ElideLeft
                              : text.truncation == OverlayTruncation::middle ? Qt::ElideMiddle
                                                                             : Qt::ElideRight;
            words = metrics.elidedText(words, mode, frame.width());
        }
        // Laid out once; each paint then only draws the glyphs.
        QStaticText laidOut(words);
        laidOut.setTextFormat(Qt::PlainText);
        laidOut.prepare(QTransform(), font);
        if (texts_.size() >= maximumCachedTexts) {
            texts_.clear();
        }
        cached = texts_.emplace(key, CachedText{std::move(laidOut), font, metrics.height()}).first;
    }
    const auto& laidOut = cached->second;
    painter.setFont(laidOut.font);
    painter.setPen(QtOverlayStyle::color(text.color));
    painter.drawStaticText(QPointF(frame.x(), frame.y() + (frame.height() - laidOut.height) / 2),
                           laidOut.text);
}

void QtOverlayRenderer::paintImage(QPainter& painter, const OverlayImage& image) const {
    const auto frame = qrect(image.frame);
    const double ratio = painter.device() ? painter.device()->devicePixelRatioF() : 1.0;
    const QSize pixels(static_cast<int>(std::lround(frame.width() * ratio)),
                       static_cast<int>(std::lround(frame.height() * ratio)));
    if (pixels.isEmpty()) {
        return;
    }
    // Scaling and clipping are done once per image and size; each paint is then a plain copy.
    const ScaledKey key{image.image.identifier, pixels.width(), pixels.height(),
                        image.clipCornerRadius};
    auto cached = scaled_.find(key);
    if (cached == scaled_.end()) {
        const auto source = images_ ? images_(image.image) : QImage();
        if (source.isNull()) {
            return;
        }
        QImage result(pixels, QImage::Format_ARGB32_Premultiplied);
        result.fill(Qt::transparent);
        QPainter scaler(&result);
        scaler.setRenderHint(QPainter::Antialiasing, true);
        scaler.setRenderHint(QPainter::SmoothPixmapTransform, true);
        if (image.clipCornerRadius > 0) {
            QPainterPath clip;
            const double radius = image.clipCornerRadius * ratio;
            clip.addRoundedRect(QRectF(QPointF(0, 0), QSizeF(pixels)), radius, radius);
            scaler.setClipPath(clip);
        }
        scaler.drawImage(QRectF(QPointF(0, 0), QSizeF(pixels)), source);
        scaler.end();
        result.setDevicePixelRatio(ratio);
        cached = scaled_.emplace(key, std::move(result)).first;
    }
    painter.save();
    painter.setOpacity(image.opacity);
    painter.drawImage(frame.topLeft(), cached->second);
    painter.restore();
}

void QtOverlayRenderer::paintSymbol(QPainter& painter, const OverlaySymbol& symbol) const {
    const auto frame = qrect(symbol.frame);
    const auto color = QtOverlayStyle::color(symbol.color, symbol.opacity);
    auto cached = icons_.find(symbol.symbol);
    if (cached == icons_.end()) {
        cached = icons_
                     .emplace(symbol.symbol,
                              QIcon::fromTheme(QString::fromLatin1(themeIconName(symbol.symbol))))
                     .first;
    }
    const auto& icon = cached->second;
    if (!icon.isNull()) {
        painter.save();
        painter.setOpacity(symbol.opacity);
        icon.paint(&painter, frame.toAlignedRect());
        painter.restore();
        return;
    }
    painter.save();
    painter.setPen(QPen(color, std::max(1.2, frame.height() / 12), Qt::SolidLine, Qt::RoundCap));
    painter.setBrush(Qt::NoBrush);
    const auto box = frame.adjusted(frame.width() * 0.12, frame.height() * 0.12,
                                    -frame.width() * 0.12, -frame.height() * 0.12);
    switch (symbol.symbol) {
        case OverlaySymbolName::magnifyingGlass: {
            const QRectF lens(box.left(), box.top(), box.width() * 0.66, box.height() * 0.66);
            painter.drawEllipse(lens);
            painter.drawLine(lens.center() + QPointF(lens.width() * 0.36, lens.height() * 0.36),
                             box.bottomRight());
            break;
        }
        case OverlaySymbolName::macWindow:
            painter.drawRoundedRect(box, 2, 2);
            painter.drawLine(QPointF(box.left(), box.top() + box.height() * 0.28),
                             QPointF(box.right(), box.top() + box.height() * 0.28));
            break;
        case OverlaySymbolName::minimizedWindow:
            painter.drawRoundedRect(box, 2, 2);
            painter.drawLine(box.topLeft() + QPointF(box.width() * 0.3, box.height() * 0.3),
                             box.bottomRight() - QPointF(box.width() * 0.25, box.height() * 0.25));
            painter.drawLine(box.bottomRight() - QPointF(box.width() * 0.25, box.height() * 0.25),
                             box.bottomRight() - QPointF(box.width() * 0.25, box.height() * 0.55));
            painter.drawLine(box.bottomRight() - QPointF(box.width() * 0.25, box.height() * 0.25),
                             box.bottomRight() - QPointF(box.width() * 0.55, box.height() * 0.25));
            break;
        case OverlaySymbolName::appDashed: {
            QPen dashed = painter.pen();
            dashed.setStyle(Qt::DashLine);
            painter.setPen(dashed);
            painter.drawRoundedRect(box, box.width() * 0.2, box.height() * 0.2);
            break;
        }
        case OverlaySymbolName::returnKey:
            painter.drawLine(QPointF(box.right(), box.top()),
                             QPointF(box.right(), box.center().y()));
            painter.drawLine(QPointF(box.right(), box.center().y()),
                             QPointF(box.left(), box.center().y()));
            painter.drawLine(
                QPointF(box.left(), box.center().y()),
                QPointF(box.left() + box.width() * 0.3, box.top() + box.height() * 0.25));
            painter.drawLine(
                QPointF(box.left(), box.center().y()),
                QPointF(box.left() + box.width() * 0.3, box.bottom() - box.height() * 0.25));
            break;
    }
    painter.restore();
}

}  // namespace orvane
