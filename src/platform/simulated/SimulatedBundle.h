// The simulated application bundle: an information dictionary that the test or scenario fills.
#pragma once

#include <map>
#include <string>
#include <utility>

#include "platform/BundlePort.h"

namespace orvane {

class SimulatedBundle final : public BundlePort {
  public:
    SimulatedBundle() = default;
    explicit SimulatedBundle(std::map<std::string, PropertyListValue> infoDictionary)
        : infoDictionary_(std::move(infoDictionary)) {}

    std::optional<PropertyListValue> objectForInfoDictionaryKey(
        const std::string& key) const override;

    void setInfoDictionaryValue(const std::string& key, PropertyListValue value);
    void removeInfoDictionaryValue(const std::string& key) { infoDictionary_.erase(key); }

  private:
    std::map<std::string, PropertyListValue> infoDictionary_;
};

}  // namespace orvane
