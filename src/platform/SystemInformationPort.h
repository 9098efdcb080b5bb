// What the operating system says about itself and the machine.
#pragma once

#include <cstddef>
#include <string>

namespace orvane {

class SystemInformationPort {
  public:
    virtual ~SystemInformationPort() = default;

    // The system's own human-readable version text.
    virtual std::string operatingSystemVersionString() const = 0;
    // The platform's `sysctlbyname` for reading: with `oldValue` null, stores the value's size in
    // `*oldLength`; otherwise copies at most `*oldLength` bytes. 0 on success, -1 on failure.
    virtual int sysctlByName(const std::string& name, void* oldValue,
                             std::size_t* oldLength) const = 0;
};

}  // namespace orvane
