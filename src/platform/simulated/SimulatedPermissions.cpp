#include "platform/simulated/SimulatedPermissions.h"

namespace orvane {

bool SimulatedPermissions::isProcessTrusted() {
    ++trustCheckCount_;
    return accessibilityTrusted_;
}

bool SimulatedPermissions::isProcessTrustedWithPrompt() {
    ++trustCheckCount_;
    // The system shows its prompt only to a process that isn't trusted yet.
    if (!accessibilityTrusted_) {
        ++accessibilityPromptCount_;
    }
    return accessibilityTrusted_;
}

bool SimulatedPermissions::preflightScreenCaptureAccess() {
    ++trustCheckCount_;
    return screenRecordingGranted_;
}

bool SimulatedPermissions::requestScreenCaptureAccess() {
    ++trustCheckCount_;
    ++screenCaptureRequestCount_;
    return screenRecordingGranted_;
}

void SimulatedPermissions::openURL(const std::string& url) {
    openedURLs_.push_back(url);
}

std::string SimulatedPermissions::settingsLink(PermissionCapability capability) const {
    return capability == PermissionCapability::accessibility
               ? "x-apple.systempreferences:com.apple.preference.security?Privacy_Accessibility"
               : "x-apple.systempreferences:com.apple.preference.security?Privacy_ScreenCapture";
}

}  // namespace orvane
