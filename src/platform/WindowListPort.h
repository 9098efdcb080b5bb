// The window server's list of windows: one dictionary per window, front to back.
#pragma once

#include <cstdint>
#include <optional>

#include "core/Identifiers.h"
#include "platform/PropertyListValue.h"

namespace orvane {

namespace window_list_option {
inline constexpr std::uint32_t onScreenOnly = 1;
inline constexpr std::uint32_t excludeDesktopElements = 16;
}  // namespace window_list_option

// The keys of one window's dictionary.
namespace window_list_key {
inline constexpr const char* number = "kCGWindowNumber";
inline constexpr const char* ownerProcessIdentifier = "kCGWindowOwnerPID";
inline constexpr const char* bounds = "kCGWindowBounds";
inline constexpr const char* ownerName = "kCGWindowOwnerName";
inline constexpr const char* name = "kCGWindowName";
inline constexpr const char* layer = "kCGWindowLayer";
inline constexpr const char* alpha = "kCGWindowAlpha";
}  // namespace window_list_key

class WindowListPort {
  public:
    virtual ~WindowListPort() = default;

    // `CGWindowListCopyWindowInfo`: an array of dictionaries, or nothing when the read failed.
    virtual std::optional<PropertyListValue> copyWindowInfo(std::uint32_t options,
                                                            WindowIdentifier relativeToWindow) = 0;

    // A number that changes whenever anything this list, the windows' Accessibility view or the
    // running applications say may have changed, so that what was read from them can be kept
    // until then; nothing where the platform cannot tell, and every read is made anew.
    virtual std::optional<std::uint64_t> revision() const { return std::nullopt; }
};

}  // namespace orvane
