// The user defaults of the platform: a persistent key-value store of which the logic reads and
// writes only data values.
#pragma once

#include <optional>
#include <string>

namespace orvane {

class UserDefaultsPort {
  public:
    virtual ~UserDefaultsPort() = default;

    // The data stored under `key`, or nothing when the key is absent or holds no data value.
    virtual std::optional<std::string> dataForKey(const std::string& key) const = 0;
    // Replaces whatever the key held with `bytes`. When it reaches the disk is the platform's
    // affair. Answers why the bytes could not be stored, in words for the user (the previous
    // value is then kept); nothing once they are.
    virtual std::optional<std::string> setData(const std::string& key,
                                               const std::string& bytes) = 0;
};

}  // namespace orvane
