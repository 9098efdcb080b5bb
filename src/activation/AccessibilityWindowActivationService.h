// Brings a chosen window to the front by every means at hand: Accessibility unminimizes, raises and
// marks it main, the private focus names the window itself, and public activation of its
// application stands in when the private focus did not take. Best effort: failures are logged.
#pragma once

#include <memory>

#include "core/Logger.h"
#include "core/MostRecentlyUsedWindowOrdering.h"
#include "core/PrivateWindowFocusService.h"
#include "core/WindowActivationService.h"
#include "platform/AccessibilityPort.h"
#include "platform/WorkspacePort.h"

namespace orvane {

class AccessibilityWindowActivationService final : public WindowActivationService {
  public:
    AccessibilityWindowActivationService(
        std::shared_ptr<MostRecentlyUsedWindowOrdering> recencyOrdering,
        std::shared_ptr<PrivateWindowFocusService> privateWindowFocusService,
        std::shared_ptr<AccessibilityPort> accessibility, std::shared_ptr<WorkspacePort> workspace);

    // Runs every step to the end, synchronously; whatever fails, the recency ordering is told of
    // the window last.
    void activate(const SwitchableWindow& window) override;

  private:
    AccessibilityError setFlag(const SwitchableWindow& window, const char* attribute, bool value);
    AccessibilityError perform(const SwitchableWindow& window, const char* action);

    std::shared_ptr<MostRecentlyUsedWindowOrdering> recencyOrdering_;
    std::shared_ptr<PrivateWindowFocusService> privateWindowFocusService_;
    std::shared_ptr<AccessibilityPort> accessibility_;
    std::shared_ptr<WorkspacePort> workspace_;
    const Logger& log_ = Logger::forCategory(LogCategory::windowactivation);
};

}  // namespace orvane
