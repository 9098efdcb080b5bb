#include "SimulatorDriver.h"

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "StandInDesktop.h"
#include "StandInPreferencesProvider.h"
#include "StandInRecencyOrdering.h"
#include "StandInWindowEnumeration.h"
#include "Transcript.h"
#include "TranscriptLauncherSession.h"
#include "TranscriptLogSink.h"
#include "TranscriptOverlayPresenter.h"
#include "TranscriptWindowActivation.h"
#include "WindowDescription.h"
#include "core/Log.h"
#include "core/SwitcherSessionCoordinator.h"
#include "interception/GlobalShortcutInterceptor.h"
#include "platform/simulated/SimulatedKeyboardEvent.h"
#include "preferences/SwitcherPreferencesCodec.h"

namespace orvane::simulator {

namespace {

// Everything one play builds, in the order the program builds it.
class Program {
  public:
    explicit Program(Transcript& transcript)
        : transcript_(transcript),
          desktop_(std::make_shared<StandInDesktop>()),
          preferences_(std::make_shared<StandInPreferencesProvider>()),
          sessionCoordinator_(std::make_shared<SwitcherSessionCoordinator>(
              std::make_shared<StandInWindowEnumeration>(desktop_, transcript),
              std::make_shared<StandInRecencyOrdering>(),
              std::make_shared<TranscriptOverlayPresenter>(transcript),
              std::make_shared<TranscriptWindowActivation>(transcript),
              [desktop = desktop_] { return desktop->frontmostProcessIdentifier; })),
          launcherSession_(std::make_shared<TranscriptLauncherSession>(transcript)),
          interceptor_(sessionCoordinator_, launcherSession_, preferences_) {}

    void perform(const ScenarioStep& step) {
        std::visit([&](const auto& action) { perform(step.lineNumber, action); }, step.action);
    }

    void summarize() {
        transcript_.plain(
            std::string("end: machine ") +
            switcherInteractionStateName(interceptor_.interactionStateMachine().state) +
            ", session " + (sessionCoordinator_->isSessionActive() ? "active" : "inactive") +
            ", launcher " + (launcherSession_->isLauncherSessionActive() ? "open" : "closed"));
    }

  private:
    void perform(int lineNumber, const AddWindowStep& step) {
        SwitchableWindow window;
        window.windowIdentifier = step.windowIdentifier;
        window.owningProcessIdentifier = step.processIdentifier;
        window.owningApplicationName = step.applicationName;
        window.windowTitle = step.title;
        window.isMinimized = step.isMinimized;
        window.screenFrame = step.frame;
        transcript_.headline(lineNumber, "window " + describeWindow(window));
        desktop_->windows.push_back(std::move(window));
    }

    void perform(int lineNumber, const SetFrontmostStep& step) {
        desktop_->frontmostProcessIdentifier = step.processIdentifier;
        transcript_.headline(lineNumber,
                             step.processIdentifier
                                 ? "frontmost pid " + std::to_string(*step.processIdentifier)
                                 : std::string("frontmost none"));
    }

    void perform(int lineNumber, const SetPreferencesStep& step) {
        auto encoded = SwitcherPreferencesCodec::encode(step.preferences);
        transcript_.headline(lineNumber, "preferences " + encoded.bytes.value_or(encoded.error));
        preferences_->setPreferences(step.preferences);
    }

    void perform(int lineNumber, const NoteStep& step) {
        transcript_.headline(lineNumber, "note: " + step.text);
    }

    void perform(int lineNumber, const KeyEventStep& step) {
        transcript_.headline(lineNumber, step.description);
        const bool wasActive = sessionCoordinator_->isSessionActive();
        const auto previousIndex = sessionCoordinator_->selectedIndex();

        SimulatedKeyboardEvent event(step.keyCode, step.flags, step.isAutorepeat, step.typedText);
        const bool swallowed = interceptor_.handleEvent(step.type, event);

        reportSessionChange(wasActive, previousIndex);
        std::vector<EventKeyCode> consumed(interceptor_.keyCodesWithConsumedKeyDown().begin(),
                                           interceptor_.keyCodesWithConsumedKeyDown().end());
        std::sort(consumed.begin(), consumed.end());
        std::string consumedText;
        for (auto keyCode : consumed) {
            consumedText += consumedText.empty() ? "" : ", ";
            consumedText += std::to_string(keyCode);
        }
        transcript_.effect(
            "result",
            std::string(swallowed ? "swallowed" : "passed") + "; machine " +
                switcherInteractionStateName(interceptor_.interactionStateMachine().state) +
                "; consumed [" + consumedText + "]");
    }

    void reportSessionChange(bool wasActive, std::ptrdiff_t previousIndex) {
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
        text +=
            std::to_string(index) + ": " + describeWindow(windows[static_cast<std::size_t>(index)]);
        transcript_.effect("session", text);
    }

    Transcript& transcript_;
    std::shared_ptr<StandInDesktop> desktop_;
    std::shared_ptr<StandInPreferencesProvider> preferences_;
    std::shared_ptr<SwitcherSessionCoordinator> sessionCoordinator_;
    std::shared_ptr<TranscriptLauncherSession> launcherSession_;
    GlobalShortcutInterceptor interceptor_;
};

}  // namespace

SimulatorDriver::SimulatorDriver(std::ostream& output, Options options)
    : output_(output), options_(options) {}

void SimulatorDriver::play(const Scenario& scenario, std::string_view scenarioName) {
    Transcript transcript(output_);
    auto previousSinks = Log::shared().replaceSinks(
        {std::make_shared<TranscriptLogSink>(transcript, options_.minimumLogLevel)});
    transcript.plain("orvane simulator transcript: " + std::string(scenarioName));
    {
        Program program(transcript);
        for (const auto& step : scenario.steps) {
            program.perform(step);
        }
        program.summarize();
    }
    Log::shared().replaceSinks(std::move(previousSinks));
}

}  // namespace orvane::simulator
