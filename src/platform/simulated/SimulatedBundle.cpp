#include "platform/simulated/SimulatedBundle.h"

#include <utility>

namespace orvane {

std::optional<PropertyListValue> SimulatedBundle::objectForInfoDictionaryKey(
    const std::string& key) const {
    const auto found = infoDictionary_.find(key);
    if (found == infoDictionary_.end()) {
        return std::nullopt;
    }
    return found->second;
}

void SimulatedBundle::setInfoDictionaryValue(const std::string& key, PropertyListValue value) {
    infoDictionary_[key] = std::move(value);
}

}  // namespace orvane
