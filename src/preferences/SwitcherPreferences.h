// Everything the user can set: one value record with one nested record and three enumerations,
// stored as a single JSON object.
#pragma once

#include <array>
#include <optional>
#include <string_view>

#include "core/Identifiers.h"

namespace orvane {

// The modifier held for the whole switcher session.
enum class SwitcherHoldModifier { option, control };
// How the overlay arranges its cards.
enum class SwitcherOverlayLayoutStyle { row, grid };
// The size class of the cards.
enum class SwitcherCardSize { small, medium, large };

inline constexpr std::array<SwitcherHoldModifier, 2> allSwitcherHoldModifiers{
    SwitcherHoldModifier::option, SwitcherHoldModifier::control};
inline constexpr std::array<SwitcherOverlayLayoutStyle, 2> allSwitcherOverlayLayoutStyles{
    SwitcherOverlayLayoutStyle::row, SwitcherOverlayLayoutStyle::grid};
inline constexpr std::array<SwitcherCardSize, 3> allSwitcherCardSizes{
    SwitcherCardSize::small, SwitcherCardSize::medium, SwitcherCardSize::large};

// Raw values equal the case names; conversion from a string is exact (case-sensitive).
std::string_view rawValue(SwitcherHoldModifier modifier);
std::string_view rawValue(SwitcherOverlayLayoutStyle style);
std::string_view rawValue(SwitcherCardSize size);
std::optional<SwitcherHoldModifier> switcherHoldModifierFromRawValue(std::string_view raw);
std::optional<SwitcherOverlayLayoutStyle> switcherOverlayLayoutStyleFromRawValue(
    std::string_view raw);
std::optional<SwitcherCardSize> switcherCardSizeFromRawValue(std::string_view raw);

// The switcher's chord: the held modifier and the tapped key.
struct SwitcherShortcutConfiguration {
    SwitcherHoldModifier holdModifier = SwitcherHoldModifier::option;
    // A virtual key code; 48 is Tab.
    StoredKeyCode triggerKeyCode = 48;

    friend bool operator==(const SwitcherShortcutConfiguration&,
                           const SwitcherShortcutConfiguration&) = default;
};

struct SwitcherPreferences {
    SwitcherShortcutConfiguration shortcutConfiguration;
    bool reverseCyclingEnabled = true;
    bool sameApplicationCyclingEnabled = true;
    bool thumbnailsEnabled = true;
    SwitcherOverlayLayoutStyle overlayLayoutStyle = SwitcherOverlayLayoutStyle::row;
    SwitcherCardSize cardSize = SwitcherCardSize::medium;
    bool menuBarIconVisible = true;

    friend bool operator==(const SwitcherPreferences&, const SwitcherPreferences&) = default;
};

}  // namespace orvane
