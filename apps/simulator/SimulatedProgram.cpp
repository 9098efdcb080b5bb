#include "SimulatedProgram.h"

#include <algorithm>
#include <sstream>
#include <string>
#include <vector>

#include "TranscriptLogSink.h"
#include "TranscriptOverlayPresenter.h"
#include "TranscriptRecencyOrdering.h"
#include "TranscriptWindowActivation.h"
#include "TranscriptWindowEnumeration.h"
#include "WindowDescription.h"
#include "activation/AccessibilityWindowActivationService.h"
#include "activation/SkyLightPrivateWindowFocusService.h"
#include "enumeration/AccessibilityWindowEnumerationService.h"
#include "launcher/InstalledApplicationLauncherMode.h"
#include "launcher/LauncherSessionCoordinator.h"
#include "launcher/WindowLauncherMode.h"
#include "overlay/FixedAdvanceOverlayTextMeasurer.h"
#include "overlay/OverlayTextRenderer.h"
#include "overlay/OverlayViewBuilder.h"
#include "platform/simulated/SimulatedKeyboardEvent.h"
#include "preferences/SwitcherPreferencesCodec.h"
#include "thumbnails/ScreenCaptureKitWindowThumbnailCaptureService.h"

namespace orvane::simulator {

namespace {

std::string formatSeconds(double seconds) {
    std::ostringstream text;
    text << seconds;
    return text.str();
}

}  // namespace

SimulatedProgram::SimulatedProgram(Transcript& transcript, TranscriptLogSink& logSink)
    : transcript_(transcript),
      logSink_(logSink),
      desktop_(SimulatedDesktop::make(programProcessIdentifier)),
      preferences_(std::make_shared<StandInPreferencesProvider>()) {
    auto runLoop = desktop_->runLoopPort();
    auto clock = [runLoop] { return runLoop->now(); };
    auto workspace = desktop_->workspacePort();
    auto accessibility = desktop_->accessibilityPort();

    skyLight_ = std::make_shared<SimulatedSkyLight>(desktop_);
    screenCapture_ = std::make_shared<SimulatedScreenCapture>(desktop_);
    fileSystem_ = std::make_shared<SimulatedFileSystem>();
    fileSystem_->createApplicationFolders();
    applicationLauncher_ = std::make_shared<SimulatedApplicationLauncher>(runLoop);
    sound_ = std::make_shared<SimulatedSound>();

    focusEventSource_ = std::make_shared<AccessibilityWindowFocusEventSource>(
        workspace, desktop_->workspaceNotificationCenter(), accessibility, runLoop);
    tracker_ = std::make_shared<MostRecentlyUsedWindowTracker>(focusEventSource_, clock);
    focusEventSource_->setObserver(tracker_);
    auto ordering = std::make_shared<TranscriptRecencyOrdering>(tracker_, transcript);
    auto enumeration = std::make_shared<TranscriptWindowEnumeration>(
        std::make_shared<AccessibilityWindowEnumerationService>(
            programProcessIdentifier, desktop_->windowListPort(), accessibility, workspace),
        transcript);
    auto activation = std::make_shared<TranscriptWindowActivation>(
        std::make_shared<AccessibilityWindowActivationService>(
            tracker_, std::make_shared<SkyLightPrivateWindowFocusService>(skyLight_), accessibility,
            workspace),
        transcript);

    overlayPanel_ = std::make_shared<SimulatedOverlayPanel>();
    overlayCoordinator_ = std::make_shared<SwitcherOverlayCoordinator>(
        std::make_shared<ScreenCaptureKitWindowThumbnailCaptureService>(clock, screenCapture_,
                                                                        runLoop),
        preferences_, desktop_->screensPort(), overlayPanel_, runLoop);
    auto overlay = std::make_shared<TranscriptOverlayPresenter>(overlayCoordinator_, transcript);

    sessionCoordinator_ = std::make_shared<SwitcherSessionCoordinator>(
        enumeration, ordering, overlay, activation,
        [workspace]() -> std::optional<ProcessIdentifier> {
            auto frontmost = workspace->frontmostApplication();
            if (!frontmost) {
                return std::nullopt;
            }
            return frontmost->processIdentifier;
        });
    launcherSession_ = std::make_shared<TranscriptLauncherSession>(
        std::make_shared<LauncherSessionCoordinator>(
            std::make_shared<WindowLauncherMode>(enumeration, ordering, activation, workspace,
                                                 sound_),
            std::make_shared<InstalledApplicationLauncherMode>(fileSystem_, applicationLauncher_,
                                                               sound_, runLoop, clock),
            overlay),
        transcript);
    interceptor_ = std::make_shared<GlobalShortcutInterceptor>(
        sessionCoordinator_, launcherSession_, preferences_,
        GlobalShortcutInterceptor::Platform{desktop_->eventTapPort(),
                                            desktop_->workspaceNotificationCenter(),
                                            desktop_->distributedNotificationCenter(), runLoop});
    // The launch: tracking first, then the tap.
    tracker_->startTracking();
    interceptor_->installEventTap();
}

SimulatedProgram::~SimulatedProgram() {
    tracker_->stopTracking();
}

void SimulatedProgram::perform(const ScenarioStep& step) {
    std::visit([&](const auto& action) { perform(step.lineNumber, action); }, step.action);
    settle();
}

void SimulatedProgram::settle() {
    desktop_->runLoop().runUntilIdle();
}

void SimulatedProgram::summarize() {
    transcript_.plain(
        std::string("end: machine ") +
        switcherInteractionStateName(interceptor_->interactionStateMachine().state) + ", session " +
        (sessionCoordinator_->isSessionActive() ? "active" : "inactive") + ", launcher " +
        (launcherSession_->isLauncherSessionActive() ? "open" : "closed"));
}

void SimulatedProgram::perform(int lineNumber, const LaunchStep& step) {
    const auto& running = step.application.runningApplication;
    transcript_.headline(lineNumber, "launch pid " + std::to_string(running.processIdentifier) +
                                         " \"" + running.localizedName.value_or("") + "\"");
    desktop_->launchApplication(step.application);
}

void SimulatedProgram::perform(int lineNumber, const QuitStep& step) {
    transcript_.headline(lineNumber, "quit pid " + std::to_string(step.processIdentifier));
    desktop_->terminateApplication(step.processIdentifier);
}

void SimulatedProgram::perform(int lineNumber, const AddWindowStep& step) {
    const auto& window = step.window;
    if (desktop_->application(window.owningProcessIdentifier) == nullptr) {
        SimulatedApplication application;
        application.runningApplication.processIdentifier = window.owningProcessIdentifier;
        application.runningApplication.localizedName = step.applicationName;
        desktop_->launchApplication(std::move(application));
        // The launch is told before the window, as on a real desktop.
        settle();
    }
    const auto* application = desktop_->application(window.owningProcessIdentifier);
    transcript_.headline(lineNumber,
                         std::string(step.inFront ? "create" : "window") + " " +
                             std::to_string(window.windowIdentifier) + " \"" +
                             application->runningApplication.localizedName.value_or("") + "\" \"" +
                             window.listTitle.value_or(window.accessibilityTitle.value_or("")) +
                             "\" pid " + std::to_string(window.owningProcessIdentifier) +
                             (window.isMinimized ? " minimized" : ""));
    desktop_->createWindow(window, step.inFront);
}

void SimulatedProgram::perform(int lineNumber, const DestroyWindowStep& step) {
    transcript_.headline(lineNumber, "destroy window " + std::to_string(step.windowIdentifier));
    desktop_->destroyWindow(step.windowIdentifier);
}

void SimulatedProgram::perform(int lineNumber, const MinimizeWindowStep& step) {
    transcript_.headline(lineNumber, std::string(step.minimized ? "minimize" : "unminimize") +
                                         " window " + std::to_string(step.windowIdentifier));
    desktop_->setWindowMinimized(step.windowIdentifier, step.minimized);
}

void SimulatedProgram::perform(int lineNumber, const FocusWindowStep& step) {
    transcript_.headline(lineNumber, "focus window " + std::to_string(step.windowIdentifier));
    desktop_->focusWindow(step.windowIdentifier);
}

void SimulatedProgram::perform(int lineNumber, const SetFrontmostStep& step) {
    if (!step.processIdentifier) {
        transcript_.headline(lineNumber, "frontmost none");
        desktop_->clearFrontmost();
        return;
    }
    transcript_.headline(lineNumber, "frontmost pid " + std::to_string(*step.processIdentifier));
    desktop_->activateApplication(*step.processIdentifier);
}

void SimulatedProgram::perform(int lineNumber, const AdvanceClockStep& step) {
    transcript_.headline(lineNumber, "advance " + formatSeconds(step.seconds) + " s");
    desktop_->runLoop().advance(step.seconds);
}

void SimulatedProgram::perform(int lineNumber, const WindowListFaultStep& step) {
    std::string failing;
    for (auto options : step.failingOptions) {
        failing += failing.empty() ? "" : ",";
        failing += std::to_string(options);
    }
    transcript_.headline(lineNumber, "window-list fails " + (failing.empty() ? "none" : failing) +
                                         (step.malformed ? " malformed" : ""));
    desktop_->windowList().failingOptions = step.failingOptions;
    desktop_->windowList().answersMalformedList = step.malformed;
}

void SimulatedProgram::perform(int lineNumber, const SetPreferencesStep& step) {
    auto encoded = SwitcherPreferencesCodec::encode(step.preferences);
    transcript_.headline(lineNumber, "preferences " + encoded.bytes.value_or(encoded.error));
    preferences_->setPreferences(step.preferences);
}

void SimulatedProgram::perform(int lineNumber, const NoteStep& step) {
    transcript_.headline(lineNumber, "note: " + step.text);
}

void SimulatedProgram::perform(int lineNumber, const LogLevelStep& step) {
    transcript_.headline(lineNumber, "log-level " + std::string(logLevelName(step.minimumLevel)));
    logSink_.setMinimumLevel(step.minimumLevel);
}

void SimulatedProgram::perform(int lineNumber, const PrintStep& step) {
    if (step.subject == PrintStep::Subject::overlay) {
        transcript_.headline(lineNumber, "print overlay");
        printOverlay();
        return;
    }
    transcript_.headline(lineNumber, "print desktop");
    printDesktop();
}

void SimulatedProgram::perform(int lineNumber, const InstallApplicationStep& step) {
    transcript_.headline(lineNumber, "installed " + step.directory + "/" + step.bundleName);
    fileSystem_->addApplication(step.directory, step.bundleName);
}

void SimulatedProgram::perform(int lineNumber, const ScreenRecordingStep& step) {
    transcript_.headline(lineNumber,
                         std::string("screen-recording ") + (step.granted ? "granted" : "denied"));
    screenCapture_->screenCaptureAccessGranted = step.granted;
}

void SimulatedProgram::printOverlay() {
    const auto& frame = overlayPanel_->frame();
    std::ostringstream placement;
    placement << (overlayPanel_->isOrderedFront() ? "on screen" : "hidden") << ", frame "
              << frame.origin.x << "," << frame.origin.y << " " << frame.size.width << "x"
              << frame.size.height;
    transcript_.effect("overlay", placement.str());
    if (!overlayPanel_->isOrderedFront()) {
        return;
    }
    auto workspace = desktop_->workspacePort();
    const OverlayViewBuilder builder(
        [workspace](ProcessIdentifier process, const std::string&) -> std::optional<ImageHandle> {
            auto application = workspace->runningApplication(process);
            return application ? application->icon : std::nullopt;
        },
        std::make_shared<FixedAdvanceOverlayTextMeasurer>());
    std::istringstream rendering(
        OverlayTextRenderer::render(builder.build(*overlayCoordinator_->viewModel(), frame.size)));
    for (std::string line; std::getline(rendering, line);) {
        transcript_.effect("view", line);
    }
}

void SimulatedProgram::printDesktop() {
    const auto frontmost = desktop_->frontmostProcessIdentifier();
    const auto focused = desktop_->focusedWindow();
    transcript_.effect("desktop",
                       "frontmost " +
                           (frontmost ? "pid " + std::to_string(*frontmost) : std::string("none")) +
                           ", focused window " +
                           (focused ? std::to_string(*focused) : std::string("none")) + ", time " +
                           formatSeconds(desktop_->runLoop().now().secondsSinceReferenceDate -
                                         SimulatedRunLoop::defaultStartTime) +
                           " s");
    for (auto identifier : desktop_->windowsFrontToBack()) {
        const auto& window = *desktop_->window(identifier);
        const auto* application = desktop_->application(window.owningProcessIdentifier);
        transcript_.effect(
            "desktop", "window " + std::to_string(identifier) + " \"" +
                           application->runningApplication.localizedName.value_or("") + "\" \"" +
                           window.listTitle.value_or("") + "\" pid " +
                           std::to_string(window.owningProcessIdentifier) +
                           (window.isMinimized ? " minimized" : "") +
                           (window.isOffScreen ? " offscreen" : ""));
    }
}

void SimulatedProgram::perform(int lineNumber, const KeyEventStep& step) {
    transcript_.headline(lineNumber, step.description);
    const bool wasActive = sessionCoordinator_->isSessionActive();
    const auto previousIndex = sessionCoordinator_->selectedIndex();

    SimulatedKeyboardEvent event(step.keyCode, step.flags, step.isAutorepeat, step.typedText);
    const auto delivery = desktop_->postKeyboardEvent(step.type, event);

    reportSessionChange(wasActive, previousIndex);
    std::vector<EventKeyCode> consumed(interceptor_->keyCodesWithConsumedKeyDown().begin(),
                                       interceptor_->keyCodesWithConsumedKeyDown().end());
    std::sort(consumed.begin(), consumed.end());
    std::string consumedText;
    for (auto keyCode : consumed) {
        consumedText += consumedText.empty() ? "" : ", ";
        consumedText += std::to_string(keyCode);
    }
    std::string receiver = "swallowed";
    if (!delivery.swallowed) {
        receiver = delivery.receiver ? "passed to pid " + std::to_string(*delivery.receiver)
                                     : std::string("passed");
    }
    transcript_.effect(
        "result", receiver + "; machine " +
                      switcherInteractionStateName(interceptor_->interactionStateMachine().state) +
                      "; consumed [" + consumedText + "]");
}

void SimulatedProgram::reportSessionChange(bool wasActive, std::ptrdiff_t previousIndex) {
    const bool isActive = sessionCoordinator_->isSessionActive();
    const auto index = sessionCoordinator_->selectedIndex();
    if (wasActive && !isActive) {
        transcript_.effect("session", "ended");
        return;
    }
    if (!isActive || (wasActive && index == previousIndex)) {
        return;
    }
    const auto& windows = sessionCoordinator_->sessionWindows();
    std::string text =
        wasActive ? "selected "
                  : "started with " + std::to_string(windows.size()) + " windows, selected ";
    text += std::to_string(index) + ": " + describeWindow(windows[static_cast<std::size_t>(index)]);
    transcript_.effect("session", text);
}

}  // namespace orvane::simulator
