// A keyboard event of the simulated desktop: key code, auto-repeat, flags and the text it types.
#pragma once

#include <string>

#include "core/Identifiers.h"
#include "platform/KeyboardEvent.h"

namespace orvane {

class SimulatedKeyboardEvent final : public KeyboardEvent {
  public:
    SimulatedKeyboardEvent() = default;
    SimulatedKeyboardEvent(EventKeyCode keyCode, KeyboardEventFlags flags,
                           bool isAutorepeat = false, std::u16string typedText = {});

    std::int64_t integerValueField(KeyboardEventField field) const override;
    KeyboardEventFlags flags() const override { return flags_; }
    std::size_t keyboardUnicodeString(std::size_t maximumLength, char16_t* buffer) const override;

    // The most UTF-16 units any reader asked for, so tests can hold readers to their limit.
    std::size_t largestUnicodeStringRequest() const { return largestUnicodeStringRequest_; }

  private:
    EventKeyCode keyCode_ = 0;
    KeyboardEventFlags flags_ = 0;
    bool isAutorepeat_ = false;
    std::u16string typedText_;
    mutable std::size_t largestUnicodeStringRequest_ = 0;
};

}  // namespace orvane
