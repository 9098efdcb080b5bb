#include "app/PermissionStatusBadge.h"

namespace orvane {

std::string_view PermissionStatusBadge::symbol() const {
    return isGranted ? "checkmark.circle.fill" : "exclamationmark.triangle.fill";
}

std::string_view PermissionStatusBadge::text() const {
    return isGranted ? "Granted" : "Not granted";
}

}  // namespace orvane
