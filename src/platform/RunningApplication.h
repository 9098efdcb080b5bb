// What the workspace tells of one running application.
#pragma once

#include <optional>
#include <string>

#include "core/Date.h"
#include "core/Identifiers.h"
#include "platform/ImageHandle.h"

namespace orvane {

// The application's activation policy: regular applications have a Dock icon and menus.
enum class ApplicationActivationPolicy { regular = 0, accessory = 1, prohibited = 2 };

struct RunningApplication {
    ProcessIdentifier processIdentifier = 0;
    std::optional<std::string> localizedName;
    std::optional<std::string> bundleIdentifier;
    ApplicationActivationPolicy activationPolicy = ApplicationActivationPolicy::regular;
    std::optional<ImageHandle> icon;
    std::optional<Date> launchDate;

    friend bool operator==(const RunningApplication&, const RunningApplication&) = default;
};

}  // namespace orvane
