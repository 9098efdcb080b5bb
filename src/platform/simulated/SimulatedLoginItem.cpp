#include "platform/simulated/SimulatedLoginItem.h"

namespace orvane {

std::optional<std::string> SimulatedLoginItem::registerLoginItem() {
    ++changeRequestCount_;
    if (failure_) {
        return failure_;
    }
    status_ = LoginItemStatus::enabled;
    return std::nullopt;
}

std::optional<std::string> SimulatedLoginItem::unregisterLoginItem() {
    ++changeRequestCount_;
    if (failure_) {
        return failure_;
    }
    status_ = LoginItemStatus::notRegistered;
    return std::nullopt;
}

}  // namespace orvane
