// The program as far as it is built, over the simulated desktop: the services joined the way the
// application joins them, with stand-ins where a service is still to come. Plays scenario steps and
// writes what each did to the transcript.
#pragma once

#include <memory>

#include "Scenario.h"
#include "StandInPreferencesProvider.h"
#include "Transcript.h"
#include "TranscriptLauncherSession.h"
#include "core/SwitcherSessionCoordinator.h"
#include "interception/GlobalShortcutInterceptor.h"
#include "overlay/SwitcherOverlayCoordinator.h"
#include "platform/simulated/SimulatedApplicationLauncher.h"
#include "platform/simulated/SimulatedDesktop.h"
#include "platform/simulated/SimulatedFileSystem.h"
#include "platform/simulated/SimulatedOverlayPanel.h"
#include "platform/simulated/SimulatedScreenCapture.h"
#include "platform/simulated/SimulatedSkyLight.h"
#include "platform/simulated/SimulatedSound.h"
#include "recency/AccessibilityWindowFocusEventSource.h"
#include "recency/MostRecentlyUsedWindowTracker.h"

namespace orvane::simulator {

class TranscriptLogSink;

class SimulatedProgram {
  public:
    // The program's own process on the simulated desktop.
    static constexpr ProcessIdentifier programProcessIdentifier = 100;

    SimulatedProgram(Transcript& transcript, TranscriptLogSink& logSink);
    ~SimulatedProgram();
    SimulatedProgram(const SimulatedProgram&) = delete;
    SimulatedProgram& operator=(const SimulatedProgram&) = delete;

    void perform(const ScenarioStep& step);
    // The closing line: where the gesture stood at the end.
    void summarize();

  private:
    void perform(int lineNumber, const LaunchStep& step);
    void perform(int lineNumber, const QuitStep& step);
    void perform(int lineNumber, const AddWindowStep& step);
    void perform(int lineNumber, const DestroyWindowStep& step);
    void perform(int lineNumber, const MinimizeWindowStep& step);
    void perform(int lineNumber, const FocusWindowStep& step);
    void perform(int lineNumber, const SetFrontmostStep& step);
    void perform(int lineNumber, const AdvanceClockStep& step);
    void perform(int lineNumber, const WindowListFaultStep& step);
    void perform(int lineNumber, const SetPreferencesStep& step);
    void perform(int lineNumber, const KeyEventStep& step);
    void perform(int lineNumber, const PrintStep& step);
    void perform(int lineNumber, const LogLevelStep& step);
    void perform(int lineNumber, const NoteStep& step);
    void perform(int lineNumber, const InstallApplicationStep& step);
    void perform(int lineNumber, const ScreenRecordingStep& step);

    void reportSessionChange(bool wasActive, std::ptrdiff_t previousIndex);
    void printDesktop();
    void printOverlay();
    // Lets the desktop deliver what the step caused.
    void settle();

    Transcript& transcript_;
    TranscriptLogSink& logSink_;
    std::shared_ptr<SimulatedDesktop> desktop_;
    std::shared_ptr<StandInPreferencesProvider> preferences_;
    std::shared_ptr<AccessibilityWindowFocusEventSource> focusEventSource_;
    std::shared_ptr<MostRecentlyUsedWindowTracker> tracker_;
    std::shared_ptr<SwitcherSessionCoordinator> sessionCoordinator_;
    std::shared_ptr<SimulatedSkyLight> skyLight_;
    std::shared_ptr<SimulatedScreenCapture> screenCapture_;
    std::shared_ptr<SimulatedFileSystem> fileSystem_;
    std::shared_ptr<SimulatedApplicationLauncher> applicationLauncher_;
    std::shared_ptr<SimulatedSound> sound_;
    std::shared_ptr<TranscriptLauncherSession> launcherSession_;
    std::shared_ptr<SimulatedOverlayPanel> overlayPanel_;
    std::shared_ptr<SwitcherOverlayCoordinator> overlayCoordinator_;
    std::shared_ptr<GlobalShortcutInterceptor> interceptor_;
};

}  // namespace orvane::simulator
