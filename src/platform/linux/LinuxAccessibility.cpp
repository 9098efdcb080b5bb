#include "platform/linux/LinuxAccessibility.h"

#include <algorithm>
#include <string>
#include <utility>

#include "core/Logger.h"
#include "platform/linux/LinuxAccessibilityElement.h"

namespace orvane {

class LinuxAccessibility::Observer final : public AccessibilityObserverObject {
  public:
    Observer(ProcessIdentifier process, ObserverCallback callback)
        : process(process), callback(std::move(callback)) {}

    ProcessIdentifier process;
    ObserverCallback callback;
    std::vector<std::pair<std::string, void*>> registrations;
};

namespace {

constexpr std::string_view supportedNotifications[] = {
    "AXFocusedWindowChanged", "AXApplicationActivated", "AXWindowCreated",
    "AXUIElementDestroyed",   "AXWindowMiniaturized",   "AXWindowDeminiaturized"};

const LinuxAccessibilityElement* ourElement(const AccessibilityElementHandle& element) {
    return dynamic_cast<const LinuxAccessibilityElement*>(element.get());
}

AccessibilityPort::AttributeReading answer(AccessibilityValue value) {
    return {accessibility_error::success, std::move(value)};
}

const char* subrole(DesktopWindows::Kind kind) {
    switch (kind) {
        case DesktopWindows::Kind::normal:
            return "AXStandardWindow";
        case DesktopWindows::Kind::dialog:
            return "AXDialog";
        case DesktopWindows::Kind::utility:
            return "AXFloatingWindow";
        default:
            return "AXUnknown";
    }
}

}  // namespace

LinuxAccessibility::LinuxAccessibility(DesktopWindows& model, std::shared_ptr<RunLoopPort> runLoop)
    : model_(model), runLoop_(std::move(runLoop)), frontmostProcess_(model.frontmostProcess()) {
    model_.addListener(
        [this](DesktopWindows::ChangeKind kind, const DesktopWindows::Window& window) {
            modelChanged(kind, window);
        });
}

const DesktopWindows::Window* LinuxAccessibility::client(
    const AccessibilityElementHandle& element) const {
    const auto* ours = ourElement(element);
    if (ours == nullptr || ours->isApplication()) {
        return nullptr;
    }
    const auto* window = model_.window(ours->window());
    return window != nullptr && window->process == ours->process() ? window : nullptr;
}

AccessibilityPort::AttributeReading LinuxAccessibility::copyAttributeValue(
    const AccessibilityElementHandle& element, std::string_view attribute) const {
    const auto* ours = ourElement(element);
    if (ours == nullptr) {
        return {accessibility_error::illegalArgument, {}};
    }
    if (ours->isApplication()) {
        if (attribute == "AXWindows") {
            AccessibilityValue::Array windows;
            for (auto window : model_.frontToBack()) {
                const auto* candidate = model_.window(window);
                if (candidate != nullptr && candidate->process == ours->process()) {
                    windows.emplace_back().storage = AccessibilityElementHandle(
                        std::make_shared<LinuxAccessibilityElement>(ours->process(), window));
                }
            }
            return answer(AccessibilityValue{std::move(windows)});
        }
        if (attribute == "AXFocusedWindow") {
            const auto active = model_.activeWindow();
            const auto* window = active ? model_.window(*active) : nullptr;
            if (window == nullptr || window->process != ours->process()) {
                return {accessibility_error::noValue, {}};
            }
            return answer(AccessibilityValue{AccessibilityElementHandle(
                std::make_shared<LinuxAccessibilityElement>(ours->process(), *active))});
        }
        return {accessibility_error::attributeUnsupported, {}};
    }
    const auto* window = client(element);
    if (window == nullptr) {
        return {accessibility_error::invalidElement, {}};
    }
    if (attribute == "AXTitle") {
        return answer(AccessibilityValue{window->title});
    }
    if (attribute == "AXPosition") {
        return answer(
            AccessibilityValue{AccessibilityGeometryValue::ofPoint(window->frame.origin)});
    }
    if (attribute == "AXSize") {
        return answer(AccessibilityValue{AccessibilityGeometryValue::ofSize(window->frame.size)});
    }
    if (attribute == "AXSubrole") {
        return answer(AccessibilityValue{std::string(subrole(window->kind))});
    }
    if (attribute == "AXMinimized") {
        return answer(AccessibilityValue{window->isHidden});
    }
    return {accessibility_error::attributeUnsupported, {}};
}

AccessibilityError LinuxAccessibility::setAttributeValue(const AccessibilityElementHandle& element,
                                                         std::string_view attribute,
                                                         const AccessibilityValue& value) {
    const auto* window = client(element);
    if (window == nullptr) {
        return ourElement(element) ? accessibility_error::invalidElement
                                   : accessibility_error::illegalArgument;
    }
    const auto* flag = std::get_if<bool>(&value.storage);
    if (flag == nullptr) {
        return accessibility_error::illegalArgument;
    }
    if (attribute == "AXMinimized") {
        model_.setMinimized(*window, *flag);
    } else if (attribute == "AXMain") {
        if (!*flag) {
            return accessibility_error::success;
        }
        const auto active = model_.activeWindow();
        model_.activate(*window);
        if (window->window != active) {
            awaitActivation(window->window);
        }
        if (pendingRaise_ == window->window) {
            pendingRaise_.reset();
        }
    } else {
        return accessibility_error::attributeUnsupported;
    }
    return accessibility_error::success;
}

AccessibilityError LinuxAccessibility::performAction(const AccessibilityElementHandle& element,
                                                     std::string_view action) {
    const auto* window = client(element);
    if (window == nullptr) {
        return ourElement(element) ? accessibility_error::invalidElement
                                   : accessibility_error::illegalArgument;
    }
    if (action != "AXRaise") {
        return accessibility_error::actionUnsupported;
    }
    if (!pendingRaise_) {
        runLoop_->post([weak = weak_from_this()] {
            if (auto self = weak.lock()) {
                self->sendPendingRaise();
            }
        });
    }
    pendingRaise_ = window->window;
    return accessibility_error::success;
}

void LinuxAccessibility::sendPendingRaise() {
    const auto* window = pendingRaise_ ? model_.window(*pendingRaise_) : nullptr;
    pendingRaise_.reset();
    if (window != nullptr) {
        model_.raise(*window);
    }
}

void LinuxAccessibility::awaitActivation(DesktopWindows::Handle window) {
    awaitedActivation_ = window;
    if (!activationPatience_) {
        activationPatience_ = runLoop_->scheduleTimer(0.1, false, 0.01, [weak = weak_from_this()] {
            if (auto self = weak.lock()) {
                self->activationPatience_.reset();
                self->activationAnswered();
            }
        });
    }
}

void LinuxAccessibility::whenActivationAnswered(std::function<void()> then) {
    if (awaitedActivation_) {
        afterActivation_.push_back(std::move(then));
    } else {
        then();
    }
}

void LinuxAccessibility::activationAnswered() {
    awaitedActivation_.reset();
    if (activationPatience_) {
        runLoop_->cancelTimer(*activationPatience_);
        activationPatience_.reset();
    }
    for (auto& then : std::exchange(afterActivation_, {})) {
        then();
    }
}

AccessibilityElementHandle LinuxAccessibility::createApplicationElement(ProcessIdentifier process) {
    return std::make_shared<LinuxAccessibilityElement>(process, 0);
}

AccessibilityError LinuxAccessibility::setMessagingTimeout(
    const AccessibilityElementHandle& element, float) {
    // Answers come from the model, never from the client, so no client can make a call hang.
    return ourElement(element) ? accessibility_error::success
                               : accessibility_error::illegalArgument;
}

AccessibilityPort::ProcessReading LinuxAccessibility::processIdentifier(
    const AccessibilityElementHandle& element) const {
    const auto* ours = ourElement(element);
    if (ours == nullptr) {
        return {accessibility_error::illegalArgument, 0};
    }
    return {accessibility_error::success, ours->process()};
}

AccessibilityPort::ObserverCreation LinuxAccessibility::createObserver(ProcessIdentifier process,
                                                                       ObserverCallback callback) {
    auto observer = std::make_shared<Observer>(process, std::move(callback));
    std::erase_if(observers_, [](const auto& weak) { return weak.expired(); });
    observers_.push_back(observer);
    return {accessibility_error::success, observer};
}

AccessibilityError LinuxAccessibility::addNotification(const AccessibilityObserverHandle& observer,
                                                       const AccessibilityElementHandle&,
                                                       std::string_view notification,
                                                       void* reference) {
    auto* ours = dynamic_cast<Observer*>(observer.get());
    if (ours == nullptr) {
        return accessibility_error::invalidObserver;
    }
    if (std::find(std::begin(supportedNotifications), std::end(supportedNotifications),
                  notification) == std::end(supportedNotifications)) {
        return accessibility_error::notificationUnsupported;
    }
    for (const auto& [name, existing] : ours->registrations) {
        if (name == notification) {
            return accessibility_error::notificationAlreadyRegistered;
        }
    }
    ours->registrations.emplace_back(std::string(notification), reference);
    return accessibility_error::success;
}

AccessibilityError LinuxAccessibility::removeNotification(
    const AccessibilityObserverHandle& observer, const AccessibilityElementHandle&,
    std::string_view notification) {
    auto* ours = dynamic_cast<Observer*>(observer.get());
    if (ours == nullptr) {
        return accessibility_error::invalidObserver;
    }
    const auto removed = std::erase_if(
        ours->registrations, [&](const auto& entry) { return entry.first == notification; });
    return removed > 0 ? accessibility_error::success
                       : accessibility_error::notificationNotRegistered;
}

RunLoopSourceHandle LinuxAccessibility::observerRunLoopSource(
    const AccessibilityObserverHandle& observer) {
    // Notifications come with the desktop's own events, which the event loop reads anyway.
    return reinterpret_cast<RunLoopSourceHandle>(observer.get());
}

void LinuxAccessibility::notify(ProcessIdentifier process, DesktopWindows::Handle window,
                                std::string_view notification) {
    // Fixed first: a callback may create or drop observers.
    std::vector<std::shared_ptr<Observer>> receivers;
    for (const auto& weak : observers_) {
        if (auto observer = weak.lock(); observer && observer->process == process) {
            receivers.push_back(std::move(observer));
        }
    }
    AccessibilityElementHandle element =
        std::make_shared<LinuxAccessibilityElement>(process, window);
    for (const auto& observer : receivers) {
        for (const auto& [name, reference] : observer->registrations) {
            if (name == notification) {
                AccessibilityObserverHandle handle = observer;
                auto callback = observer->callback;
                callback(handle, element, notification, reference);
                break;
            }
        }
    }
}

void LinuxAccessibility::modelChanged(DesktopWindows::ChangeKind kind,
                                      const DesktopWindows::Window& window) {
    using Kind = DesktopWindows::ChangeKind;
    switch (kind) {
        case Kind::added:
            notify(window.process, window.window, "AXWindowCreated");
            break;
        case Kind::removed:
            notify(window.process, window.window, "AXUIElementDestroyed");
            break;
        case Kind::minimized:
            notify(window.process, window.window, "AXWindowMiniaturized");
            break;
        case Kind::unminimized:
            notify(window.process, window.window, "AXWindowDeminiaturized");
            break;
        case Kind::activated:
            if (frontmostProcess_ != window.process) {
                frontmostProcess_ = window.process;
                notify(window.process, 0, "AXApplicationActivated");
            }
            notify(window.process, window.window, "AXFocusedWindowChanged");
            break;
        case Kind::titled:
            break;
    }
    if (awaitedActivation_ && (kind == Kind::activated ||
                               (kind == Kind::removed && window.window == *awaitedActivation_))) {
        activationAnswered();
    }
}

}  // namespace orvane
