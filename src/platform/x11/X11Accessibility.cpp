#include "platform/x11/X11Accessibility.h"

#include <algorithm>
#include <string>
#include <utility>

#include "core/Logger.h"
#include "platform/x11/X11AccessibilityElement.h"

namespace orvane {

class X11Accessibility::Observer final : public AccessibilityObserverObject {
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

// EWMH source indication: a pager or switcher acting for the user.
constexpr std::uint32_t sourcePager = 2;
constexpr std::uint32_t onEveryDesktop = 0xFFFFFFFF;

const X11AccessibilityElement* x11Element(const AccessibilityElementHandle& element) {
    return dynamic_cast<const X11AccessibilityElement*>(element.get());
}

AccessibilityPort::AttributeReading answer(AccessibilityValue value) {
    return {accessibility_error::success, std::move(value)};
}

const char* subrole(X11WindowModel::Kind kind) {
    switch (kind) {
        case X11WindowModel::Kind::normal:
            return "AXStandardWindow";
        case X11WindowModel::Kind::dialog:
            return "AXDialog";
        case X11WindowModel::Kind::utility:
            return "AXFloatingWindow";
        default:
            return "AXUnknown";
    }
}

}  // namespace

X11Accessibility::X11Accessibility(X11Connection& connection, X11WindowModel& model,
                                   std::shared_ptr<RunLoopPort> runLoop)
    : connection_(connection),
      model_(model),
      runLoop_(std::move(runLoop)),
      frontmostProcess_(model.frontmostProcess()) {
    model_.addListener(
        [this](X11WindowModel::ChangeKind kind, const X11WindowModel::ClientWindow& window) {
            modelChanged(kind, window);
        });
}

const X11WindowModel::ClientWindow* X11Accessibility::client(
    const AccessibilityElementHandle& element) const {
    const auto* x11 = x11Element(element);
    if (x11 == nullptr || x11->isApplication()) {
        return nullptr;
    }
    const auto* window = model_.window(x11->window());
    return window != nullptr && window->process == x11->process() ? window : nullptr;
}

AccessibilityPort::AttributeReading X11Accessibility::copyAttributeValue(
    const AccessibilityElementHandle& element, std::string_view attribute) const {
    const auto* x11 = x11Element(element);
    if (x11 == nullptr) {
        return {accessibility_error::illegalArgument, {}};
    }
    if (x11->isApplication()) {
        if (attribute == "AXWindows") {
            AccessibilityValue::Array windows;
            for (auto window : model_.stackingFrontToBack()) {
                const auto* candidate = model_.window(window);
                if (candidate != nullptr && candidate->process == x11->process()) {
                    windows.emplace_back().storage = AccessibilityElementHandle(
                        std::make_shared<X11AccessibilityElement>(x11->process(), window));
                }
            }
            return answer(AccessibilityValue{std::move(windows)});
        }
        if (attribute == "AXFocusedWindow") {
            const auto active = model_.activeWindow();
            const auto* window = active ? model_.window(*active) : nullptr;
            if (window == nullptr || window->process != x11->process()) {
                return {accessibility_error::noValue, {}};
            }
            return answer(AccessibilityValue{AccessibilityElementHandle(
                std::make_shared<X11AccessibilityElement>(x11->process(), *active))});
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

void X11Accessibility::sendToWindowManager(xcb_window_t window, xcb_atom_t type,
                                           std::initializer_list<std::uint32_t> data) {
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = window;
    message.type = type;
    std::copy(data.begin(), data.end(), message.data.data32);
    xcb_send_event(connection_.connection(), 0, connection_.root(),
                   XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                   reinterpret_cast<const char*>(&message));
}

AccessibilityError X11Accessibility::setAttributeValue(const AccessibilityElementHandle& element,
                                                       std::string_view attribute,
                                                       const AccessibilityValue& value) {
    const auto* window = client(element);
    if (window == nullptr) {
        return x11Element(element) ? accessibility_error::invalidElement
                                   : accessibility_error::illegalArgument;
    }
    const auto* flag = std::get_if<bool>(&value.storage);
    if (flag == nullptr) {
        return accessibility_error::illegalArgument;
    }
    auto& ewmh = connection_.ewmh();
    const auto time = connection_.lastEventTime();
    if (attribute == "AXMinimized") {
        if (*flag) {
            constexpr std::uint32_t iconicState = 3;
            sendToWindowManager(window->window, connection_.atom("WM_CHANGE_STATE"), {iconicState});
        } else {
            // Mapping an iconic window asks the window manager to restore it.
            xcb_map_window(connection_.connection(), window->window);
        }
    } else if (attribute == "AXMain") {
        if (!*flag) {
            return accessibility_error::success;
        }
        if (window->desktop != onEveryDesktop && window->desktop != model_.currentDesktop()) {
            sendToWindowManager(connection_.root(), ewmh._NET_CURRENT_DESKTOP,
                                {window->desktop, time});
        }
        const auto active = model_.activeWindow().value_or(XCB_NONE);
        sendToWindowManager(window->window, ewmh._NET_ACTIVE_WINDOW, {sourcePager, time, active});
        if (window->window != active) {
            awaitActivation(window->window);
        }
        if (pendingRaise_ == window->window) {
            pendingRaise_.reset();
        }
    } else {
        return accessibility_error::attributeUnsupported;
    }
    connection_.flush();
    return accessibility_error::success;
}

AccessibilityError X11Accessibility::performAction(const AccessibilityElementHandle& element,
                                                   std::string_view action) {
    const auto* window = client(element);
    if (window == nullptr) {
        return x11Element(element) ? accessibility_error::invalidElement
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

void X11Accessibility::sendPendingRaise() {
    if (!pendingRaise_ || model_.window(*pendingRaise_) == nullptr) {
        pendingRaise_.reset();
        return;
    }
    constexpr std::uint32_t above = 0;
    sendToWindowManager(*pendingRaise_, connection_.ewmh()._NET_RESTACK_WINDOW,
                        {sourcePager, XCB_NONE, above});
    pendingRaise_.reset();
    connection_.flush();
}

void X11Accessibility::awaitActivation(xcb_window_t window) {
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

void X11Accessibility::whenActivationAnswered(std::function<void()> then) {
    if (awaitedActivation_) {
        afterActivation_.push_back(std::move(then));
    } else {
        then();
    }
}

void X11Accessibility::activationAnswered() {
    awaitedActivation_.reset();
    if (activationPatience_) {
        runLoop_->cancelTimer(*activationPatience_);
        activationPatience_.reset();
    }
    for (auto& then : std::exchange(afterActivation_, {})) {
        then();
    }
}

AccessibilityElementHandle X11Accessibility::createApplicationElement(ProcessIdentifier process) {
    return std::make_shared<X11AccessibilityElement>(process, 0);
}

AccessibilityError X11Accessibility::setMessagingTimeout(const AccessibilityElementHandle& element,
                                                         float) {
    // Answers come from the model, never from the client, so no client can make a call hang.
    return x11Element(element) ? accessibility_error::success
                               : accessibility_error::illegalArgument;
}

AccessibilityPort::ProcessReading X11Accessibility::processIdentifier(
    const AccessibilityElementHandle& element) const {
    const auto* x11 = x11Element(element);
    if (x11 == nullptr) {
        return {accessibility_error::illegalArgument, 0};
    }
    return {accessibility_error::success, x11->process()};
}

AccessibilityPort::ObserverCreation X11Accessibility::createObserver(ProcessIdentifier process,
                                                                     ObserverCallback callback) {
    auto observer = std::make_shared<Observer>(process, std::move(callback));
    std::erase_if(observers_, [](const auto& weak) { return weak.expired(); });
    observers_.push_back(observer);
    return {accessibility_error::success, observer};
}

AccessibilityError X11Accessibility::addNotification(const AccessibilityObserverHandle& observer,
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

AccessibilityError X11Accessibility::removeNotification(const AccessibilityObserverHandle& observer,
                                                        const AccessibilityElementHandle&,
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

RunLoopSourceHandle X11Accessibility::observerRunLoopSource(
    const AccessibilityObserverHandle& observer) {
    // Notifications come through the connection's descriptor, which the event loop reads anyway.
    return reinterpret_cast<RunLoopSourceHandle>(observer.get());
}

void X11Accessibility::notify(ProcessIdentifier process, xcb_window_t window,
                              std::string_view notification) {
    // Fixed first: a callback may create or drop observers.
    std::vector<std::shared_ptr<Observer>> receivers;
    for (const auto& weak : observers_) {
        if (auto observer = weak.lock(); observer && observer->process == process) {
            receivers.push_back(std::move(observer));
        }
    }
    AccessibilityElementHandle element = std::make_shared<X11AccessibilityElement>(process, window);
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

void X11Accessibility::modelChanged(X11WindowModel::ChangeKind kind,
                                    const X11WindowModel::ClientWindow& window) {
    using Kind = X11WindowModel::ChangeKind;
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
