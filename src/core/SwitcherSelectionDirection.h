// A direction the selection of a switcher session can be stepped in, from the arrow keys.
#pragma once

namespace orvane {

enum class SwitcherSelectionDirection { left, right, up, down };

}  // namespace orvane
