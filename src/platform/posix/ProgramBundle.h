// The program's own bundle information: its version and build, fixed when it was built.
#pragma once

#include <map>
#include <string>

#include "platform/BundlePort.h"

namespace orvane {

class ProgramBundle final : public BundlePort {
  public:
    ProgramBundle(const std::string& version, const std::string& build);

    std::optional<PropertyListValue> objectForInfoDictionaryKey(
        const std::string& key) const override;

  private:
    std::map<std::string, PropertyListValue> infoDictionary_;
};

}  // namespace orvane
