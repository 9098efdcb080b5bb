// The window server's private SkyLight library on the simulated desktop: a dynamic library port
// that serves the framework's focus entry points (and "GetProcessForPID" in the program) as real
// functions, which record what they are given and focus windows of the desktop.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "activation/SkyLightEntryPoints.h"
#include "platform/DynamicLibraryPort.h"
#include "platform/simulated/SimulatedDesktop.h"

namespace orvane {

class SimulatedSkyLight final : public DynamicLibraryPort {
  public:
    // Status of "GetProcessForPID" for a process that is not running (`procNotFound`).
    static constexpr std::int32_t processNotFound = -600;
    // Error of the front-process call for an unknown process or a window it doesn't own
    // (`kCGErrorIllegalArgument`).
    static constexpr std::int32_t illegalArgument = 1001;
    // Error of any entry point called while no simulated library is alive (`kCGErrorFailure`).
    static constexpr std::int32_t failure = 1000;

    // The entry points reach the most recently made instance still alive; see `current()`.
    explicit SimulatedSkyLight(std::shared_ptr<SimulatedDesktop> desktop);
    ~SimulatedSkyLight() override;
    SimulatedSkyLight(const SimulatedSkyLight&) = delete;
    SimulatedSkyLight& operator=(const SimulatedSkyLight&) = delete;

    // Opens the framework path and the program (no path); any other path fails.
    std::optional<DynamicLibraryHandle> open(const std::optional<std::string>& path,
                                             int mode) override;
    void* symbol(DynamicLibraryHandle library, std::string_view name) override;

    // The serial number that "GetProcessForPID" fills in for a process.
    static ProcessSerialNumber serialNumberOf(ProcessIdentifier process);

    // Fault knobs.
    // Opening the framework path fails.
    bool frameworkMissing = false;
    // Symbols answered as absent, by name.
    std::set<std::string> missingSymbols;
    // When not 0, "GetProcessForPID" answers this status and fills in nothing.
    std::int32_t processLookupStatus = 0;
    // When not 0, the front-process call answers this error and changes nothing.
    std::int32_t frontProcessError = 0;
    // Posts of a record of this kind (byte 0x08) answer the error.
    std::map<std::uint8_t, std::int32_t> postErrorsByKind;

    // Opens and symbol lookups in order, as "open /path mode 1", "open program mode 1",
    // "symbol Name in /path", "symbol Name in program".
    const std::vector<std::string>& libraryLog() const { return libraryLog_; }
    // Every entry point call, in order, as "GetProcessForPID(500)",
    // "_SLPSSetFrontProcessWithOptions(psn 0/66036, window 501, mode 512)" or
    // "SLPSPostEventRecordTo(psn 0/66036, kind 1)".
    const std::vector<std::string>& calls() const { return calls_; }
    // The bytes of every record posted, in order.
    const std::vector<std::vector<std::uint8_t>>& postedRecords() const { return postedRecords_; }

  private:
    static std::int32_t getProcessForProcessIdentifier(std::int32_t processIdentifier,
                                                       ProcessSerialNumber* process);
    static std::int32_t setFrontProcessWithOptions(ProcessSerialNumber* process,
                                                   std::uint32_t windowIdentifier,
                                                   std::uint32_t mode);
    static std::int32_t postEventRecordTo(ProcessSerialNumber* process, std::uint8_t* record);

    // A plain function pointer carries no state, so the entry points find their library among the
    // live instances: the newest one, which shadows older ones until it goes.
    static SimulatedSkyLight* current();
    static inline std::vector<SimulatedSkyLight*> live_;

    std::shared_ptr<SimulatedDesktop> desktop_;
    std::vector<std::string> libraryLog_;
    std::vector<std::string> calls_;
    std::vector<std::vector<std::uint8_t>> postedRecords_;
};

}  // namespace orvane
