// What the system says of itself on Linux: the distribution's name and version from os-release,
// and the machine's model ("hw.model") from the firmware's DMI tables.
#pragma once

#include <filesystem>

#include "platform/SystemInformationPort.h"

namespace orvane {

class LinuxSystemInformation final : public SystemInformationPort {
  public:
    explicit LinuxSystemInformation(std::filesystem::path root = "/");

    std::string operatingSystemVersionString() const override;
    // Knows "hw.model"; every other name fails.
    int sysctlByName(const std::string& name, void* oldValue,
                     std::size_t* oldLength) const override;

  private:
    std::filesystem::path root_;
};

}  // namespace orvane
