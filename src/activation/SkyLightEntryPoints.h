// The C contract of the window server's private SkyLight focus entry points: where they live, their
// names and signatures. Shared by the service that calls them and any library that serves them.
#pragma once

#include <cstdint>

namespace orvane {

// The platform's identifier of a process for the window server.
struct ProcessSerialNumber {
    std::uint32_t highLongOfPSN = 0;
    std::uint32_t lowLongOfPSN = 0;
};

struct SkyLightEntryPoints {
    static constexpr const char* frameworkPath =
        "/System/Library/PrivateFrameworks/SkyLight.framework/SkyLight";
    static constexpr const char* setFrontProcessWithOptionsName = "_SLPSSetFrontProcessWithOptions";
    static constexpr const char* postEventRecordToName = "SLPSPostEventRecordTo";
    // Looked up in the program itself, not in the framework.
    static constexpr const char* getProcessForProcessIdentifierName = "GetProcessForPID";

    // Makes the process frontmost with that window; answers a `CGError`, 0 on success.
    using SetFrontProcessWithOptions = std::int32_t (*)(ProcessSerialNumber* process,
                                                        std::uint32_t windowIdentifier,
                                                        std::uint32_t mode);
    // Delivers one 248-byte event record to the process; answers a `CGError`, 0 on success.
    using PostEventRecordTo = std::int32_t (*)(ProcessSerialNumber* process, std::uint8_t* record);
    // Fills in the serial number of a process; answers a status, 0 (`noErr`) on success.
    using GetProcessForProcessIdentifier = std::int32_t (*)(std::int32_t processIdentifier,
                                                            ProcessSerialNumber* process);
};

}  // namespace orvane
