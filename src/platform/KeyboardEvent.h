// A keyboard event as the system's event tap hands it over: the few fields the gesture logic
// reads, under the platform's own numbers.
#pragma once

#include <cstddef>
#include <cstdint>

namespace orvane {

// The event's type (`CGEventType`).
using KeyboardEventType = std::uint32_t;
namespace keyboard_event_type {
inline constexpr KeyboardEventType keyDown = 10;
inline constexpr KeyboardEventType keyUp = 11;
inline constexpr KeyboardEventType flagsChanged = 12;
inline constexpr KeyboardEventType tapDisabledByTimeout = 0xFFFFFFFE;
inline constexpr KeyboardEventType tapDisabledByUserInput = 0xFFFFFFFF;
}  // namespace keyboard_event_type

// Integer fields of a keyboard event (`CGEventField`).
enum class KeyboardEventField : std::uint32_t {
    autorepeat = 8,
    keycode = 9,
};

// Device-independent modifier flags (`CGEventFlags`): either key of a pair sets its flag.
using KeyboardEventFlags = std::uint64_t;
namespace keyboard_event_flag {
inline constexpr KeyboardEventFlags shift = 0x20000;
inline constexpr KeyboardEventFlags control = 0x40000;
inline constexpr KeyboardEventFlags option = 0x80000;
inline constexpr KeyboardEventFlags command = 0x100000;
}  // namespace keyboard_event_flag

class KeyboardEvent {
  public:
    virtual ~KeyboardEvent() = default;

    virtual std::int64_t integerValueField(KeyboardEventField field) const = 0;
    virtual KeyboardEventFlags flags() const = 0;
    // Copies at most `maximumLength` UTF-16 units of the text the key types into `buffer` and
    // answers how many it copied.
    virtual std::size_t keyboardUnicodeString(std::size_t maximumLength,
                                              char16_t* buffer) const = 0;
};

}  // namespace orvane
