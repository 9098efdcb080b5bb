#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "activation/AccessibilityWindowActivationService.h"
#include "activation/SkyLightPrivateWindowFocusService.h"
#include "core/ScopedLogCapture.h"
#include "platform/simulated/SimulatedDesktop.h"
#include "platform/simulated/SimulatedSkyLight.h"
#include "recency/AccessibilityWindowFocusEventSource.h"
#include "recency/MostRecentlyUsedWindowTracker.h"
#include "support/ForwardingAccessibilityPort.h"
#include "support/SimulatedDesktopBuilders.h"
#include "support/TakeLog.h"

namespace orvane {
namespace {

// Everything the service talks to in one double over the simulated desktop, writing one journal
// so that the order of all the steps shows. The private focus answers as told and moves nothing.
class Collaborators final : public ForwardingAccessibilityPort,
                            public PrivateWindowFocusService,
                            public WorkspacePort,
                            public MostRecentlyUsedWindowOrdering {
  public:
    explicit Collaborators(const std::shared_ptr<SimulatedDesktop>& desktop)
        : ForwardingAccessibilityPort(desktop->accessibilityPort()),
          workspace_(desktop->workspacePort()) {}

    AccessibilityError setAttributeValue(const AccessibilityElementHandle& element,
                                         std::string_view attribute,
                                         const AccessibilityValue& value) override {
        note(std::string(attribute) + (std::get<bool>(value.storage) ? "=true" : "=false"));
        return isRefused(attribute) ? accessibility_error::cannotComplete
                                    : inner_->setAttributeValue(element, attribute, value);
    }
    AccessibilityError performAction(const AccessibilityElementHandle& element,
                                     std::string_view action) override {
        note(std::string(action));
        return isRefused(action) ? accessibility_error::cannotComplete
                                 : inner_->performAction(element, action);
    }
    bool focusWindow(WindowIdentifier window, ProcessIdentifier process) override {
        note("focus " + std::to_string(window) + "/" + std::to_string(process));
        return privateAnswer;
    }
    std::vector<RunningApplication> runningApplications() const override { return {}; }
    std::optional<RunningApplication> runningApplication(ProcessIdentifier process) const override {
        note("lookup " + std::to_string(process));
        return workspace_->runningApplication(process);
    }
    std::optional<RunningApplication> frontmostApplication() const override { return {}; }
    bool activateApplication(ProcessIdentifier process, unsigned options) override {
        note("activate " + std::to_string(process) + "/" + std::to_string(options));
        return workspace_->activateApplication(process, options);
    }
    void startTracking() override {}
    void stopTracking() override {}
    std::vector<SwitchableWindow> orderedByRecency(std::vector<SwitchableWindow> windows) override {
        return windows;
    }
    void recordImmediateFocus(const SwitchableWindow& window) override {
        note("record " + std::to_string(window.windowIdentifier));
    }

    mutable std::string journal;
    bool privateAnswer = true;
    // Names of the Accessibility attributes and actions that fail, separated by spaces.
    std::string refused;

  private:
    void note(const std::string& entry) const { journal += (journal.empty() ? "" : " ") + entry; }
    bool isRefused(std::string_view name) const {
        return (" " + refused + " ").find(" " + std::string(name) + " ") != std::string::npos;
    }

    std::shared_ptr<SimulatedWorkspace> workspace_;
};

SwitchableWindow switchable(WindowIdentifier window, ProcessIdentifier process,
                            std::string application, bool minimized) {
    SwitchableWindow result;
    result.windowIdentifier = window;
    result.owningProcessIdentifier = process;
    result.owningApplicationName = std::move(application);
    result.accessibilityElement = std::make_shared<const AccessibilityWindowElement>(
        SimulatedAccessibility::windowElement(process, window));
    result.isMinimized = minimized;
    return result;
}

// Safari (400) is frontmost with window 401; Notes (500) waits behind with window 501.
struct Scene {
    explicit Scene(bool minimized) : minimized(minimized) {
        for (auto [process, name] : {std::pair{400, "Safari"}, std::pair{500, "Notes"}}) {
            desktop->launchApplication(simulatedApplication(process, name));
            auto window = simulatedWindow(static_cast<WindowIdentifier>(process + 1), process);
            window.isMinimized = minimized && process == 500;
            desktop->createWindow(window);
        }
        desktop->focusWindow(401);
        desktop->runLoop().runUntilIdle();
    }

    std::string activateNotes() {
        service.activate(switchable(501, 500, "Notes", minimized));
        return collaborators->journal;
    }

