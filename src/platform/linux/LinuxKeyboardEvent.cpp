#include "platform/linux/LinuxKeyboardEvent.h"

#include <algorithm>

namespace orvane {

std::int64_t LinuxKeyboardEvent::integerValueField(KeyboardEventField field) const {
    switch (field) {
        case KeyboardEventField::keycode:
            return keyCode_;
        case KeyboardEventField::autorepeat:
            return isAutorepeat_ ? 1 : 0;
    }
    return 0;
}

std::size_t LinuxKeyboardEvent::keyboardUnicodeString(std::size_t maximumLength,
                                                      char16_t* buffer) const {
    const auto count = std::min(maximumLength, typedText_.size());
    std::copy_n(typedText_.begin(), count, buffer);
    return count;
}

}  // namespace orvane
