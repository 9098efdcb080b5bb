// One row of the launcher. The icon takes no part in equality.
#pragma once

#include <optional>
#include <string>

#include "platform/ImageHandle.h"

namespace orvane {

struct LauncherItem {
    // Identity within its mode, and the row's key in the list.
    std::string identifier;
    std::string title;
    std::optional<std::string> subtitle;
    std::optional<ImageHandle> icon;

    friend bool operator==(const LauncherItem& left, const LauncherItem& right) {
        return left.identifier == right.identifier && left.title == right.title &&
               left.subtitle == right.subtitle;
    }
};

}  // namespace orvane
