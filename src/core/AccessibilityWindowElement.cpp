#include "core/AccessibilityWindowElement.h"

#include <utility>

namespace orvane {

namespace {

std::optional<AccessibilityValue> readAttribute(const AccessibilityPort& accessibility,
                                                const AccessibilityElementHandle& element,
                                                std::string_view attribute) {
    auto reading = accessibility.copyAttributeValue(element, attribute);
    if (reading.error != accessibility_error::success) {
        return std::nullopt;
    }
    return std::move(reading.value);
}

}  // namespace

AccessibilityWindowElement::AccessibilityWindowElement(AccessibilityElementHandle underlyingElement)
    : underlyingElement_(std::move(underlyingElement)) {}

std::optional<Rect> AccessibilityWindowElement::readScreenFrame(
    const AccessibilityPort& accessibility) const {
    if (!underlyingElement_) {
        return std::nullopt;
    }
    const auto position = readAttribute(accessibility, underlyingElement_, "AXPosition");
    if (!position) {
        return std::nullopt;
    }
    const auto size = readAttribute(accessibility, underlyingElement_, "AXSize");
    if (!size) {
        return std::nullopt;
    }
    const auto* positionValue = std::get_if<AccessibilityGeometryValue>(&position->storage);
    const auto* sizeValue = std::get_if<AccessibilityGeometryValue>(&size->storage);
    if (positionValue == nullptr || sizeValue == nullptr) {
        return std::nullopt;
    }
    auto origin = positionValue->pointValue();
    auto extent = sizeValue->sizeValue();
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
