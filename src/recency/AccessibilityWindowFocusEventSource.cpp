#include "recency/AccessibilityWindowFocusEventSource.h"

#include <array>
#include <string>
#include <utility>

namespace orvane {

namespace {

constexpr std::array<const char*, 6> accessibilityNotifications{
    "AXFocusedWindowChanged", "AXApplicationActivated", "AXWindowCreated",
    "AXUIElementDestroyed",   "AXWindowMiniaturized",   "AXWindowDeminiaturized",
};

bool isRegular(const RunningApplication& application) {
    return application.activationPolicy == ApplicationActivationPolicy::regular;
}

}  // namespace

AccessibilityWindowFocusEventSource::AccessibilityWindowFocusEventSource(
    std::shared_ptr<WorkspacePort> workspace,
    std::shared_ptr<NotificationCenterPort> workspaceNotifications,
    std::shared_ptr<AccessibilityPort> accessibility, std::shared_ptr<RunLoopPort> runLoop)
    : workspace_(std::move(workspace)),
      workspaceNotifications_(std::move(workspaceNotifications)),
      accessibility_(std::move(accessibility)),
      runLoop_(std::move(runLoop)) {}

AccessibilityWindowFocusEventSource::~AccessibilityWindowFocusEventSource() {
    for (auto token : workspaceNotificationObservationTokens_) {
        workspaceNotifications_->removeObserver(token);
    }
    while (!applicationObservationsByProcessIdentifier_.empty()) {
        detach(applicationObservationsByProcessIdentifier_.begin()->first);
    }
}

void AccessibilityWindowFocusEventSource::startObserving() {
    if (isObserving_) {
        return;
    }
    isObserving_ = true;

    std::weak_ptr<AccessibilityWindowFocusEventSource> weakSelf = weak_from_this();
    for (const char* name : {workspace_notification::didActivateApplication,
                             workspace_notification::didLaunchApplication,
                             workspace_notification::didTerminateApplication}) {
        workspaceNotificationObservationTokens_.push_back(workspaceNotifications_->addObserver(
            name, [weakSelf](const PlatformNotification& notification) {
                if (auto self = weakSelf.lock()) {
                    self->handleWorkspaceNotification(notification);
                }
            }));
    }

    // A failure here is not retried: the application's next activation tries again.
    for (const auto& application : workspace_->runningApplications()) {
        if (isRegular(application)) {
            attach(application.processIdentifier);
        }
    }
    log_.debug(
        "Started window focus observation; attached Accessibility observers to %ld "
        "applications",
        applicationObservationsByProcessIdentifier_.size());
}

void AccessibilityWindowFocusEventSource::stopObserving() {
    if (!isObserving_) {
        return;
    }
    isObserving_ = false;
    for (auto token : workspaceNotificationObservationTokens_) {
        workspaceNotifications_->removeObserver(token);
    }
    workspaceNotificationObservationTokens_.clear();
    std::vector<ProcessIdentifier> processes;
    for (const auto& [process, observation] : applicationObservationsByProcessIdentifier_) {
        processes.push_back(process);
    }
    for (auto process : processes) {
        detach(process);
    }
    log_.debug("Stopped window focus observation");
}

bool AccessibilityWindowFocusEventSource::attach(ProcessIdentifier process) {
    if (applicationObservationsByProcessIdentifier_.contains(process)) {
        return true;
    }
    auto creation =
        accessibility_->createObserver(process, [](const AccessibilityObserverHandle& observer,
                                                   const AccessibilityElementHandle& element,
                                                   std::string_view notification, void* reference) {
            if (reference == nullptr) {
                return;
            }
            static_cast<AccessibilityWindowFocusEventSource*>(reference)
                ->handleAccessibilityNotification(observer, element, notification);
        });
    if (creation.error != accessibility_error::success || !creation.observer) {
        log_.debug(
            "AXObserverCreate failed for process %d (AXError %d); using "
            "application-activation fallback",
            process, creation.error);
        return false;
    }

    auto applicationElement = accessibility_->createApplicationElement(process);
    accessibility_->setMessagingTimeout(applicationElement, messagingTimeoutSeconds);
    int accepted = 0;
    for (const char* notification : accessibilityNotifications) {
        const auto error = accessibility_->addNotification(creation.observer, applicationElement,
                                                           notification, this);
        if (error != accessibility_error::success) {
            log_.debug("AXObserverAddNotification(%s) failed for process %d (AXError %d)",
                       notification, process, error);
            continue;
        }
        ++accepted;
    }
    if (accepted == 0) {
        log_.debug(
            "Process %d accepted no Accessibility notifications; using "
            "application-activation fallback",
            process);
        return false;
    }

    const auto source = accessibility_->observerRunLoopSource(creation.observer);
    runLoop_->addSource(source, RunLoopMode::defaultMode);
    applicationObservationsByProcessIdentifier_.emplace(
        process, ApplicationObservation{std::move(creation.observer), std::move(applicationElement),
                                        source});
    return true;
}

void AccessibilityWindowFocusEventSource::attachWithRetries(ProcessIdentifier process,
                                                            int attemptsLeft) {
    if (!isObserving_ || attach(process)) {
        return;
    }
    if (attemptsLeft < 2) {
        log_.debug(
            "Giving up Accessibility observer attachment for process %d; using "
            "application-activation fallback",
            process);
        return;
    }
    std::weak_ptr<AccessibilityWindowFocusEventSource> weakSelf = weak_from_this();
    runLoop_->scheduleTimer(attachRetryDelaySeconds, false, 0.0, [weakSelf, process, attemptsLeft] {
        auto self = weakSelf.lock();
        // An application that quit meanwhile ends the retries without a word.
        if (!self || !self->workspace_->runningApplication(process)) {
            return;
        }
        self->attachWithRetries(process, attemptsLeft - 1);
    });
}

void AccessibilityWindowFocusEventSource::detach(ProcessIdentifier process) {
    auto found = applicationObservationsByProcessIdentifier_.find(process);
    if (found == applicationObservationsByProcessIdentifier_.end()) {
        return;
    }
    auto observation = std::move(found->second);
    applicationObservationsByProcessIdentifier_.erase(found);
    for (const char* notification : accessibilityNotifications) {
        accessibility_->removeNotification(observation.accessibilityObserver,
                                           observation.applicationElement, notification);
    }
    runLoop_->removeSource(observation.runLoopSource, RunLoopMode::defaultMode);
}

void AccessibilityWindowFocusEventSource::handleWorkspaceNotification(
    const PlatformNotification& notification) {
    if (!notification.application) {
        return;
    }
    const auto& application = *notification.application;
    const auto process = application.processIdentifier;
    if (notification.name == workspace_notification::didActivateApplication) {
        // Picks up applications that were missed or refused before.
        if (isRegular(application)) {
            attach(process);
        }
        send(WindowFocusEvent::applicationActivated(process));
    } else if (notification.name == workspace_notification::didLaunchApplication) {
        if (isRegular(application)) {
            attachWithRetries(process, attachAttemptsAfterLaunch);
        }
    } else if (notification.name == workspace_notification::didTerminateApplication) {
        detach(process);
        send(WindowFocusEvent::applicationTerminated(process));
    }
}

void AccessibilityWindowFocusEventSource::handleAccessibilityNotification(
    const AccessibilityObserverHandle& observer, const AccessibilityElementHandle& element,
    std::string_view notification) {
    std::optional<ProcessIdentifier> process;
    auto reading = accessibility_->processIdentifier(element);
    if (reading.error == accessibility_error::success) {
        process = reading.processIdentifier;
    } else {
        for (const auto& [candidate, observation] : applicationObservationsByProcessIdentifier_) {
            if (observation.accessibilityObserver == observer) {
                process = candidate;
                break;
            }
        }
    }
    if (!process || *process == 0) {
        log_.debug("Dropped Accessibility notification %s: no resolvable process identifier",
                   notification);
        return;
    }

    accessibility_->setMessagingTimeout(element, messagingTimeoutSeconds);
    auto windowElement = std::make_shared<const AccessibilityWindowElement>(element);
    if (notification == "AXFocusedWindowChanged") {
        send(WindowFocusEvent::focusedWindowChanged(*process, std::move(windowElement)));
    } else if (notification == "AXApplicationActivated") {
        send(WindowFocusEvent::applicationActivated(*process));
    } else if (notification == "AXWindowCreated") {
        send(WindowFocusEvent::windowCreated(*process, std::move(windowElement)));
    } else if (notification == "AXUIElementDestroyed") {
        send(WindowFocusEvent::windowDestroyed(std::move(windowElement)));
    } else if (notification == "AXWindowMiniaturized") {
        send(WindowFocusEvent::windowMiniaturized(*process, std::move(windowElement)));
    } else if (notification == "AXWindowDeminiaturized") {
        send(WindowFocusEvent::windowDeminiaturized(*process, std::move(windowElement)));
    }
}

void AccessibilityWindowFocusEventSource::send(const WindowFocusEvent& event) {
    if (auto receiver = observer_.lock()) {
        receiver->windowFocusEventDidOccur(event);
    }
}

}  // namespace orvane
