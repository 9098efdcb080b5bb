// What a desktop entry says of an installed application: how the menu names and draws it, and
// whether it lists it.
#pragma once

#include <optional>
#include <string>

#include "platform/ImageHandle.h"

namespace orvane {

struct DesktopEntry {
    std::string name;
    // Its identifier names a theme icon or an absolute file path.
    std::optional<ImageHandle> icon;
    std::string startupWindowClass;
    // Whether the desktop's menu lists it: not NoDisplay, not Hidden, shown in this desktop.
    bool isShown = false;
    bool isHidden = false;
};

}  // namespace orvane
