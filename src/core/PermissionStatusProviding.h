// Reads, requests and opens the settings of the program's permissions.
#pragma once

#include "core/PermissionCapability.h"

namespace orvane {

class PermissionStatusProviding {
  public:
    virtual ~PermissionStatusProviding() = default;

    // Asks the system now, stores the answer if it differs, returns it; never prompts.
    virtual PermissionGrantStatus status(PermissionCapability capability) = 0;
    // Fires the system's own prompt for the capability, then refreshes all statuses.
    virtual void requestAccess(PermissionCapability capability) = 0;
    // Opens the capability's page of the system settings.
    virtual void openSystemSettings(PermissionCapability capability) = 0;
};

}  // namespace orvane
