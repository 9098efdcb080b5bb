// The application bundle's information dictionary.
#pragma once

#include <optional>
#include <string>

#include "platform/PropertyListValue.h"

namespace orvane {

class BundlePort {
  public:
    virtual ~BundlePort() = default;

    // The value under `key`, of whatever type the bundle gives it; nothing when absent.
    virtual std::optional<PropertyListValue> objectForInfoDictionaryKey(
        const std::string& key) const = 0;
};

}  // namespace orvane
