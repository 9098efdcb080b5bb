#include "preferences/SwitcherPreferences.h"

namespace orvane {

namespace {

template <typename Enumeration, std::size_t Count>
std::optional<Enumeration> fromRawValue(const std::array<Enumeration, Count>& cases,
                                        std::string_view raw) {
    for (auto candidate : cases) {
        if (rawValue(candidate) == raw) {
            return candidate;
        }
    }
    return std::nullopt;
}

}  // namespace

std::string_view rawValue(SwitcherHoldModifier modifier) {
    switch (modifier) {
        case SwitcherHoldModifier::option:
            return "option";
        case SwitcherHoldModifier::control:
            return "control";
    }
    return "option";
}

std::string_view rawValue(SwitcherOverlayLayoutStyle style) {
    switch (style) {
        case SwitcherOverlayLayoutStyle::row:
            return "row";
        case SwitcherOverlayLayoutStyle::grid:
            return "grid";
    }
    return "row";
}

std::string_view rawValue(SwitcherCardSize size) {
    switch (size) {
        case SwitcherCardSize::small:
            return "small";
        case SwitcherCardSize::medium:
            return "medium";
        case SwitcherCardSize::large:
            return "large";
    }
    return "medium";
}

std::optional<SwitcherHoldModifier> switcherHoldModifierFromRawValue(std::string_view raw) {
    return fromRawValue(allSwitcherHoldModifiers, raw);
}

std::optional<SwitcherOverlayLayoutStyle> switcherOverlayLayoutStyleFromRawValue(
    std::string_view raw) {
    return fromRawValue(allSwitcherOverlayLayoutStyles, raw);
}

std::optional<SwitcherCardSize> switcherCardSizeFromRawValue(std::string_view raw) {
    return fromRawValue(allSwitcherCardSizes, raw);
}

}  // namespace orvane
