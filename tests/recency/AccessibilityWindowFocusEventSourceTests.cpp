#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "platform/simulated/SimulatedAccessibilityElement.h"
#include "platform/simulated/SimulatedDesktop.h"
#include "recency/AccessibilityWindowFocusEventSource.h"
#include "support/ForwardingAccessibilityPort.h"
#include "support/SimulatedDesktopBuilders.h"
#include "support/TakeLog.h"

namespace orvane {
namespace {

using Lines = std::vector<std::string>;
using Policy = ApplicationActivationPolicy;

const Lines allNotifications{"AXFocusedWindowChanged", "AXApplicationActivated",
                             "AXWindowCreated",        "AXUIElementDestroyed",
                             "AXWindowMiniaturized",   "AXWindowDeminiaturized"};

// Each event as "kind process", then its element as "process/window" if it has one.
struct RecordingObserver final : WindowFocusEventObserving {
    void windowFocusEventDidOccur(const WindowFocusEvent& event) override {
        const char* kinds[] = {"focused",      "activated",      "created",   "destroyed",
                               "miniaturized", "deminiaturized", "terminated"};
        auto seen =
            kinds[static_cast<int>(event.kind)] + (" " + std::to_string(event.processIdentifier));
        if (event.element) {
            const auto* element = dynamic_cast<const SimulatedAccessibilityElement*>(
                event.element->underlyingElement().get());
            seen += element ? " " + std::to_string(element->processIdentifier()) + "/" +
                                  std::to_string(element->windowIdentifier())
                            : " foreign";
            timeoutsWhenSent.push_back(element ? element->messagingTimeout() : std::nullopt);
        }
        events.push_back(seen);
    }
    Lines take() { return std::exchange(events, {}); }

    Lines events;
    // The element's messaging timeout at the moment it reached the observer.
    std::vector<std::optional<float>> timeoutsWhenSent;
};

// Keeps the last observer's callback (to call it with arguments the simulation never delivers)
// and notes what teardown must undo.
struct RecordingAccessibility final : ForwardingAccessibilityPort {
    using ForwardingAccessibilityPort::ForwardingAccessibilityPort;

    ObserverCreation createObserver(ProcessIdentifier process, ObserverCallback callback) override {
        lastCallback = callback;
        return inner_->createObserver(process, std::move(callback));
    }
    AccessibilityError addNotification(const AccessibilityObserverHandle& observer,
                                       const AccessibilityElementHandle& element,
                                       std::string_view notification, void* reference) override {
        lastObserver = observer;
        lastReference = reference;
        return inner_->addNotification(observer, element, notification, reference);
    }
    AccessibilityError removeNotification(const AccessibilityObserverHandle& observer,
                                          const AccessibilityElementHandle& element,
                                          std::string_view notification) override {
        removedNotifications.emplace_back(notification);
        return inner_->removeNotification(observer, element, notification);
    }
    RunLoopSourceHandle observerRunLoopSource(
        const AccessibilityObserverHandle& observer) override {
        return sources.emplace_back(inner_->observerRunLoopSource(observer));
    }

    // Only while the source that registered is alive: the reference points at it.
    void call(const AccessibilityObserverHandle& observer, ProcessIdentifier process,
              std::string_view notification) {
        lastCallback(observer, SimulatedAccessibility::windowElement(process, 11), notification,
                     lastReference);
    }

    std::vector<RunLoopSourceHandle> sources;
    Lines removedNotifications;
    ObserverCallback lastCallback;
    // Weak, so that holding it here does not keep a released observer alive.
    std::weak_ptr<AccessibilityObserverObject> lastObserver;
    void* lastReference = nullptr;
};

SimulatedApplication refusing(ProcessIdentifier process,
                              std::set<std::string> refused = {allNotifications.begin(),
                                                               allNotifications.end()}) {
    auto result = simulatedApplication(process);
    result.refusedNotifications = std::move(refused);
    return result;
}
SimulatedApplication failing(ProcessIdentifier process) {
    auto result = simulatedApplication(process);
    result.observerCreationFails = true;
    return result;
}

std::string refusal(const std::string& notification, ProcessIdentifier process) {
    return "AXObserverAddNotification(" + notification + ") failed for process " +
           std::to_string(process) + " (AXError -25207)\n";
}
// One attachment attempt on an application that refuses every notification.
std::string refusedEverything(ProcessIdentifier process) {
    std::string log;
    for (const auto& notification : allNotifications) {
        log += refusal(notification, process);
    }
    return log + "Process " + std::to_string(process) +
           " accepted no Accessibility notifications; using application-activation fallback\n";
}
std::string creationFailure(ProcessIdentifier process) {
    return "AXObserverCreate failed for process " + std::to_string(process) +
           " (AXError -25204); using application-activation fallback\n";
}
std::string started(int attached) {
    return "Started window focus observation; attached Accessibility observers to " +
           std::to_string(attached) + " applications\n";
}
const std::string stopped = "Stopped window focus observation\n";

class AccessibilityWindowFocusEventSourceTest : public ::testing::Test {
  protected:
    AccessibilityWindowFocusEventSourceTest() { source = makeSource(desktop->accessibilityPort()); }

