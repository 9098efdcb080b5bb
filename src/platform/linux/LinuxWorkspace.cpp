#include "platform/linux/LinuxWorkspace.h"

#include <algorithm>
#include <chrono>
#include <map>

namespace orvane {

namespace {

// Seconds from the Unix epoch to the reference date the program's dates count from (2001).
constexpr double referenceDateOffset = 978307200.0;

Date now() {
    const auto since = std::chrono::system_clock::now().time_since_epoch();
    return Date{std::chrono::duration<double>(since).count() - referenceDateOffset};
}

}  // namespace

LinuxWorkspace::LinuxWorkspace(DesktopWindows& model,
                               std::shared_ptr<NotificationCenterPort> notifications,
                               EntryOfClass entries)
    : model_(model),
      notifications_(std::move(notifications)),
      entries_(std::move(entries)),
      frontmost_(model.frontmostProcess()) {
    for (auto window : model_.frontToBack()) {
        if (const auto* client = model_.window(window)) {
            launchDates_.emplace(client->process, now());
        }
    }
    model_.addListener(
        [this](DesktopWindows::ChangeKind kind, const DesktopWindows::Window& window) {
            modelChanged(kind, window);
        });
}

RunningApplication LinuxWorkspace::application(ProcessIdentifier process) const {
    RunningApplication application;
    application.processIdentifier = process;
    application.activationPolicy = ApplicationActivationPolicy::regular;
    if (auto found = launchDates_.find(process); found != launchDates_.end()) {
        application.launchDate = found->second;
    }
    return application;
}

void LinuxWorkspace::absorb(RunningApplication& application,
                            const DesktopWindows::Window& window) const {
    // The first icon read of the application's windows draws it, so that its cards keep their icon
    // when another of its windows comes to the front.
    if (window.iconWidth > 0 &&
        (!application.icon || window.iconGeneration < application.icon->identifier)) {
        application.icon = ImageHandle{window.iconGeneration,
                                       static_cast<double>(window.iconWidth),
                                       static_cast<double>(window.iconHeight),
                                       "icon of " + window.applicationName,
                                       0,
                                       0};
    }
    if (application.localizedName && application.icon) {
        return;
    }
    const auto* entry = entries_ ? entries_(window.windowInstance, window.windowClass) : nullptr;
    // The front-most window that has one gives the name; a matching desktop entry names the
    // application as the menu does, and draws it when no window has an icon of its own. Its
    // icon's identifier is above any window's.
    if (!application.localizedName) {
        if (entry != nullptr && !entry->name.empty()) {
            application.localizedName = entry->name;
        } else if (!window.applicationName.empty()) {
            application.localizedName = window.applicationName;
        }
    }
    if (!application.icon && entry != nullptr) {
        application.icon = entry->icon;
    }
}

std::optional<RunningApplication> LinuxWorkspace::runningApplication(
    ProcessIdentifier process) const {
    std::optional<RunningApplication> found;
    for (auto identifier : model_.frontToBack()) {
        const auto* window = model_.window(identifier);
        if (window == nullptr || window->process != process) {
            continue;
        }
        if (!found) {
            found = application(process);
        }
        absorb(*found, *window);
    }
    return found;
}

std::vector<RunningApplication> LinuxWorkspace::runningApplications() const {
    // By each application's front-most window: windows that no focus has ordered yet then follow
    // the stacking, the best guess of recency there is when the program starts on a busy desktop.
    std::vector<RunningApplication> applications;
    std::map<ProcessIdentifier, std::size_t> positions;
    for (auto identifier : model_.frontToBack()) {
        const auto* window = model_.window(identifier);
        if (window == nullptr) {
            continue;
        }
        const auto [position, isNew] = positions.try_emplace(window->process, applications.size());
        if (isNew) {
            applications.push_back(application(window->process));
        }
        absorb(applications[position->second], *window);
    }
    return applications;
}

std::optional<RunningApplication> LinuxWorkspace::frontmostApplication() const {
    const auto process = model_.frontmostProcess();
    return process ? runningApplication(*process) : std::nullopt;
}

bool LinuxWorkspace::activateApplication(ProcessIdentifier process, unsigned) {
    return runningApplication(process).has_value();
}

const std::vector<std::uint32_t>* LinuxWorkspace::iconPixels(std::uint64_t identifier) const {
    for (auto window : model_.frontToBack()) {
        const auto* client = model_.window(window);
        if (client != nullptr && client->iconGeneration == identifier &&
            !client->iconPixels.empty()) {
            return &client->iconPixels;
        }
    }
    return nullptr;
}

void LinuxWorkspace::post(const char* name, const RunningApplication& application) {
    // At once, not later: an application's launch must be heard before the focus notices about
    // its windows that the same batch of events brings.
    notifications_->postNotification(PlatformNotification{name, application});
}

void LinuxWorkspace::modelChanged(DesktopWindows::ChangeKind kind,
                                  const DesktopWindows::Window& window) {
    using Kind = DesktopWindows::ChangeKind;
    if (kind == Kind::added && !launchDates_.contains(window.process)) {
        launchDates_.emplace(window.process, now());
        if (auto application = runningApplication(window.process)) {
            post(workspace_notification::didLaunchApplication, *application);
        }
    } else if (kind == Kind::removed && !runningApplication(window.process)) {
        launchDates_.erase(window.process);
        RunningApplication gone;
        gone.processIdentifier = window.process;
        gone.localizedName = window.applicationName;
        post(workspace_notification::didTerminateApplication, gone);
        if (frontmost_ == window.process) {
            frontmost_.reset();
        }
    } else if (kind == Kind::activated && frontmost_ != window.process) {
        frontmost_ = window.process;
        if (auto application = runningApplication(window.process)) {
            post(workspace_notification::didActivateApplication, *application);
        }
    }
}

}  // namespace orvane
