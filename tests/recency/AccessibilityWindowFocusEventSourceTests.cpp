#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "core/ScopedLogCapture.h"
#include "platform/simulated/SimulatedAccessibilityElement.h"
#include "platform/simulated/SimulatedDesktop.h"
#include "recency/AccessibilityWindowFocusEventSource.h"
#include "support/ForwardingAccessibilityPort.h"

namespace orvane {
namespace {

using Lines = std::vector<std::string>;

const Lines allNotifications{"AXFocusedWindowChanged", "AXApplicationActivated",
                             "AXWindowCreated",        "AXUIElementDestroyed",
                             "AXWindowMiniaturized",   "AXWindowDeminiaturized"};
const char* const workspaceNotifications[] = {workspace_notification::didActivateApplication,
                                              workspace_notification::didLaunchApplication,
                                              workspace_notification::didTerminateApplication};

const SimulatedAccessibilityElement* simulated(const AccessibilityElementHandle& element) {
    return dynamic_cast<const SimulatedAccessibilityElement*>(element.get());
}

// Each event as "kind process", then its element as "process/window" if it has one.
class RecordingObserver final : public WindowFocusEventObserving {
  public:
    void windowFocusEventDidOccur(const WindowFocusEvent& event) override {
        const char* kinds[] = {"focused",      "activated",      "created",   "destroyed",
                               "miniaturized", "deminiaturized", "terminated"};
        auto seen =
            kinds[static_cast<int>(event.kind)] + (" " + std::to_string(event.processIdentifier));
        if (event.element) {
            const auto* element = simulated(event.element->underlyingElement());
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
class RecordingAccessibility final : public ForwardingAccessibilityPort {
  public:
    using ForwardingAccessibilityPort::ForwardingAccessibilityPort;

    ObserverCreation createObserver(ProcessIdentifier process, ObserverCallback callback) override {
        callback_ = callback;
        return inner_->createObserver(process, std::move(callback));
    }
    AccessibilityError addNotification(const AccessibilityObserverHandle& observer,
                                       const AccessibilityElementHandle& element,
                                       std::string_view notification, void* reference) override {
        observer_ = observer;
        reference_ = reference;
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
        callback_(observer, SimulatedAccessibility::windowElement(process, 11), notification,
                  reference_);
    }
    AccessibilityObserverHandle lastObserver() const { return observer_.lock(); }

    std::vector<RunLoopSourceHandle> sources;
    Lines removedNotifications;

  private:
    ObserverCallback callback_;
    // Weak, so that holding it here does not keep a released observer alive.
    std::weak_ptr<AccessibilityObserverObject> observer_;
    void* reference_ = nullptr;
};

SimulatedApplication application(
    ProcessIdentifier process,
    ApplicationActivationPolicy policy = ApplicationActivationPolicy::regular) {
    SimulatedApplication result;
    result.runningApplication.processIdentifier = process;
    result.runningApplication.localizedName = "App " + std::to_string(process);
    result.runningApplication.activationPolicy = policy;
    return result;
}
SimulatedApplication refusing(ProcessIdentifier process, std::set<std::string> refused) {
    auto result = application(process);
    result.refusedNotifications = std::move(refused);
    return result;
}
SimulatedApplication refusingAll(ProcessIdentifier process) {
    return refusing(process, {allNotifications.begin(), allNotifications.end()});
}
SimulatedApplication failingObserverCreation(ProcessIdentifier process) {
    auto result = application(process);
    result.observerCreationFails = true;
    return result;
}

std::string refusalLine(const std::string& notification, ProcessIdentifier process) {
    return "AXObserverAddNotification(" + notification + ") failed for process " +
           std::to_string(process) + " (AXError -25207)";
}
// One attachment attempt on an application that refuses every notification.
Lines refusedEverythingLines(ProcessIdentifier process) {
    Lines lines;
    for (const auto& notification : allNotifications) {
        lines.push_back(refusalLine(notification, process));
    }
    lines.push_back("Process " + std::to_string(process) +
                    " accepted no Accessibility notifications; using application-activation "
                    "fallback");
    return lines;
}
std::string creationFailureLine(ProcessIdentifier process) {
    return "AXObserverCreate failed for process " + std::to_string(process) +
           " (AXError -25204); using application-activation fallback";
}
std::string startedLine(int attached) {
    return "Started window focus observation; attached Accessibility observers to " +
           std::to_string(attached) + " applications";
}

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
        desktop->runLoop().runUntilIdle();
    }
    void addWindow(ProcessIdentifier process, WindowIdentifier window) {
        SimulatedWindow created;
        created.windowIdentifier = window;
        created.owningProcessIdentifier = process;
        ASSERT_TRUE(desktop->createWindow(std::move(created)));
    }
    void settle() { desktop->runLoop().runUntilIdle(); }

    // The lines logged since the last call; every one must be a recency debug line.
    Lines takeLog() {
        Lines lines;
        for (auto& record : logCapture.sink().takeRecords()) {
            EXPECT_EQ(record.category, LogCategory::recencytracking) << record.message;
            EXPECT_EQ(record.level, LogLevel::debug) << record.message;
            lines.push_back(std::move(record.message));
        }
        return lines;
    }

    std::size_t observers(ProcessIdentifier process) {
        return desktop->accessibility().liveObserverCount(process);
    }
    std::size_t retriesScheduled() { return desktop->runLoop().scheduledTimerHistory().size(); }
    void expectWorkspaceObservers(std::size_t count) {
        for (const char* name : workspaceNotifications) {
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
    launch(application(201));
    launch(application(301, ApplicationActivationPolicy::accessory));
    launch(failingObserverCreation(202));

    source->startObserving();
    source->startObserving();
    // A failure while starting is not retried.
    desktop->runLoop().advance(30);

    EXPECT_EQ(takeLog(), (Lines{creationFailureLine(202), startedLine(1)}));
    expectWorkspaceObservers(1);
    EXPECT_EQ(observers(201), 1u);
    EXPECT_EQ(desktop->accessibility().registeredNotifications(201), allNotifications);
    EXPECT_EQ(observers(202), 0u);
    EXPECT_EQ(observers(301), 0u);
    EXPECT_EQ(desktop->accessibility().messagingTimeoutsSet(), std::vector<float>{0.25f});

    launch(application(203));
    launch(application(302, ApplicationActivationPolicy::prohibited));
    EXPECT_EQ(observers(203), 1u);
    EXPECT_EQ(observers(302), 0u);
    desktop->activateApplication(301);
    desktop->activateApplication(302);
    desktop->terminateApplication(301);
    desktop->terminateApplication(302);
    desktop->runLoop().advance(30);
    EXPECT_EQ(observer->take(),
              (Lines{"activated 301", "activated 302", "terminated 301", "terminated 302"}));
    EXPECT_TRUE(takeLog().empty());
    EXPECT_EQ(retriesScheduled(), 0u);

    source->stopObserving();
    source->stopObserving();

    EXPECT_EQ(takeLog(), Lines{"Stopped window focus observation"});
    expectWorkspaceObservers(0);
    EXPECT_EQ(observers(201), 0u);
    EXPECT_EQ(observers(203), 0u);
    desktop->activateApplication(201);
    settle();
    EXPECT_TRUE(observer->events.empty());
}

TEST_F(AccessibilityWindowFocusEventSourceTest, ActivationAttachesAMissedApplicationOnce) {
    launch(application(201));
    launch(failingObserverCreation(202));
    source->startObserving();
    takeLog();

    desktop->activateApplication(202);
    desktop->runLoop().advance(30);

    EXPECT_EQ(observer->take(), Lines{"activated 202"});
    EXPECT_EQ(takeLog(), Lines{creationFailureLine(202)});
    EXPECT_EQ(retriesScheduled(), 0u);

    desktop->application(202)->observerCreationFails = false;
    desktop->activateApplication(201);
    desktop->activateApplication(202);
    settle();
    addWindow(202, 21);
    settle();

    // 202 had no observer yet when its own activation was posted, so only the workspace tells.
    EXPECT_EQ(observer->take(),
              (Lines{"activated 201", "activated 201", "activated 202", "created 202 202/21"}));
    EXPECT_TRUE(takeLog().empty());
    EXPECT_EQ(observers(201), 1u);
    EXPECT_EQ(observers(202), 1u);
}

TEST_F(AccessibilityWindowFocusEventSourceTest, OneAcceptedNotificationOfSixIsEnough) {
    launch(
        refusing(201, {"AXFocusedWindowChanged", "AXApplicationActivated", "AXUIElementDestroyed",
                       "AXWindowMiniaturized", "AXWindowDeminiaturized"}));
    launch(refusingAll(202));

    source->startObserving();

    Lines expected{
        refusalLine("AXFocusedWindowChanged", 201), refusalLine("AXApplicationActivated", 201),
        refusalLine("AXUIElementDestroyed", 201), refusalLine("AXWindowMiniaturized", 201),
        refusalLine("AXWindowDeminiaturized", 201)};
    for (const auto& line : refusedEverythingLines(202)) {
        expected.push_back(line);
    }
    expected.push_back(startedLine(1));
    EXPECT_EQ(takeLog(), expected);
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
    takeLog();

    launch(refusingAll(201));
    EXPECT_EQ(takeLog(), refusedEverythingLines(201));
    for (int retry = 0; retry < 2; ++retry) {
        desktop->runLoop().advance(1.75);
        EXPECT_TRUE(takeLog().empty());
        desktop->runLoop().advance(0.25);
        auto expected = refusedEverythingLines(201);
        if (retry == 1) {
            expected.push_back(
                "Giving up Accessibility observer attachment for process 201; using "
                "application-activation fallback");
        }
        EXPECT_EQ(takeLog(), expected);
    }
    desktop->runLoop().advance(60);
    EXPECT_TRUE(takeLog().empty());
    EXPECT_TRUE(observer->events.empty());
    desktop->activateApplication(201);
    desktop->runLoop().advance(60);
    EXPECT_EQ(takeLog(), refusedEverythingLines(201));
    EXPECT_EQ(observer->take(), Lines{"activated 201"});

    launch(failingObserverCreation(202));
    EXPECT_EQ(takeLog(), Lines{creationFailureLine(202)});
    desktop->application(202)->observerCreationFails = false;
    desktop->runLoop().advance(2.0);
    EXPECT_TRUE(source->isAttached(202));

    launch(failingObserverCreation(203));
    EXPECT_EQ(takeLog(), Lines{creationFailureLine(203)});
    desktop->terminateApplication(203);
    desktop->runLoop().advance(30);
    EXPECT_EQ(observer->take(), Lines{"terminated 203"});
    EXPECT_TRUE(takeLog().empty());

    // The retry would succeed now.
    launch(failingObserverCreation(204));
    EXPECT_EQ(takeLog(), Lines{creationFailureLine(204)});
    source->stopObserving();
    desktop->application(204)->observerCreationFails = false;
    desktop->runLoop().advance(30);
    EXPECT_EQ(takeLog(), Lines{"Stopped window focus observation"});
    EXPECT_EQ(observers(204), 0u);
    using Delays = std::vector<std::pair<double, double>>;
    EXPECT_EQ(desktop->runLoop().scheduledTimerHistory(), Delays(5, {2.0, 0.0}));
}

TEST_F(AccessibilityWindowFocusEventSourceTest, DesktopChangesArriveInPostingOrder) {
    launch(application(201));
    launch(application(202));
    source->startObserving();
    takeLog();

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
    EXPECT_TRUE(takeLog().empty());
}

// A process comes from the element, else from the observer that delivered the notification.
TEST_F(AccessibilityWindowFocusEventSourceTest, NotificationsNeedAResolvableProcess) {
    auto recording = record();
    auto unreadable = application(201);
    unreadable.processIdentifierLookupFails = true;
    launch(unreadable);
    source->startObserving();
    takeLog();

    addWindow(201, 21);
    desktop->focusWindow(21);
    settle();
    EXPECT_EQ(observer->take(), (Lines{"created 201 201/21", "activated 201", "activated 201",
                                       "focused 201 201/21"}));

    // Arguments the simulation never delivers: a notification nobody asked for, an observer
    // nobody made, an element of process 0.
    const auto attached = recording->lastObserver();
    ASSERT_NE(attached, nullptr);
    recording->call(attached, 201, "AXTitleChanged");
    recording->call(std::make_shared<AccessibilityObserverObject>(), 201, "AXWindowCreated");
    recording->call(attached, 0, "AXFocusedWindowChanged");
    EXPECT_TRUE(observer->events.empty());
    EXPECT_EQ(takeLog(),
              (Lines{"Dropped Accessibility notification AXWindowCreated: no resolvable process "
                     "identifier",
                     "Dropped Accessibility notification AXFocusedWindowChanged: no resolvable "
                     "process identifier"}));
}

TEST_F(AccessibilityWindowFocusEventSourceTest, EveryDetachUnregistersAndUnschedulesTheObserver) {
    auto recording = record();
    launch(application(201));
    launch(application(202));
    source->startObserving();
    ASSERT_EQ(recording->sources.size(), 2u);
    const auto& runLoop = desktop->runLoop();
    EXPECT_TRUE(runLoop.isSourceScheduled(recording->sources[0]));
    EXPECT_TRUE(runLoop.isSourceScheduled(recording->sources[1]));

    desktop->terminateApplication(201);
    settle();
    EXPECT_EQ(observer->take(), Lines{"terminated 201"});
    EXPECT_FALSE(source->isAttached(201));
    EXPECT_EQ(observers(201), 0u);
    EXPECT_FALSE(runLoop.isSourceScheduled(recording->sources[0]));
    EXPECT_TRUE(runLoop.isSourceScheduled(recording->sources[1]));
    EXPECT_EQ(std::exchange(recording->removedNotifications, {}), allNotifications);

    source->stopObserving();
    EXPECT_FALSE(runLoop.isSourceScheduled(recording->sources[1]));
    EXPECT_EQ(std::exchange(recording->removedNotifications, {}), allNotifications);

    source->startObserving();
    ASSERT_EQ(recording->sources.size(), 3u);
    EXPECT_TRUE(runLoop.isSourceScheduled(recording->sources[2]));
    source.reset();
    EXPECT_FALSE(runLoop.isSourceScheduled(recording->sources[2]));
    EXPECT_EQ(recording->removedNotifications, allNotifications);
}

TEST_F(AccessibilityWindowFocusEventSourceTest, GoneObserverMissesEventsGoneSourceReleasesAll) {
    launch(application(201));
    source->startObserving();
    observer.reset();
    addWindow(201, 11);
    desktop->focusWindow(11);
    settle();

    auto replacement = std::make_shared<RecordingObserver>();
    source->setObserver(replacement);
    launch(application(202));
    addWindow(202, 21);
    settle();
    EXPECT_EQ(replacement->take(), Lines{"created 202 202/21"});

    launch(failingObserverCreation(203));
    takeLog();
    source.reset();
    desktop->application(203)->observerCreationFails = false;
    desktop->focusWindow(11);
    desktop->runLoop().advance(30);

    EXPECT_TRUE(replacement->events.empty());
    EXPECT_TRUE(takeLog().empty());
    EXPECT_EQ(observers(201), 0u);
    EXPECT_EQ(observers(202), 0u);
    EXPECT_EQ(observers(203), 0u);
    expectWorkspaceObservers(0);
}

}  // namespace
}  // namespace orvane