    bool minimized;
    std::shared_ptr<SimulatedDesktop> desktop = SimulatedDesktop::make(100);
    std::shared_ptr<Collaborators> collaborators = std::make_shared<Collaborators>(desktop);
    AccessibilityWindowActivationService service{collaborators, collaborators, collaborators,
                                                 collaborators};
};

TEST(AccessibilityWindowActivationService, BothRoutesTakeTheirStepsInOrder) {
    struct Case {
        bool minimized, privateAnswer;
        std::string journal;
    };
    const std::string publicRoute = "lookup 500 activate 500/0 record 501";
    const std::vector<Case> cases{
        {false, true, "focus 501/500 AXRaise AXMain=true record 501"},
        {true, true, "AXMinimized=false focus 501/500 AXRaise AXMain=true record 501"},
        {false, false, "focus 501/500 AXRaise AXMain=true " + publicRoute},
        {true, false, "AXMinimized=false focus 501/500 AXRaise AXMain=true " + publicRoute},
    };
    ScopedLogCapture logCapture;
    for (const auto& each : cases) {
        SCOPED_TRACE(each.journal);
        Scene scene(each.minimized);
        scene.collaborators->privateAnswer = each.privateAnswer;
        EXPECT_EQ(scene.activateNotes(), each.journal);
        EXPECT_EQ(takeLog(logCapture, LogCategory::windowactivation, LogLevel::error), "");
        EXPECT_FALSE(scene.desktop->window(501)->isMinimized);
        // Only the public route brings Notes forward here.
        EXPECT_EQ(scene.desktop->frontmostProcessIdentifier(), each.privateAnswer ? 400 : 500);
        EXPECT_EQ(scene.desktop->focusedWindow(), each.privateAnswer ? 401u : 501u);
        EXPECT_EQ(scene.desktop->windowsFrontToBack().front(), each.privateAnswer ? 401u : 501u);
    }
}

TEST(AccessibilityWindowActivationService, EveryFailureIsLoggedAndTheSequenceGoesOn) {
    // Notes is minimized in each case.
    struct Case {
        std::string refused;
        bool refuseActivation, processGone, privateAnswer;
        std::string journalAfterMain, log;
    };
    const std::string unminimize = "Failed to unminimize window of Notes\n";
    const std::string raise = "Failed to raise window of Notes\n";
    const std::string main = "Failed to mark window main for Notes\n";
    const std::vector<Case> cases{
        {"AXRaise", false, false, true, "record 501", raise},
        {"AXMinimized AXMain", false, false, false, "lookup 500 activate 500/0 record 501",
         unminimize + main},
        {"", true, false, false, "lookup 500 activate 500/0 record 501",
         "Failed to activate application Notes\n"},
        {"", false, true, false, "lookup 500 record 501",
         unminimize + raise + main + "No running application found for Notes\n"},
        {"", false, true, true, "record 501", unminimize + raise + main},
    };
    ScopedLogCapture logCapture;
    for (const auto& each : cases) {
        SCOPED_TRACE(each.log);
        Scene scene(true);
        scene.collaborators->refused = each.refused;
        scene.desktop->workspacePort()->refusesActivation = each.refuseActivation;
        if (each.processGone) {
            scene.desktop->terminateApplication(500);
        }
        scene.collaborators->privateAnswer = each.privateAnswer;
        EXPECT_EQ(scene.activateNotes(),
                  "AXMinimized=false focus 501/500 AXRaise AXMain=true " + each.journalAfterMain);
        EXPECT_EQ(takeLog(logCapture, LogCategory::windowactivation, LogLevel::error), each.log);
    }
}

// The real private focus over the simulated SkyLight, with the real tracker told by both the
// service and the desktop's focus notifications.
TEST(AccessibilityWindowActivationService, BringsAMinimizedBackgroundWindowForwardPrivately) {
    ScopedLogCapture logCapture;
    Scene scene(true);
    auto& desktop = *scene.desktop;
    auto source = std::make_shared<AccessibilityWindowFocusEventSource>(
        desktop.workspacePort(), desktop.workspaceNotificationCenter(), desktop.accessibilityPort(),
        desktop.runLoopPort());
    auto tracker = std::make_shared<MostRecentlyUsedWindowTracker>(
        source, [&] { return desktop.runLoop().now(); });
    source->setObserver(tracker);
    tracker->startTracking();
    const auto notes = switchable(501, 500, "Notes", true);
    tracker->orderedByRecency({switchable(401, 400, "Safari", false), notes});
    desktop.runLoop().runUntilIdle();
    ASSERT_EQ(tracker->recencyOrderedWindowIdentifiers(), std::vector<WindowIdentifier>{});
    auto skyLight = std::make_shared<SimulatedSkyLight>(scene.desktop);
    AccessibilityWindowActivationService service(
        tracker, std::make_shared<SkyLightPrivateWindowFocusService>(skyLight),
        desktop.accessibilityPort(), desktop.workspacePort());

    service.activate(notes);
    EXPECT_EQ(skyLight->calls().size(), 4u);
    EXPECT_EQ(desktop.workspacePort()->activationRequests(), std::vector<ProcessIdentifier>{});
    EXPECT_EQ(desktop.accessibility().changeLog(),
              (std::vector<std::string>{"AXMinimized=false on 501", "AXRaise on 501",
                                        "AXMain=true on 501"}));
    EXPECT_FALSE(desktop.window(501)->isMinimized);
    EXPECT_EQ(desktop.frontmostProcessIdentifier(), 500);
    EXPECT_EQ(desktop.focusedWindow(), 501u);
    EXPECT_EQ(desktop.windowsFrontToBack(), (std::vector<WindowIdentifier>{501, 401}));
    EXPECT_EQ(tracker->recencyOrderedWindowIdentifiers(), std::vector<WindowIdentifier>{501});

    // The notifications of the focus arrive afterwards and only confirm the stack.
    desktop.runLoop().runUntilIdle();
    EXPECT_EQ(tracker->recencyOrderedWindowIdentifiers(), std::vector<WindowIdentifier>{501});
    EXPECT_EQ(logCapture.sink().messages(LogCategory::windowactivation),
              std::vector<std::string>{});
    tracker->stopTracking();
}

}  // namespace
}  // namespace orvane