    std::shared_ptr<AccessibilityWindowFocusEventSource> makeSource(
        std::shared_ptr<AccessibilityPort> accessibility) {
        auto made = std::make_shared<AccessibilityWindowFocusEventSource>(
            desktop->workspacePort(), desktop->workspaceNotificationCenter(),
            std::move(accessibility), desktop->runLoopPort());
        made->setObserver(observer);
        return made;
    }
    // Attaches its source to the desktop through a recording port.
    std::shared_ptr<RecordingAccessibility> record() {
        auto recording = std::make_shared<RecordingAccessibility>(desktop->accessibilityPort());
        source = makeSource(recording);
        return recording;
    }

    void launch(SimulatedApplication launched) {
        ASSERT_TRUE(desktop->launchApplication(std::move(launched)));
        settle();
    }
    void addWindow(ProcessIdentifier process, WindowIdentifier window) {
        ASSERT_TRUE(desktop->createWindow(simulatedWindow(window, process)));
    }
    void settle() { desktop->runLoop().runUntilIdle(); }
    void advance(double seconds) { desktop->runLoop().advance(seconds); }
    // The lines logged since the last call; every one must be a recency debug line.
    std::string log() { return takeLog(logCapture, LogCategory::recencytracking, LogLevel::debug); }
    std::size_t observers(ProcessIdentifier process) {
        return desktop->accessibility().liveObserverCount(process);
    }
    void expectWorkspaceObservers(std::size_t count) {
        for (const char* name : {workspace_notification::didActivateApplication,
                                 workspace_notification::didLaunchApplication,
                                 workspace_notification::didTerminateApplication}) {
            EXPECT_EQ(desktop->workspaceNotificationCenter()->observerCount(name), count) << name;
        }
    }

