// The simulated machine's self-description: a settable system version text and a table of
// sysctl values as raw bytes, read with the kernel's own calling rules.
#pragma once

#include <map>
#include <string>

#include "platform/SystemInformationPort.h"

namespace orvane {

// Which read of a name fails: learning its size, reading its value, or both.
enum class SimulatedSysctlFailure { sizeQuery, valueRead, always };

class SimulatedSystemInformation final : public SystemInformationPort {
  public:
    std::string operatingSystemVersionString() const override { return operatingSystemVersion_; }
    // Unknown and failing names give -1 with errno ENOENT or EIO. A buffer shorter than the value
    // gets its first bytes and -1 with ENOMEM, as the kernel does.
    int sysctlByName(const std::string& name, void* oldValue,
                     std::size_t* oldLength) const override;

    void setOperatingSystemVersionString(std::string text) {
        operatingSystemVersion_ = std::move(text);
    }
    // The bytes as the kernel holds them: a string value carries its terminating zero byte.
    void setSysctlValue(const std::string& name, std::string bytes) {
        sysctlValues_[name] = std::move(bytes);
    }
    void setSysctlFailure(const std::string& name, SimulatedSysctlFailure failure) {
        sysctlFailures_[name] = failure;
    }
    void clearSysctlFailure(const std::string& name) { sysctlFailures_.erase(name); }

  private:
    std::string operatingSystemVersion_ = "Version 14.5 (Build 23F79)";
    std::map<std::string, std::string> sysctlValues_;
    std::map<std::string, SimulatedSysctlFailure> sysctlFailures_;
};

}  // namespace orvane
