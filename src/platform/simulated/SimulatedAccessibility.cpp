#include "platform/simulated/SimulatedAccessibility.h"

#include <algorithm>
#include <set>
#include <utility>

#include "platform/simulated/SimulatedAccessibilityElement.h"
#include "platform/simulated/SimulatedDesktop.h"

namespace orvane {

class SimulatedAccessibility::Observer final : public AccessibilityObserverObject {
  public:
    struct Registration {
        std::string notification;
        void* reference = nullptr;
    };

    Observer(ProcessIdentifier process, ObserverCallback callback, RunLoopSourceHandle source)
        : process(process), callback(std::move(callback)), source(source) {}

    ProcessIdentifier process;
    ObserverCallback callback;
    RunLoopSourceHandle source;
    // Only registrations on the application element exist in this program.
    std::vector<Registration> registrations;
};

namespace {

const SimulatedAccessibilityElement* simulatedElement(const AccessibilityElementHandle& element) {
    return dynamic_cast<const SimulatedAccessibilityElement*>(element.get());
}

AccessibilityPort::AttributeReading answer(AccessibilityValue value) {
    return {accessibility_error::success, std::move(value)};
}

AccessibilityPort::AttributeReading failure(AccessibilityError error) {
    return {error, {}};
}

// A value of another type than the attribute has, for the wrongly typed knob.
AccessibilityValue wronglyTyped(std::string_view attribute) {
    if (attribute == "AXTitle" || attribute == "AXSubrole") {
        return AccessibilityValue{42.0};
    }
    if (attribute == "AXMinimized") {
        return AccessibilityValue{std::string("yes")};
    }
    return AccessibilityValue{std::string("not a geometry value")};
}

}  // namespace

AccessibilityElementHandle SimulatedAccessibility::windowElement(ProcessIdentifier process,
                                                                 WindowIdentifier window) {
    return std::make_shared<SimulatedAccessibilityElement>(process, window);
}

bool SimulatedAccessibility::spendCallTime(const AccessibilityElementHandle& element) const {
    const auto* simulated = simulatedElement(element);
    const auto* application =
        simulated != nullptr ? desktop_.application(simulated->processIdentifier()) : nullptr;
    if (application == nullptr || application->accessibilityResponseDelay <= 0) {
        return true;
    }
    const double timeout = simulated->messagingTimeout().value_or(defaultMessagingTimeout);
    if (application->accessibilityResponseDelay > timeout) {
        desktop_.runLoop().spendTime(timeout);
        return false;
    }
    desktop_.runLoop().spendTime(application->accessibilityResponseDelay);
    return true;
}

AccessibilityPort::AttributeReading SimulatedAccessibility::copyAttributeValue(
    const AccessibilityElementHandle& element, std::string_view attribute) const {
    ++attributeReadCount_;
    const auto* simulated = simulatedElement(element);
    if (simulated == nullptr) {
        return failure(accessibility_error::illegalArgument);
    }
    const auto* application = desktop_.application(simulated->processIdentifier());
    if (application == nullptr) {
        return failure(accessibility_error::invalidElement);
    }
    if (!spendCallTime(element)) {
        return failure(accessibility_error::cannotComplete);
    }

    if (simulated->isApplication()) {
        if (attribute == "AXWindows") {
            if (application->windowsAttributeError) {
                return failure(*application->windowsAttributeError);
            }
            if (application->windowsAttributeIsNotArray) {
                return answer(AccessibilityValue{std::string("windows")});
            }
            AccessibilityValue::Array windows;
            for (auto identifier : desktop_.windowsFrontToBack()) {
                const auto* window = desktop_.window(identifier);
                if (window->owningProcessIdentifier == simulated->processIdentifier() &&
                    window->isInAccessibilityTree) {
                    // Assigned in place: moving a fresh value trips a false uninitialized warning.
                    windows.emplace_back().storage =
                        windowElement(simulated->processIdentifier(), identifier);
                }
            }
            return answer(AccessibilityValue{std::move(windows)});
        }
        if (attribute == "AXFocusedWindow") {
            if (!application->focusedWindow) {
                return failure(accessibility_error::noValue);
            }
            return answer(AccessibilityValue{
                windowElement(simulated->processIdentifier(), *application->focusedWindow)});
        }
        if (attribute == "AXTitle" && application->runningApplication.localizedName) {
            return answer(AccessibilityValue{*application->runningApplication.localizedName});
        }
        return failure(accessibility_error::attributeUnsupported);
    }

    const auto* window = desktop_.window(simulated->windowIdentifier());
    if (window == nullptr || window->owningProcessIdentifier != simulated->processIdentifier()) {
        return failure(accessibility_error::invalidElement);
    }
    if (window->wronglyTypedAttributes.contains(std::string(attribute))) {
        return answer(wronglyTyped(attribute));
    }
    const Rect frame = window->accessibilityFrame.value_or(window->bounds);
    if (attribute == "AXTitle") {
        if (!window->accessibilityTitle) {
            return failure(accessibility_error::noValue);
        }
        return answer(AccessibilityValue{*window->accessibilityTitle});
    }
    if (attribute == "AXPosition") {
        return answer(AccessibilityValue{AccessibilityGeometryValue::ofPoint(frame.origin)});
    }
    if (attribute == "AXSize") {
        return answer(AccessibilityValue{AccessibilityGeometryValue::ofSize(frame.size)});
    }
    if (attribute == "AXSubrole") {
        if (!window->subrole) {
            return failure(accessibility_error::noValue);
        }
        return answer(AccessibilityValue{*window->subrole});
    }
    if (attribute == "AXMinimized") {
        return answer(AccessibilityValue{window->isMinimized});
    }
    return failure(accessibility_error::attributeUnsupported);
}

AccessibilityError SimulatedAccessibility::reachWindow(
    const AccessibilityElementHandle& element) const {
    const auto* simulated = simulatedElement(element);
    const auto* target = desktop_.window(simulated->windowIdentifier());
    if (simulated->isApplication() || target == nullptr ||
        target->owningProcessIdentifier != simulated->processIdentifier()) {
        return accessibility_error::invalidElement;
    }
    return spendCallTime(element) ? accessibility_error::success
                                  : accessibility_error::cannotComplete;
}

AccessibilityError SimulatedAccessibility::setAttributeValue(
    const AccessibilityElementHandle& element, std::string_view attribute,
    const AccessibilityValue& value) {
    const auto* simulated = simulatedElement(element);
    if (simulated == nullptr) {
        return accessibility_error::illegalArgument;
    }
    const auto* flag = std::get_if<bool>(&value.storage);
    changeLog_.push_back(std::string(attribute) + "=" +
                         (flag == nullptr ? "?" : (*flag ? "true" : "false")) + " on " +
                         std::to_string(simulated->windowIdentifier()));
    if (auto error = reachWindow(element); error != accessibility_error::success) {
        return error;
    }
    if (flag == nullptr) {
        return accessibility_error::illegalArgument;
    }
    if (attribute == "AXMinimized") {
        desktop_.setWindowMinimized(simulated->windowIdentifier(), *flag);
        return accessibility_error::success;
    }
    if (attribute == "AXMain") {
        if (*flag) {
            desktop_.makeMainWindow(simulated->windowIdentifier());
        }
        return accessibility_error::success;
    }
    return accessibility_error::attributeUnsupported;
}

AccessibilityError SimulatedAccessibility::performAction(const AccessibilityElementHandle& element,
                                                         std::string_view action) {
    const auto* simulated = simulatedElement(element);
    if (simulated == nullptr) {
        return accessibility_error::illegalArgument;
    }
    changeLog_.push_back(std::string(action) + " on " +
                         std::to_string(simulated->windowIdentifier()));
    if (auto error = reachWindow(element); error != accessibility_error::success) {
        return error;
    }
    if (action == "AXRaise") {
        desktop_.raiseWindow(simulated->windowIdentifier());
        return accessibility_error::success;
    }
    return accessibility_error::actionUnsupported;
}

AccessibilityElementHandle SimulatedAccessibility::createApplicationElement(
    ProcessIdentifier process) {
    return std::make_shared<SimulatedAccessibilityElement>(process, 0);
}

AccessibilityError SimulatedAccessibility::setMessagingTimeout(
    const AccessibilityElementHandle& element, float seconds) {
    const auto* simulated = simulatedElement(element);
    if (simulated == nullptr || seconds < 0) {
        return accessibility_error::illegalArgument;
    }
    simulated->setMessagingTimeout(seconds);
    messagingTimeoutsSet_.push_back(seconds);
    return accessibility_error::success;
}

AccessibilityPort::ProcessReading SimulatedAccessibility::processIdentifier(
    const AccessibilityElementHandle& element) const {
    const auto* simulated = simulatedElement(element);
    if (simulated == nullptr) {
        return {accessibility_error::illegalArgument, 0};
    }
    const auto* application = desktop_.application(simulated->processIdentifier());
    if (application != nullptr && application->processIdentifierLookupFails) {
        return {accessibility_error::failure, 0};
    }
    return {accessibility_error::success, simulated->processIdentifier()};
}

AccessibilityPort::ObserverCreation SimulatedAccessibility::createObserver(
    ProcessIdentifier process, ObserverCallback callback) {
    const auto* application = desktop_.application(process);
    if (application == nullptr || application->observerCreationFails || !callback) {
        return {accessibility_error::cannotComplete, nullptr};
    }
    auto observer = std::make_shared<Observer>(process, std::move(callback),
                                               desktop_.runLoop().makeSourceHandle());
    std::erase_if(observers_, [](const auto& weak) { return weak.expired(); });
    observers_.push_back(observer);
    return {accessibility_error::success, observer};
}

AccessibilityError SimulatedAccessibility::addNotification(
    const AccessibilityObserverHandle& observerHandle, const AccessibilityElementHandle& element,
    std::string_view notification, void* reference) {
    auto* observer = dynamic_cast<Observer*>(observerHandle.get());
    const auto* simulated = simulatedElement(element);
    if (observer == nullptr || simulated == nullptr) {
        return accessibility_error::illegalArgument;
    }
    const auto* application = desktop_.application(simulated->processIdentifier());
    if (application == nullptr) {
        return accessibility_error::invalidElement;
    }
    if (application->refusedNotifications.contains(std::string(notification))) {
        return accessibility_error::notificationUnsupported;
    }
    for (const auto& registration : observer->registrations) {
        if (registration.notification == notification) {
            return accessibility_error::notificationAlreadyRegistered;
        }
    }
    observer->registrations.push_back({std::string(notification), reference});
    return accessibility_error::success;
}

AccessibilityError SimulatedAccessibility::removeNotification(
    const AccessibilityObserverHandle& observerHandle, const AccessibilityElementHandle&,
    std::string_view notification) {
    auto* observer = dynamic_cast<Observer*>(observerHandle.get());
    if (observer == nullptr) {
        return accessibility_error::illegalArgument;
    }
    const auto removed = std::erase_if(observer->registrations, [&](const auto& registration) {
        return registration.notification == notification;
    });
    return removed > 0 ? accessibility_error::success
                       : accessibility_error::notificationNotRegistered;
}

RunLoopSourceHandle SimulatedAccessibility::observerRunLoopSource(
    const AccessibilityObserverHandle& observerHandle) {
    const auto* observer = dynamic_cast<const Observer*>(observerHandle.get());
    return observer != nullptr ? observer->source : 0;
}

void SimulatedAccessibility::deliver(ProcessIdentifier process,
                                     const AccessibilityElementHandle& element,
                                     const std::string& notification) {
    for (const auto& weak : observers_) {
        auto observer = weak.lock();
        if (!observer || observer->process != process ||
            !desktop_.runLoop().isSourceScheduled(observer->source)) {
            continue;
        }
        for (const auto& registration : observer->registrations) {
            if (registration.notification != notification) {
                continue;
            }
            // Held weakly until delivery: an observer released meanwhile hears nothing.
            std::weak_ptr<Observer> pending = observer;
            auto reference = registration.reference;
            desktop_.runLoop().post([this, pending, element, notification, reference] {
                auto live = pending.lock();
                if (!live || !desktop_.runLoop().isSourceScheduled(live->source)) {
                    return;
                }
                AccessibilityObserverHandle handle = live;
                auto callback = live->callback;
                callback(handle, element, notification, reference);
            });
        }
    }
}

std::size_t SimulatedAccessibility::liveObserverCount(ProcessIdentifier process) const {
    return static_cast<std::size_t>(
        std::count_if(observers_.begin(), observers_.end(), [process](const auto& weak) {
            auto observer = weak.lock();
            return observer && observer->process == process;
        }));
}

std::vector<std::string> SimulatedAccessibility::registeredNotifications(
    ProcessIdentifier process) const {
    std::vector<std::string> names;
    for (const auto& weak : observers_) {
        if (auto observer = weak.lock(); observer && observer->process == process) {
            for (const auto& registration : observer->registrations) {
                names.push_back(registration.notification);
            }
        }
    }
    return names;
}

}  // namespace orvane
