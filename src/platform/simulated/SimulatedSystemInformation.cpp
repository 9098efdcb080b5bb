#include "platform/simulated/SimulatedSystemInformation.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace orvane {

int SimulatedSystemInformation::sysctlByName(const std::string& name, void* oldValue,
                                             std::size_t* oldLength) const {
    if (const auto failure = sysctlFailures_.find(name); failure != sysctlFailures_.end()) {
        const auto call = oldValue == nullptr ? SimulatedSysctlFailure::sizeQuery
                                              : SimulatedSysctlFailure::valueRead;
        if (failure->second == SimulatedSysctlFailure::always || failure->second == call) {
            errno = EIO;
            return -1;
        }
    }
    const auto found = sysctlValues_.find(name);
    if (found == sysctlValues_.end()) {
        errno = ENOENT;
        return -1;
    }
    const std::string& bytes = found->second;
    if (oldValue == nullptr) {
        *oldLength = bytes.size();
        return 0;
    }
    const std::size_t copied = std::min(*oldLength, bytes.size());
    std::memcpy(oldValue, bytes.data(), copied);
    *oldLength = copied;
    if (copied < bytes.size()) {
        errno = ENOMEM;
        return -1;
    }
    return 0;
}

}  // namespace orvane
