// The key names a scenario may use, with their virtual key codes and the text each key types.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "core/Identifiers.h"

namespace orvane::simulator {

class KeyNameTable {
  public:
    struct Key {
        EventKeyCode keyCode = 0;
        // What the key types without Shift, and with Shift.
        std::u16string text;
        std::u16string shiftedText;
    };

    // A name ("tab", "a", "left") or a decimal key code; nothing for an unknown name.
    static std::optional<Key> lookUp(std::string_view name);
    // The name for a key code, or the code in decimal.
    static std::string nameOf(EventKeyCode keyCode);
};

}  // namespace orvane::simulator
