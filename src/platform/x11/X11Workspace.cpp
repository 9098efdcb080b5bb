#include "platform/x11/X11Workspace.h"

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

X11Workspace::X11Workspace(X11WindowModel& model,
                           std::shared_ptr<NotificationCenterPort> notifications,
                           DesktopEntryCatalog* entries)
    : model_(model),
      notifications_(std::move(notifications)),
      entries_(entries),
      frontmost_(model.frontmostProcess()) {
    for (auto window : model_.stackingFrontToBack()) {
        if (const auto* client = model_.window(window)) {
            launchDates_.emplace(client->process, now());
        }
    }
    model_.addListener(
        [this](X11WindowModel::ChangeKind kind, const X11WindowModel::ClientWindow& window) {
            modelChanged(kind, window);
        });
}

RunningApplication X11Workspace::application(ProcessIdentifier process) const {
    RunningApplication application;
    application.processIdentifier = process;
    application.activationPolicy = ApplicationActivationPolicy::regular;
    if (auto found = launchDates_.find(process); found != launchDates_.end()) {
        application.launchDate = found->second;
    }
    return application;
}

void X11Workspace::absorb(RunningApplication& application,
                          const X11WindowModel::ClientWindow& window) const {
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
    const auto* entry = entries_ != nullptr ? entries_->entryForWindowClass(window.windowInstance,
                                                                            window.windowClass)
                                            : nullptr;
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

std::optional<RunningApplication> X11Workspace::runningApplication(
    ProcessIdentifier process) const {
    std::optional<RunningApplication> found;
    for (auto identifier : model_.stackingFrontToBack()) {
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

std::vector<RunningApplication> X11Workspace::runningApplications() const {
    // By each application's front-most window: windows that no focus has ordered yet then follow
    // the stacking, the best guess of recency there is when the program starts on a busy desktop.
    std::vector<RunningApplication> applications;
    std::map<ProcessIdentifier, std::size_t> positions;
    for (auto identifier : model_.stackingFrontToBack()) {
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

std::optional<RunningApplication> X11Workspace::frontmostApplication() const {
    const auto process = model_.frontmostProcess();
    return process ? runningApplication(*process) : std::nullopt;
}

bool X11Workspace::activateApplication(ProcessIdentifier process, unsigned) {
    return runningApplication(process).has_value();
}

const std::vector<std::uint32_t>* X11Workspace::iconPixels(std::uint64_t identifier) const {
    for (auto window : model_.stackingFrontToBack()) {
        const auto* client = model_.window(window);
        if (client != nullptr && client->iconGeneration == identifier &&
            !client->iconPixels.empty()) {
            return &client->iconPixels;
        }
    }
    return nullptr;
}

void X11Workspace::post(const char* name, const RunningApplication& application) {
    // At once, not later: an application's launch must be heard before the focus notices about
    // its windows that the same batch of events brings.
    notifications_->postNotification(PlatformNotification{name, application});
}

void X11Workspace::modelChanged(X11WindowModel::ChangeKind kind,
                                const X11WindowModel::ClientWindow& window) {
    using Kind = X11WindowModel::ChangeKind;
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
