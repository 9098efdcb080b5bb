// Builds the applications and windows the tests put on a simulated desktop, and reads window
// identifiers back out of the lists the program makes.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "core/SwitchableWindow.h"
#include "platform/simulated/SimulatedApplication.h"
#include "platform/simulated/SimulatedWindow.h"

namespace orvane {

inline SimulatedApplication simulatedApplication(
    ProcessIdentifier process, std::optional<std::string> name = std::nullopt,
    ApplicationActivationPolicy policy = ApplicationActivationPolicy::regular) {
    SimulatedApplication application;
    application.runningApplication.processIdentifier = process;
    application.runningApplication.localizedName = std::move(name);
    application.runningApplication.activationPolicy = policy;
    return application;
}

inline SimulatedWindow simulatedWindow(WindowIdentifier identifier, ProcessIdentifier process) {
    SimulatedWindow window;
    window.windowIdentifier = identifier;
    window.owningProcessIdentifier = process;
    return window;
}

inline std::vector<WindowIdentifier> windowIdentifiers(const std::vector<SwitchableWindow>& list) {
    std::vector<WindowIdentifier> identifiers;
    for (const auto& window : list) {
        identifiers.push_back(window.windowIdentifier);
    }
    return identifiers;
}

}  // namespace orvane
