// Focuses one window through the window server's private SkyLight entry points, looked up at run
// time: the owning process comes to the front with that window, then gets two event records. Where
// the entry points are missing it answers false, and callers fall back on public activation.
#pragma once

#include <cstdint>
#include <memory>

#include "activation/SkyLightEntryPoints.h"
#include "core/Logger.h"
#include "core/PrivateWindowFocusService.h"
#include "platform/DynamicLibraryPort.h"

namespace orvane {

class SkyLightPrivateWindowFocusService final : public PrivateWindowFocusService {
  public:
    // Lazy binding, for both libraries opened.
    static constexpr int openMode = 1;
    // The mode of the front-process call.
    static constexpr std::uint32_t frontProcessMode = 0x200;

    // Looks up the three entry points once and logs an error when any is missing. Keeps the port,
    // and so the libraries that the entry points live in, for the service's life.
    explicit SkyLightPrivateWindowFocusService(
        std::shared_ptr<DynamicLibraryPort> dynamicLibraries);

    // False without any call unless all three entry points were found; otherwise the answer is
    // the serial number lookup's and the front-process call's. Failed posts are only logged.
    bool focusWindow(WindowIdentifier windowIdentifier,
                     ProcessIdentifier processIdentifier) override;

  private:
    SkyLightEntryPoints::SetFrontProcessWithOptions setFrontProcessWithOptions_ = nullptr;
    SkyLightEntryPoints::PostEventRecordTo postEventRecordTo_ = nullptr;
    SkyLightEntryPoints::GetProcessForProcessIdentifier getProcessForProcessIdentifier_ = nullptr;
    const Logger& log_ = Logger::forCategory(LogCategory::windowactivation);
    std::shared_ptr<DynamicLibraryPort> dynamicLibraries_;
};

}  // namespace orvane
