#include "platform/simulated/SimulatedSkyLight.h"

#include <utility>

#include "activation/SkyLightEventRecord.h"

namespace orvane {

namespace {

constexpr DynamicLibraryHandle frameworkHandle = 1;
constexpr DynamicLibraryHandle programHandle = 2;
// Keeps serial numbers apart from process identifiers, so that mixing them up shows.
constexpr std::uint32_t serialNumberBase = 0x10000;

std::string libraryName(DynamicLibraryHandle library) {
    if (library == frameworkHandle) {
        return SkyLightEntryPoints::frameworkPath;
    }
    return library == programHandle ? "program" : "handle " + std::to_string(library);
}

std::string describe(const ProcessSerialNumber& process) {
    return "psn " + std::to_string(process.highLongOfPSN) + "/" +
           std::to_string(process.lowLongOfPSN);
}

template <typename Function>
void* address(Function* function) {
    return reinterpret_cast<void*>(function);
}

}  // namespace

SimulatedSkyLight::SimulatedSkyLight(std::shared_ptr<SimulatedDesktop> desktop)
    : desktop_(std::move(desktop)) {
    live_.push_back(this);
}

SimulatedSkyLight::~SimulatedSkyLight() {
    std::erase(live_, this);
}

SimulatedSkyLight* SimulatedSkyLight::current() {
    return live_.empty() ? nullptr : live_.back();
}

ProcessSerialNumber SimulatedSkyLight::serialNumberOf(ProcessIdentifier process) {
    return {0, serialNumberBase + static_cast<std::uint32_t>(process)};
}

std::optional<DynamicLibraryHandle> SimulatedSkyLight::open(const std::optional<std::string>& path,
                                                            int mode) {
    libraryLog_.push_back("open " + path.value_or("program") + " mode " + std::to_string(mode));
    if (!path) {
        return programHandle;
    }
    if (*path == SkyLightEntryPoints::frameworkPath && !frameworkMissing) {
        return frameworkHandle;
    }
    return std::nullopt;
}

void* SimulatedSkyLight::symbol(DynamicLibraryHandle library, std::string_view name) {
    libraryLog_.push_back("symbol " + std::string(name) + " in " + libraryName(library));
    if (missingSymbols.contains(std::string(name))) {
        return nullptr;
    }
    if (library == frameworkHandle && name == SkyLightEntryPoints::setFrontProcessWithOptionsName) {
        return address(&setFrontProcessWithOptions);
    }
    if (library == frameworkHandle && name == SkyLightEntryPoints::postEventRecordToName) {
        return address(&postEventRecordTo);
    }
    if (library == programHandle &&
        name == SkyLightEntryPoints::getProcessForProcessIdentifierName) {
        return address(&getProcessForProcessIdentifier);
    }
    return nullptr;
}

std::int32_t SimulatedSkyLight::getProcessForProcessIdentifier(std::int32_t processIdentifier,
                                                               ProcessSerialNumber* process) {
    auto* const skyLight = current();
    if (skyLight == nullptr) {
        return failure;
    }
    skyLight->calls_.push_back(
        std::string(SkyLightEntryPoints::getProcessForProcessIdentifierName) + "(" +
        std::to_string(processIdentifier) + ")");
    if (skyLight->processLookupStatus != 0) {
        return skyLight->processLookupStatus;
    }
    if (skyLight->desktop_->application(processIdentifier) == nullptr) {
        return processNotFound;
    }
    *process = serialNumberOf(processIdentifier);
    return 0;
}

std::int32_t SimulatedSkyLight::setFrontProcessWithOptions(ProcessSerialNumber* process,
                                                           std::uint32_t windowIdentifier,
                                                           std::uint32_t mode) {
    auto* const skyLight = current();
    if (skyLight == nullptr) {
        return failure;
    }
    skyLight->calls_.push_back(std::string(SkyLightEntryPoints::setFrontProcessWithOptionsName) +
                               "(" + describe(*process) + ", window " +
                               std::to_string(windowIdentifier) + ", mode " + std::to_string(mode) +
                               ")");
    if (skyLight->frontProcessError != 0) {
        return skyLight->frontProcessError;
    }
    auto& desktop = *skyLight->desktop_;
    const auto* window = desktop.window(windowIdentifier);
    if (process->highLongOfPSN != 0 || window == nullptr ||
        serialNumberOf(window->owningProcessIdentifier).lowLongOfPSN != process->lowLongOfPSN) {
        return illegalArgument;
    }
    desktop.focusWindow(windowIdentifier);
    return 0;
}

std::int32_t SimulatedSkyLight::postEventRecordTo(ProcessSerialNumber* process,
                                                  std::uint8_t* record) {
    auto* const skyLight = current();
    if (skyLight == nullptr) {
        return failure;
    }
    skyLight->calls_.push_back(std::string(SkyLightEntryPoints::postEventRecordToName) + "(" +
                               describe(*process) + ", kind " + std::to_string(record[0x08]) + ")");
    // The wire format fixes the length; the call passes none.
    skyLight->postedRecords_.emplace_back(record, record + SkyLightEventRecord::byteCount);
    auto error = skyLight->postErrorsByKind.find(record[0x08]);
    return error == skyLight->postErrorsByKind.end() ? 0 : error->second;
}

}  // namespace orvane
