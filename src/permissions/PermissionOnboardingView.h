// The welcome window's content: computes what the window shows from the coordinator's table and
// its own view state, and carries out the presses of its buttons.
#pragma once

#include <array>
#include <functional>
#include <memory>
#include <set>

#include "permissions/PermissionOnboardingContent.h"
#include "permissions/PermissionStatusCoordinator.h"
#include "platform/HostedView.h"

namespace orvane {

// The capabilities without which the welcome window shows at launch; the others carry a badge.
inline constexpr std::array<PermissionCapability, 1> requiredPermissionCapabilities{
    PermissionCapability::accessibility};

class PermissionOnboardingView final : public HostedView {
  public:
    PermissionOnboardingView(
        std::shared_ptr<PermissionStatusCoordinator> permissionStatusCoordinator,
        std::function<void()> onContinue, std::function<void()> onNotNow);

    // Reads the coordinator's table as it stands, without asking the system; a capability without
    // an entry counts as not granted. A renderer draws again when the table or the set changes.
    PermissionOnboardingContent content() const;

    // Carries out the row's action as `content()` shows it now: "Allow…" records the capability
    // before it requests access, so that the row offers System Settings whatever the answer.
    void pressRowAction(PermissionCapability capability);
    void pressContinue();
    void pressNotNow();

    const std::shared_ptr<PermissionStatusCoordinator>& permissionStatusCoordinator() const {
        return permissionStatusCoordinator_;
    }
    const std::set<PermissionCapability>& capabilitiesAlreadyRequested() const {
        return capabilitiesAlreadyRequested_;
    }

  private:
    PermissionRowActionKind actionKind(PermissionCapability capability) const;

    std::shared_ptr<PermissionStatusCoordinator> permissionStatusCoordinator_;
    std::function<void()> onContinue_;
    std::function<void()> onNotNow_;
    std::set<PermissionCapability> capabilitiesAlreadyRequested_;
};

}  // namespace orvane
