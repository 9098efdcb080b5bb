// The user defaults of the simulated desktop: an in-memory map that also counts writes, so that a
// test can tell a rewrite of equal bytes from no write at all.
#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <string>

#include "platform/UserDefaultsPort.h"

namespace orvane {

class SimulatedUserDefaults final : public UserDefaultsPort {
  public:
    std::optional<std::string> dataForKey(const std::string& key) const override;
    std::optional<std::string> setData(const std::string& key, const std::string& bytes) override;
    // From now on every write fails for `reason`, as on a read-only disk; nothing writes again.
    void failWrites(std::optional<std::string> reason) { failure_ = std::move(reason); }

    // The number of writes to `key` since construction.
    std::size_t writeCount(const std::string& key) const;

  private:
    std::map<std::string, std::string> values_;
    std::map<std::string, std::size_t> writeCounts_;
    std::optional<std::string> failure_;
};

}  // namespace orvane
