// The simulated desktop's permissions: trust set by the test, prompts counted instead of shown,
// URLs recorded instead of opened.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "platform/PermissionPort.h"

namespace orvane {

class SimulatedPermissions final : public PermissionPort {
  public:
    bool isProcessTrusted() override;
    bool isProcessTrustedWithPrompt() override;
    bool preflightScreenCaptureAccess() override;
    bool requestScreenCaptureAccess() override;
    void openURL(const std::string& url) override;
    // The pages of macOS's System Settings, as the program knows them there.
    std::string settingsLink(PermissionCapability capability) const override;
    // The fixed description says it all on this desktop.
    std::string missingReason(PermissionCapability) override { return {}; }

    void setAccessibilityTrusted(bool trusted) { accessibilityTrusted_ = trusted; }
    void setScreenRecordingGranted(bool granted) { screenRecordingGranted_ = granted; }

    std::size_t accessibilityPromptCount() const { return accessibilityPromptCount_; }
    std::size_t screenCaptureRequestCount() const { return screenCaptureRequestCount_; }
    // Every live question asked of either permission, prompts included.
    std::size_t trustCheckCount() const { return trustCheckCount_; }
    const std::vector<std::string>& openedURLs() const { return openedURLs_; }

  private:
    bool accessibilityTrusted_ = false;
    bool screenRecordingGranted_ = false;
    std::size_t accessibilityPromptCount_ = 0;
    std::size_t screenCaptureRequestCount_ = 0;
    std::size_t trustCheckCount_ = 0;
    std::vector<std::string> openedURLs_;
};

}  // namespace orvane
