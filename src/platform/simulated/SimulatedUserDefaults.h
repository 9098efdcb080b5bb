// The user defaults of the simulated desktop: an in-memory map that also counts writes, so that a
// test can tell a rewrite of equal bytes from no write at all.
#pragma once

#include <cstddef>
#include <map>

#include "platform/UserDefaultsPort.h"

namespace orvane {

class SimulatedUserDefaults final : public UserDefaultsPort {
  public:
    std::optional<std::string> dataForKey(const std::string& key) const override;
    void setData(const std::string& key, const std::string& bytes) override;

    // The number of writes to `key` since construction.
    std::size_t writeCount(const std::string& key) const;

  private:
    std::map<std::string, std::string> values_;
    std::map<std::string, std::size_t> writeCounts_;
};

}  // namespace orvane
