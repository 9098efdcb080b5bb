#include "core/AccessibilityWindowElement.h"

#include <utility>

namespace orvane {

namespace {

std::optional<AccessibilityGeometryValue> readGeometryAttribute(
    const AccessibilityPort& accessibility, const AccessibilityElementHandle& element,
    std::string_view attribute) {
    auto reading = accessibility.copyAttributeValue(element, attribute);
    if (reading.error != accessibility_error::success || !reading.value) {
        return std::nullopt;
    }
    const auto* geometry = std::get_if<AccessibilityGeometryValue>(&reading.value->storage);
    if (geometry == nullptr) {
        return std::nullopt;
    }
    return *geometry;
}

}  // namespace

AccessibilityWindowElement::AccessibilityWindowElement(AccessibilityElementHandle underlyingElement)
    : underlyingElement_(std::move(underlyingElement)) {}

std::optional<Rect> AccessibilityWindowElement::readScreenFrame(
    const AccessibilityPort& accessibility) const {
    if (!underlyingElement_) {
        return std::nullopt;
    }
    auto position = readGeometryAttribute(accessibility, underlyingElement_, "AXPosition");
    if (!position) {
        return std::nullopt;
    }
    auto size = readGeometryAttribute(accessibility, underlyingElement_, "AXSize");
    if (!size) {
        return std::nullopt;
    }
    auto origin = position->pointValue();
    auto extent = size->sizeValue();
    if (!origin || !extent) {
        return std::nullopt;
    }
    return Rect{*origin, *extent};
}

std::size_t AccessibilityWindowElement::hashValue() const {
    return underlyingElement_ ? underlyingElement_->hashValue() : 0;
}

bool operator==(const AccessibilityWindowElement& left, const AccessibilityWindowElement& right) {
    if (left.underlyingElement_ == right.underlyingElement_) {
        return true;
    }
    if (!left.underlyingElement_ || !right.underlyingElement_) {
        return false;
    }
    return left.underlyingElement_->isEqualTo(*right.underlyingElement_);
}

}  // namespace orvane
