// The whole program over the simulated desktop: the simulated platform handed to the program's own
// composition root, exactly as the desktop program is built. Plays scenario steps and writes what
// each caused to the transcript, as a user would see it.
#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Scenario.h"
#include "SimulatedMachine.h"
#include "Transcript.h"
#include "app/OrvaneApp.h"
#include "core/LauncherOverlayPresentation.h"

namespace orvane::simulator {

class TranscriptLogSink;

class SimulatedProgram {
  public:
    SimulatedProgram(Transcript& transcript, TranscriptLogSink& logSink);
    ~SimulatedProgram();
    SimulatedProgram(const SimulatedProgram&) = delete;
    SimulatedProgram& operator=(const SimulatedProgram&) = delete;

    // Builds the program over the desktop as it stands and lets it finish launching.
    void start();
    void perform(const ScenarioStep& step);
    // The closing line: where the gesture stood at the end.
    void summarize();

  private:
    // What a user can see of the program and the desktop, compared before and after each step.
    struct Observation {
        std::optional<ProcessIdentifier> frontmost;
        std::optional<WindowIdentifier> focusedWindow;
        std::string overlay;
        std::optional<ApplicationActivationPolicy> activationPolicy;
        std::size_t openedURLs = 0;
        std::size_t launchedApplications = 0;
        std::size_t beeps = 0;
        std::optional<std::string> pasteboard;
        // The Settings window's title while it is open; empty when it is not.
        std::string settingsWindow;
        std::optional<bool> menuBarIconShown;
        std::size_t aboutPanels = 0;
    };

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
    void perform(int lineNumber, const PermissionStep& step);
    void perform(int lineNumber, const StartProgramStep& step);
    void perform(int lineNumber, const StoredPreferencesStep& step);
    void perform(int lineNumber, const SystemEventStep& step);
    void perform(int lineNumber, const ProgramActionStep& step);
    void perform(int lineNumber, const OpenSettingsStep& step);
    void perform(int lineNumber, const WelcomeWindowStep& step);
    void perform(int lineNumber, const MenuStep& step);
    void perform(int lineNumber, const SettingsControlStep& step);
    void perform(int lineNumber, const LoginItemStep& step);
    void perform(int lineNumber, const UpdaterStep& step);

    OrvaneApplicationDelegate* delegate() const;
    Observation observe() const;
    void reportChanges(const Observation& before, const Observation& after);
    void reportSessionChange(bool wasActive, std::ptrdiff_t previousIndex);
    void printDesktop();
    void printOverlay();
    void printWelcome();
    void printProgram();
    void printMenu();
    void printSettings();
    // The Settings window draws its pane on screen, when it is open.
    void drawSettings();
    // The platform's Settings scene: one window, built at its first opening and shown again after.
    void openSettingsWindow();
    bool isSettingsWindowOpen() const;
    // Lets the desktop deliver what the step caused.
    void settle();

    Transcript& transcript_;
    TranscriptLogSink& logSink_;
    SimulatedMachine machine_;
    std::shared_ptr<SimulatedDesktop> desktop_;
    std::optional<NotificationObservationToken> settingsRouteObservation_;
    std::optional<NotificationObservationToken> windowCloseObservation_;
    std::optional<PlatformWindowHandle> settingsWindow_;
    // What the Settings window last drew of each pane.
    std::map<SettingsPane, PreferencesPaneContent> drawnSettingsPanes_;
    // Last, so that the program goes before the desktop it runs on.
    std::unique_ptr<OrvaneApp> app_;
};

}  // namespace orvane::simulator
