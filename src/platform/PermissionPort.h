// The system's answers about the program's permissions, its prompts for them, and the opening of a
// link into the system settings (or the platform's own help on a capability).
#pragma once

#include <string>

#include "core/PermissionCapability.h"

namespace orvane {

class PermissionPort {
  public:
    virtual ~PermissionPort() = default;

    // Whether the process has Accessibility. Shows nothing.
    virtual bool isProcessTrusted() = 0;
    // Shows the system's Accessibility prompt if the process isn't trusted; returns the trust now.
    virtual bool isProcessTrustedWithPrompt() = 0;
    // Whether the process has Screen Recording. Shows nothing.
    virtual bool preflightScreenCaptureAccess() = 0;
    // Asks for Screen Recording; returns whether access is given.
    virtual bool requestScreenCaptureAccess() = 0;
    // Hands the URL to the system. Whether it opened is not reported.
    virtual void openURL(const std::string& url) = 0;

    // The address of the capability's page in the system's settings, or of the platform's own
    // help where its settings have no such page.
    virtual std::string settingsLink(PermissionCapability capability) const = 0;
    // What keeps the capability away right now and how to get it, where the platform knows more
    // than the program's fixed description (which shortcut another program holds); empty when
    // it is there or the platform can say nothing more.
    virtual std::string missingReason(PermissionCapability capability) = 0;
};

}  // namespace orvane
