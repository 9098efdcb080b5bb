// Virtual key codes with a fixed meaning in the gestures.
#pragma once

#include "core/Identifiers.h"

namespace orvane::key_code {

inline constexpr EventKeyCode returnKey = 36;
inline constexpr EventKeyCode tab = 48;
inline constexpr EventKeyCode space = 49;
// The key above Tab: cycles the frontmost application's windows.
inline constexpr EventKeyCode graveAccent = 50;
inline constexpr EventKeyCode deleteKey = 51;
inline constexpr EventKeyCode escape = 53;
inline constexpr EventKeyCode keypadEnter = 76;
inline constexpr EventKeyCode leftArrow = 123;
inline constexpr EventKeyCode rightArrow = 124;
inline constexpr EventKeyCode downArrow = 125;
inline constexpr EventKeyCode upArrow = 126;

}  // namespace orvane::key_code
