// One key event of the desktop's keyboard, already translated: the stored key code, the flags,
// whether it repeats, and the text the user's layout types with it.
#pragma once

#include <string>

#include "platform/KeyboardEvent.h"

namespace orvane {

class LinuxKeyboardEvent final : public KeyboardEvent {
  public:
    LinuxKeyboardEvent(std::int64_t keyCode, KeyboardEventFlags flags, bool isAutorepeat,
                       std::u16string typedText)
        : keyCode_(keyCode),
          flags_(flags),
          isAutorepeat_(isAutorepeat),
          typedText_(std::move(typedText)) {}

    std::int64_t integerValueField(KeyboardEventField field) const override;
    KeyboardEventFlags flags() const override { return flags_; }
    std::size_t keyboardUnicodeString(std::size_t maximumLength, char16_t* buffer) const override;

  private:
    std::int64_t keyCode_;
    KeyboardEventFlags flags_;
    bool isAutorepeat_;
    std::u16string typedText_;
};

}  // namespace orvane
