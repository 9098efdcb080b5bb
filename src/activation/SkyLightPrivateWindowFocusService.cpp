#include "activation/SkyLightPrivateWindowFocusService.h"

#include <string>
#include <utility>

#include "activation/SkyLightEventRecord.h"

namespace orvane {

namespace {

// POSIX guarantees that a looked-up entry point's address converts to a function pointer.
template <typename FunctionPointer>
FunctionPointer entryPoint(DynamicLibraryPort& libraries, DynamicLibraryHandle library,
                           const char* name) {
    return reinterpret_cast<FunctionPointer>(libraries.symbol(library, name));
}

}  // namespace

SkyLightPrivateWindowFocusService::SkyLightPrivateWindowFocusService(
    std::shared_ptr<DynamicLibraryPort> dynamicLibraries)
    : dynamicLibraries_(std::move(dynamicLibraries)) {
    auto& libraries = *dynamicLibraries_;
    const auto framework =
        libraries.open(std::string(SkyLightEntryPoints::frameworkPath), openMode);
    if (!framework) {
        log_.error(
            "SkyLight framework unavailable — private window focus disabled, public activation "
            "only");
        return;
    }
    setFrontProcessWithOptions_ = entryPoint<SkyLightEntryPoints::SetFrontProcessWithOptions>(
        libraries, *framework, SkyLightEntryPoints::setFrontProcessWithOptionsName);
    postEventRecordTo_ = entryPoint<SkyLightEntryPoints::PostEventRecordTo>(
        libraries, *framework, SkyLightEntryPoints::postEventRecordToName);
    if (const auto program = libraries.open(std::nullopt, openMode)) {
        getProcessForProcessIdentifier_ =
            entryPoint<SkyLightEntryPoints::GetProcessForProcessIdentifier>(
                libraries, *program, SkyLightEntryPoints::getProcessForProcessIdentifierName);
    }
    if (setFrontProcessWithOptions_ == nullptr || postEventRecordTo_ == nullptr ||
        getProcessForProcessIdentifier_ == nullptr) {
        log_.error(
            "SkyLight private symbols missing — private window focus disabled, public activation "
            "only");
    }
}

bool SkyLightPrivateWindowFocusService::focusWindow(WindowIdentifier windowIdentifier,
                                                    ProcessIdentifier processIdentifier) {
    // Construction has logged the reason already.
    if (setFrontProcessWithOptions_ == nullptr || postEventRecordTo_ == nullptr ||
        getProcessForProcessIdentifier_ == nullptr) {
        return false;
    }
    ProcessSerialNumber serialNumber{};
    const std::int32_t status = getProcessForProcessIdentifier_(processIdentifier, &serialNumber);
    if (status != 0) {
        log_.error(
            "private focus: no process serial number for process %{public}d (status %{public}d)",
            processIdentifier, status);
        return false;
    }
    const std::int32_t frontError =
        setFrontProcessWithOptions_(&serialNumber, windowIdentifier, frontProcessMode);
    if (frontError != 0) {
        log_.error(
            "private focus: _SLPSSetFrontProcessWithOptions failed for window %{public}u (error "
            "%{public}d)",
            windowIdentifier, frontError);
        return false;
    }
    // The process is already in front; the records only complete the focus, so a failed post
    // does not change the answer and does not keep the other record back.
    for (const std::uint8_t kind :
         {SkyLightEventRecord::firstKind, SkyLightEventRecord::secondKind}) {
        SkyLightEventRecord record(kind, windowIdentifier);
        const std::int32_t postError = postEventRecordTo_(&serialNumber, record.data());
        if (postError != 0) {
            log_.error(
                "private focus: SLPSPostEventRecordTo (kind %{public}hhu) failed for window "
                "%{public}u (error %{public}d)",
                kind, windowIdentifier, postError);
        }
    }
    return true;
}

}  // namespace orvane
