#include "platform/simulated/SimulatedUserDefaults.h"

namespace orvane {

std::optional<std::string> SimulatedUserDefaults::dataForKey(const std::string& key) const {
    const auto found = values_.find(key);
    if (found == values_.end()) {
        return std::nullopt;
    }
    return found->second;
}

std::optional<std::string> SimulatedUserDefaults::setData(const std::string& key,
                                                          const std::string& bytes) {
    if (failure_) {
        return failure_;
    }
    values_[key] = bytes;
    ++writeCounts_[key];
    return std::nullopt;
}

std::size_t SimulatedUserDefaults::writeCount(const std::string& key) const {
    const auto found = writeCounts_.find(key);
    return found == writeCounts_.end() ? 0 : found->second;
}

}  // namespace orvane
