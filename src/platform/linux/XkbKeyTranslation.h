// The tables between the XKB keyboard of X11 and Wayland and the key codes and modifier flags the
// preferences and the gesture logic speak: physical keys by their XKB names (so the key above Tab
// is TLDE in every layout), and the core modifier masks (Shift, Control, Mod1, Mod4).
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "platform/KeyboardEvent.h"

namespace orvane {

class XkbKeyTranslation {
  public:
    // The stored key code of the physical key with that XKB name ("TAB", "TLDE", "AC01").
    static std::optional<std::uint16_t> storedKeyCode(std::string_view xkbKeyName);
    // The XKB name of the physical key a stored code stands for.
    static std::optional<std::string_view> xkbKeyName(std::uint16_t storedKeyCode);

    // Flags of a core event state (Shift, Control, Mod1 as Alt, Mod4 as Super).
    static KeyboardEventFlags flags(std::uint16_t state);
    // The core modifier mask of flags; the inverse of `flags` for the four it knows.
    static std::uint16_t modifierMask(KeyboardEventFlags flags);
    // Masks that must not change what a grab matches: NumLock (Mod2), CapsLock and ScrollLock
    // (Mod5 in common keymaps).
    static constexpr std::uint16_t lockMasks[] = {0,      2,       16,       128,
                                                  2 | 16, 2 | 128, 16 | 128, 2 | 16 | 128};
    // The modifier flag a key producing that keysym sets (Alt_L sets Alt), or 0 for other keys.
    // By keysym, not position: AltGr on the right is no Alt in most layouts.
    static KeyboardEventFlags modifierFlagOfKeysym(std::uint32_t keysym);
};

}  // namespace orvane
