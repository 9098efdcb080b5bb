#include "platform/simulated/SimulatedKeyboardEvent.h"

#include <algorithm>
#include <utility>

namespace orvane {

SimulatedKeyboardEvent::SimulatedKeyboardEvent(EventKeyCode keyCode, KeyboardEventFlags flags,
                                               bool isAutorepeat, std::u16string typedText)
    : keyCode_(keyCode),
      flags_(flags),
      isAutorepeat_(isAutorepeat),
      typedText_(std::move(typedText)) {}

std::int64_t SimulatedKeyboardEvent::integerValueField(KeyboardEventField field) const {
    switch (field) {
        case KeyboardEventField::keycode:
            return keyCode_;
        case KeyboardEventField::autorepeat:
            return isAutorepeat_ ? 1 : 0;
    }
    return 0;
}

std::size_t SimulatedKeyboardEvent::keyboardUnicodeString(std::size_t maximumLength,
                                                          char16_t* buffer) const {
    largestUnicodeStringRequest_ = std::max(largestUnicodeStringRequest_, maximumLength);
    const std::size_t length = std::min(maximumLength, typedText_.size());
    std::copy_n(typedText_.begin(), length, buffer);
    return length;
}

}  // namespace orvane
