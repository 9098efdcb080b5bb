#include "app/LaunchAtLoginConfigurator.h"

#include <utility>

#include "core/Logger.h"

namespace orvane {

LaunchAtLoginConfigurator::LaunchAtLoginConfigurator(std::shared_ptr<LoginItemPort> loginItem)
    : loginItem_(std::move(loginItem)) {}

void LaunchAtLoginConfigurator::setLaunchAtLoginEnabled(bool enabled) {
    const auto& log = Logger::forCategory(LogCategory::preferences);
    const auto failure =
        enabled ? loginItem_->registerLoginItem() : loginItem_->unregisterLoginItem();
    if (failure) {
        log.error("failed to set launch-at-login to %{bool}d: %{public}s", enabled, *failure);
        return;
    }
    log.info(enabled ? "launch-at-login registered" : "launch-at-login unregistered");
}

}  // namespace orvane
