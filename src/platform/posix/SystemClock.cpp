#include "platform/posix/SystemClock.h"

#include <chrono>

namespace orvane {

Date SystemClock::now() const {
    constexpr double referenceDateOffset = 978307200.0;
    const auto since = std::chrono::system_clock::now().time_since_epoch();
    return Date{std::chrono::duration<double>(since).count() - referenceDateOffset};
}

}  // namespace orvane
