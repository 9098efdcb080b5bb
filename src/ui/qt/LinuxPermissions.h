// The program's permissions on a Linux X11 desktop. Any X client may grab keys and read the window
// list, so the Accessibility answer is always yes; window contents need the Composite extension.
// Links open with the desktop's own opener.
#pragma once

#include <functional>

#include "platform/PermissionPort.h"

namespace orvane {

class LinuxPermissions final : public PermissionPort {
  public:
    explicit LinuxPermissions(std::function<bool()> canCaptureWindows)
        : canCaptureWindows_(std::move(canCaptureWindows)) {}

    bool isProcessTrusted() override { return true; }
    bool isProcessTrustedWithPrompt() override { return true; }
    bool preflightScreenCaptureAccess() override { return canCaptureWindows_(); }
    bool requestScreenCaptureAccess() override { return canCaptureWindows_(); }
    void openURL(const std::string& url) override;

  private:
    std::function<bool()> canCaptureWindows_;
};

}  // namespace orvane
