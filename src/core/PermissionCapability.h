// The two permissions of the operating system the program needs, and their states. In memory only.
#pragma once

#include <array>

namespace orvane {

enum class PermissionCapability { accessibility, screenRecording };
enum class PermissionGrantStatus { granted, notGranted };

inline constexpr std::array<PermissionCapability, 2> allPermissionCapabilities{
    PermissionCapability::accessibility, PermissionCapability::screenRecording};

}  // namespace orvane
