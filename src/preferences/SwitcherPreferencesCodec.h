// Turns the preferences record into its stored JSON text and back. Decoding yields either the
// whole record or nothing, with a reason naming the first key that failed.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "preferences/SwitcherPreferences.h"

namespace orvane {

class SwitcherPreferencesCodec {
  public:
    // Holds the compact UTF-8 JSON text, or the encoder's reason for refusing.
    struct EncodeResult {
        std::optional<std::string> bytes;
        std::string error;
    };

    // Holds the whole record, or a reason such as `cardSize: "huge" is not one of ...`.
    struct DecodeResult {
        std::optional<SwitcherPreferences> preferences;
        std::string error;
    };

    // Writes every key, defaults included, in the fixed stored order.
    static EncodeResult encode(const SwitcherPreferences& preferences);

    // Absent or null keys take their defaults and unknown keys are ignored; any other
    // unusable value fails the whole record. The key code must be a number with an integral
    // value in 0...65535, so 48.0 is accepted and 48.5 is not.
    static DecodeResult decode(std::string_view bytes);
};

}  // namespace orvane
