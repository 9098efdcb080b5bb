#include "platform/simulated/SimulatedPasteboard.h"

#include <utility>

namespace orvane {

void SimulatedPasteboard::clearContents() {
    stringsByType_.clear();
    ownedByProgram_ = true;
    ++clearCount_;
}

bool SimulatedPasteboard::setString(const std::string& text, const std::string& type) {
    if (!ownedByProgram_) {
        return false;
    }
    stringsByType_[type] = text;
    return true;
}

std::optional<std::string> SimulatedPasteboard::stringForType(const std::string& type) const {
    const auto found = stringsByType_.find(type);
    if (found == stringsByType_.end()) {
        return std::nullopt;
    }
    return found->second;
}

void SimulatedPasteboard::setContentsFromAnotherApplication(
    std::map<std::string, std::string> stringsByType) {
    stringsByType_ = std::move(stringsByType);
    ownedByProgram_ = false;
}

}  // namespace orvane