    ScopedLogCapture logCapture;
    std::shared_ptr<SimulatedDesktop> desktop = SimulatedDesktop::make(100);
    std::shared_ptr<RecordingObserver> observer = std::make_shared<RecordingObserver>();
    std::shared_ptr<AccessibilityWindowFocusEventSource> source;
};

// Only regular applications get an observer, at the start or at launch; all are reported.
TEST_F(AccessibilityWindowFocusEventSourceTest,
       StartAndStopActOnceEachAndAttachRegularApplications) {
    launch(simulatedApplication(201));
    launch(simulatedApplication(301, {}, Policy::accessory));
    launch(failing(202));

    source->startObserving();
    source->startObserving();
    // A failure while starting is not retried.
    advance(30);

    EXPECT_EQ(log(), creationFailure(202) + started(1));
    expectWorkspaceObservers(1);
    EXPECT_EQ(observers(201), 1u);
    EXPECT_EQ(desktop->accessibility().registeredNotifications(201), allNotifications);
    EXPECT_EQ(observers(202) + observers(301), 0u);
    EXPECT_EQ(desktop->accessibility().messagingTimeoutsSet(), std::vector<float>{0.25f});

    launch(simulatedApplication(203));
    launch(simulatedApplication(302, {}, Policy::prohibited));
    EXPECT_EQ(observers(203), 1u);
    EXPECT_EQ(observers(302), 0u);
    desktop->activateApplication(301);
    desktop->activateApplication(302);
    desktop->terminateApplication(301);
    desktop->terminateApplication(302);
    advance(30);
    EXPECT_EQ(observer->take(),
              (Lines{"activated 301", "activated 302", "terminated 301", "terminated 302"}));
    EXPECT_EQ(log(), "");
    EXPECT_EQ(desktop->runLoop().scheduledTimerHistory().size(), 0u);

    source->stopObserving();
    source->stopObserving();

    EXPECT_EQ(log(), stopped);
    expectWorkspaceObservers(0);
    EXPECT_EQ(observers(201) + observers(203), 0u);
    desktop->activateApplication(201);
    settle();
    EXPECT_EQ(observer->take(), Lines{});
}

TEST_F(AccessibilityWindowFocusEventSourceTest, ActivationAttachesAMissedApplicationOnce) {
    launch(simulatedApplication(201));
    launch(failing(202));
    source->startObserving();
    log();

    desktop->activateApplication(202);
    advance(30);

    EXPECT_EQ(observer->take(), Lines{"activated 202"});
    EXPECT_EQ(log(), creationFailure(202));
    EXPECT_EQ(desktop->runLoop().scheduledTimerHistory().size(), 0u);

    desktop->application(202)->observerCreationFails = false;
    desktop->activateApplication(201);
    desktop->activateApplication(202);
    settle();
    addWindow(202, 21);
    settle();

    // 202 had no observer yet when its own activation was posted, so only the workspace tells.
    EXPECT_EQ(observer->take(),
              (Lines{"activated 201", "activated 201", "activated 202", "created 202 202/21"}));
    EXPECT_EQ(log(), "");
    EXPECT_EQ(observers(201), 1u);
    EXPECT_EQ(observers(202), 1u);
}

TEST_F(AccessibilityWindowFocusEventSourceTest, OneAcceptedNotificationOfSixIsEnough) {
    launch(
        refusing(201, {"AXFocusedWindowChanged", "AXApplicationActivated", "AXUIElementDestroyed",
                       "AXWindowMiniaturized", "AXWindowDeminiaturized"}));
    launch(refusing(202));

    source->startObserving();

    EXPECT_EQ(log(),
              refusal("AXFocusedWindowChanged", 201) + refusal("AXApplicationActivated", 201) +
                  refusal("AXUIElementDestroyed", 201) + refusal("AXWindowMiniaturized", 201) +
                  refusal("AXWindowDeminiaturized", 201) + refusedEverything(202) + started(1));
    EXPECT_TRUE(source->isAttached(201));
    EXPECT_EQ(desktop->accessibility().registeredNotifications(201), Lines{"AXWindowCreated"});
    // Refusing all six falls back on activations, and releases the observer.
    EXPECT_FALSE(source->isAttached(202));
    EXPECT_EQ(observers(202), 0u);

    addWindow(201, 11);
    desktop->destroyWindow(11);
    settle();
    EXPECT_EQ(observer->take(), Lines{"created 201 201/11"});
}

// After a launch, attachment gets three attempts two seconds apart; they end on success, on the
// application quitting, or on the source stopping. The next activation tries once more.
TEST_F(AccessibilityWindowFocusEventSourceTest, LaunchGetsThreeAttemptsTwoSecondsApart) {
    source->startObserving();
    log();

    launch(refusing(201));
    EXPECT_EQ(log(), refusedEverything(201));
    for (const std::string giveUp :
         {"",
          "Giving up Accessibility observer attachment for process 201; using "
          "application-activation fallback\n"}) {
        advance(1.75);
        EXPECT_EQ(log(), "");
        advance(0.25);
        EXPECT_EQ(log(), refusedEverything(201) + giveUp);
    }
    advance(60);
    EXPECT_EQ(log(), "");
    EXPECT_EQ(observer->take(), Lines{});
    desktop->activateApplication(201);
    advance(60);
    EXPECT_EQ(log(), refusedEverything(201));
    EXPECT_EQ(observer->take(), Lines{"activated 201"});

    launch(failing(202));
    EXPECT_EQ(log(), creationFailure(202));
    desktop->application(202)->observerCreationFails = false;
    advance(2.0);
    EXPECT_TRUE(source->isAttached(202));

    launch(failing(203));
    EXPECT_EQ(log(), creationFailure(203));
    desktop->terminateApplication(203);
    advance(30);
    EXPECT_EQ(observer->take(), Lines{"terminated 203"});
    EXPECT_EQ(log(), "");

    // The retry would succeed now.
    launch(failing(204));
    EXPECT_EQ(log(), creationFailure(204));
    source->stopObserving();
    desktop->application(204)->observerCreationFails = false;
    advance(30);
    EXPECT_EQ(log(), stopped);
    EXPECT_EQ(observers(204), 0u);
    using Delays = std::vector<std::pair<double, double>>;
    EXPECT_EQ(desktop->runLoop().scheduledTimerHistory(), Delays(5, {2.0, 0.0}));
}

TEST_F(AccessibilityWindowFocusEventSourceTest, DesktopChangesArriveInPostingOrder) {
    launch(simulatedApplication(201));
    launch(simulatedApplication(202));
    source->startObserving();
    log();

    addWindow(201, 11);
    addWindow(201, 12);
    addWindow(202, 21);
    desktop->focusWindow(11);
    desktop->focusWindow(21);
    desktop->setWindowMinimized(11, true);
    desktop->focusWindow(11);
    desktop->destroyWindow(11);
    settle();

    EXPECT_EQ(observer->take(),
              (Lines{"created 201 201/11", "created 201 201/12", "created 202 202/21",
                     "activated 201", "activated 201", "focused 201 201/11", "activated 202",
                     "activated 202", "focused 202 202/21", "miniaturized 201 201/11",
                     "deminiaturized 201 201/11", "activated 201", "activated 201",
                     "focused 201 201/11", "destroyed 0 201/11", "focused 201 201/12"}));
    // Set before sending: the desktop hands out each element without a timeout.
    EXPECT_EQ(observer->timeoutsWhenSent, std::vector<std::optional<float>>(10, 0.25f));
    EXPECT_EQ(observers(201), 1u);
    EXPECT_EQ(observers(202), 1u);
    EXPECT_EQ(log(), "");
}

// A process comes from the element, else from the observer that delivered the notification.
TEST_F(AccessibilityWindowFocusEventSourceTest, NotificationsNeedAResolvableProcess) {
    auto recording = record();
    auto unreadable = simulatedApplication(201);
    unreadable.processIdentifierLookupFails = true;
    launch(unreadable);
    source->startObserving();
    log();

    addWindow(201, 21);
    desktop->focusWindow(21);
    settle();
    EXPECT_EQ(observer->take(), (Lines{"created 201 201/21", "activated 201", "activated 201",
                                       "focused 201 201/21"}));

    // Arguments the simulation never delivers: a notification nobody asked for, an observer
    // nobody made, an element of process 0.
    const auto attached = recording->lastObserver.lock();
    ASSERT_NE(attached, nullptr);
    recording->call(attached, 201, "AXTitleChanged");
    recording->call(std::make_shared<AccessibilityObserverObject>(), 201, "AXWindowCreated");
    recording->call(attached, 0, "AXFocusedWindowChanged");
    EXPECT_EQ(observer->take(), Lines{});
    const std::string dropped = ": no resolvable process identifier\n";
    EXPECT_EQ(log(), "Dropped Accessibility notification AXWindowCreated" + dropped +
                         "Dropped Accessibility notification AXFocusedWindowChanged" + dropped);
}

TEST_F(AccessibilityWindowFocusEventSourceTest, EveryDetachUnregistersAndUnschedulesTheObserver) {
    auto recording = record();
    launch(simulatedApplication(201));
    launch(simulatedApplication(202));
    source->startObserving();
    ASSERT_EQ(recording->sources.size(), 2u);
    const auto scheduled = [&](std::size_t index) {
        return desktop->runLoop().isSourceScheduled(recording->sources.at(index));
    };
    EXPECT_TRUE(scheduled(0) && scheduled(1));

    desktop->terminateApplication(201);
    settle();
    EXPECT_EQ(observer->take(), Lines{"terminated 201"});
    EXPECT_FALSE(source->isAttached(201));
    EXPECT_EQ(observers(201), 0u);
    EXPECT_FALSE(scheduled(0));
    EXPECT_TRUE(scheduled(1));
    EXPECT_EQ(std::exchange(recording->removedNotifications, {}), allNotifications);

    source->stopObserving();
    EXPECT_FALSE(scheduled(1));
    EXPECT_EQ(std::exchange(recording->removedNotifications, {}), allNotifications);

    source->startObserving();
    ASSERT_EQ(recording->sources.size(), 3u);
    EXPECT_TRUE(scheduled(2));
    source.reset();
    EXPECT_FALSE(scheduled(2));
    EXPECT_EQ(recording->removedNotifications, allNotifications);
}

TEST_F(AccessibilityWindowFocusEventSourceTest, GoneObserverMissesEventsGoneSourceReleasesAll) {
    launch(simulatedApplication(201));
    source->startObserving();
    observer.reset();
    addWindow(201, 11);
    desktop->focusWindow(11);
    settle();

    auto replacement = std::make_shared<RecordingObserver>();
    source->setObserver(replacement);
    launch(simulatedApplication(202));
    addWindow(202, 21);
    settle();
    EXPECT_EQ(replacement->take(), Lines{"created 202 202/21"});

    launch(failing(203));
    log();
    source.reset();
    desktop->application(203)->observerCreationFails = false;
    desktop->focusWindow(11);
    advance(30);

    EXPECT_EQ(replacement->take(), Lines{});
    EXPECT_EQ(log(), "");
    EXPECT_EQ(observers(201) + observers(202) + observers(203), 0u);
    expectWorkspaceObservers(0);
}

}  // namespace
}  // namespace orvane
