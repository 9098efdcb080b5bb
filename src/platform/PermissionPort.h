// The system's answers about the program's permissions, its prompts for them, and the opening of a
// link into the system settings.
#pragma once

#include <string>

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
};

}  // namespace orvane
