#include "SimulatedProgram.h"

#include <algorithm>
#include <sstream>
#include <string>
#include <vector>

#include "TranscriptLogSink.h"
#include "WindowDescription.h"
#include "app/SettingsTextRenderer.h"
#include "overlay/FixedAdvanceOverlayTextMeasurer.h"
#include "overlay/OverlayTextRenderer.h"
#include "overlay/OverlayViewBuilder.h"
#include "permissions/PermissionOnboardingTextRenderer.h"
#include "platform/simulated/SimulatedKeyboardEvent.h"
#include "preferences/PreferencesStore.h"
#include "preferences/SwitcherPreferencesCodec.h"

namespace orvane::simulator {

namespace {

std::string formatSeconds(double seconds) {
    std::ostringstream text;
    text << seconds;
    return text.str();
}

std::string describeOverlay(const SimulatedOverlayPanel& panel,
                            const SwitcherOverlayViewModel& viewModel) {
    if (!panel.isOrderedFront()) {
        return "hidden";
    }
    if (const auto& launcher = viewModel.launcherPresentation.value()) {
        std::string text = "launcher " + launcher->modeDisplayName + ", query \"" +
                           launcher->searchQuery + "\", " + std::to_string(launcher->items.size()) +
                           (launcher->items.size() == 1 ? " item" : " items");
        const auto index = launcher->selectedIndex;
        if (index >= 0 && index < static_cast<std::ptrdiff_t>(launcher->items.size())) {
            const auto& item = launcher->items[static_cast<std::size_t>(index)];
            text += ", selected " + std::to_string(index) + ": \"" + item.title + "\"";
        }
        return text;
    }
    return "switcher " + describeWindowList(viewModel.windows.value()) + ", selected " +
           std::to_string(viewModel.selectedIndex.value());
}

std::string_view policyName(ApplicationActivationPolicy policy) {
    switch (policy) {
        case ApplicationActivationPolicy::regular:
            return "regular";
        case ApplicationActivationPolicy::accessory:
            return "accessory";
        case ApplicationActivationPolicy::prohibited:
            return "prohibited";
    }
    return "unknown";
}

// Writes each line of a multi-line text as one effect.
void effectLines(Transcript& transcript, std::string_view subject, const std::string& text) {
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        transcript.effect(subject, line);
    }
}

}  // namespace

SimulatedProgram::SimulatedProgram(Transcript& transcript, TranscriptLogSink& logSink)
    : transcript_(transcript), logSink_(logSink), desktop_(machine_.desktop) {
    settingsRouteObservation_ = machine_.applicationNotifications->addObserver(
        openSettingsPaneNotificationName, [this](const PlatformNotification& notification) {
            auto pane = notification.userInfo.find(settingsPaneUserInfoKey);
            transcript_.effect(
                "application",
                "settings asked for pane " +
                    (pane == notification.userInfo.end() ? std::string("none") : pane->second));
        });
}

SimulatedProgram::~SimulatedProgram() {
    machine_.applicationNotifications->removeObserver(*settingsRouteObservation_);
    if (windowCloseObservation_) {
        machine_.applicationNotifications->removeObserver(*windowCloseObservation_);
    }
    if (app_ && !app_->hasTerminated()) {
        // The transcript has ended; the process goes without its teardown being told.
        logSink_.mute();
        app_->terminate();
    }
}

void SimulatedProgram::start() {
    if (app_) {
        return;
    }
    transcript_.plain("program launched");
    auto before = observe();
    before.activationPolicy = machine_.application->activationPolicy();
    app_ = std::make_unique<OrvaneApp>(machine_.platform());
    machine_.application->setSettingsWindowOpener([this] { openSettingsWindow(); });
    machine_.application->setTerminationHandler([this] {
        if (!app_->hasTerminated()) {
            app_->terminate();
        }
    });
    // Drawn as a window draws it: the pane on screen reads its content when it comes on screen
    // and at each redraw it asks for, and `print settings` shows that drawing, so a redraw that
    // never comes shows as a stale pane.
    const auto& settings = app_->settingsView();
    for (const auto pane : allSettingsPanes) {
        settings->pane(pane).redraws().subscribe([this, pane](const std::uint64_t&) {
            if (app_->settingsView()->selectedPane().value() == pane) {
                drawSettings();
            }
        });
    }
    settings->selectedPane().subscribe([this](const SettingsPane&) { drawSettings(); });
    windowCloseObservation_ = machine_.applicationNotifications->addObserver(
        windowWillCloseNotification, [this](const PlatformNotification& notification) {
            if (settingsWindow_ && notification.object == *settingsWindow_) {
                app_->settingsView()->windowDidHide();
            }
        });
    app_->finishLaunching();
    settle();
    reportChanges(before, observe());
}

OrvaneApplicationDelegate* SimulatedProgram::delegate() const {
    return app_ ? app_->delegate().get() : nullptr;
}

void SimulatedProgram::perform(const ScenarioStep& step) {
    const auto before = observe();
    auto* program = delegate();
    const bool sessionWasActive =
        program != nullptr && program->switcherSessionCoordinator()->isSessionActive();
    const auto previousIndex = program ? program->switcherSessionCoordinator()->selectedIndex() : 0;
    std::visit([&](const auto& action) { perform(step.lineNumber, action); }, step.action);
    settle();
    // Key events tell of their session themselves, before their result; anything else that ends
    // one (a revocation, sleep, a lock, a disabled tap, quitting) is told here.
    if (program != nullptr && !std::holds_alternative<KeyEventStep>(step.action)) {
        reportSessionChange(sessionWasActive, previousIndex);
    }
    const auto after = observe();
    if (after.frontmost != before.frontmost) {
        // Another application came forward: the program is no longer the active one.
        machine_.application->resignActive();
    }
    reportChanges(before, after);
}

void SimulatedProgram::settle() {
    desktop_->runLoop().runUntilIdle();
}

SimulatedProgram::Observation SimulatedProgram::observe() const {
    Observation observation;
    observation.frontmost = desktop_->frontmostProcessIdentifier();
    observation.focusedWindow = desktop_->focusedWindow();
    if (auto* program = delegate()) {
        observation.overlay =
            describeOverlay(*machine_.overlayPanel, *program->overlayCoordinator()->viewModel());
        observation.activationPolicy = machine_.application->activationPolicy();
        observation.menuBarIconShown = app_->menuBarScene().isInserted().value();
        if (isSettingsWindowOpen()) {
            observation.settingsWindow = machine_.application->window(*settingsWindow_)->title;
        }
    }
    observation.aboutPanels = machine_.application->aboutPanels().size();
    observation.openedURLs = machine_.permissions->openedURLs().size();
    observation.launchedApplications = machine_.applicationLauncher->launchCount();
    observation.beeps = machine_.sound->beepCount();
    observation.pasteboard = machine_.pasteboard->stringForType(pasteboardTypeString);
    return observation;
}

void SimulatedProgram::reportChanges(const Observation& before, const Observation& after) {
    // A program that has just started has no change to tell of its overlay or policy.
    if (before.overlay != after.overlay && !before.overlay.empty()) {
        transcript_.effect("overlay", after.overlay);
    }
    for (auto index = before.openedURLs; index < after.openedURLs; ++index) {
        transcript_.effect("system", "opened " + machine_.permissions->openedURLs()[index]);
    }
    for (auto index = before.launchedApplications; index < after.launchedApplications; ++index) {
        transcript_.effect(
            "system", "opened application " + machine_.applicationLauncher->launchedPaths()[index]);
    }
    for (auto index = before.beeps; index < after.beeps; ++index) {
        transcript_.effect("sound", "beep");
    }
    if (before.pasteboard != after.pasteboard) {
        transcript_.effect("pasteboard",
                           after.pasteboard
                               ? std::to_string(after.pasteboard->size()) + " bytes of text"
                               : std::string("empty"));
    }
    if (before.settingsWindow != after.settingsWindow) {
        transcript_.effect("settings", after.settingsWindow.empty()
                                           ? std::string("window closed")
                                           : "window \"" + after.settingsWindow + "\"");
    }
    if (before.menuBarIconShown && before.menuBarIconShown != after.menuBarIconShown) {
        transcript_.effect("menu bar", *after.menuBarIconShown ? "icon shown" : "icon hidden");
    }
    for (auto index = before.aboutPanels; index < after.aboutPanels; ++index) {
        const auto& icon = machine_.application->aboutPanels()[index];
        transcript_.effect("application", icon ? "about panel with " + icon->description
                                               : std::string("about panel without options"));
    }
    if (before.activationPolicy && before.activationPolicy != after.activationPolicy) {
        transcript_.effect("application",
                           "activation policy " + std::string(policyName(*after.activationPolicy)));
    }
    if (before.frontmost != after.frontmost || before.focusedWindow != after.focusedWindow) {
        transcript_.effect(
            "desktop",
            "frontmost " +
                (after.frontmost ? "pid " + std::to_string(*after.frontmost)
                                 : std::string("none")) +
                ", focused window " +
                (after.focusedWindow ? std::to_string(*after.focusedWindow) : std::string("none")));
    }
}

void SimulatedProgram::summarize() {
    auto* program = delegate();
    if (program == nullptr) {
        transcript_.plain("end: the program never started");
        return;
    }
    if (app_->hasTerminated()) {
        transcript_.plain("end: the program has quit");
        return;
    }
    transcript_.plain(
        std::string("end: machine ") +
        switcherInteractionStateName(
            program->globalShortcutInterceptor()->interactionStateMachine().state) +
        ", session " +
        (program->switcherSessionCoordinator()->isSessionActive() ? "active" : "inactive") +
        ", launcher " +
        (program->launcherSessionCoordinator()->isLauncherSessionActive() ? "open" : "closed"));
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
    if (auto* program = delegate()) {
        program->preferencesStore()->setPreferences(step.preferences);
    } else if (encoded.bytes) {
        // Before the program runs, settings can only be what an earlier run stored.
        machine_.userDefaults->setData(preferencesDefaultsKey, *encoded.bytes);
    }
}

void SimulatedProgram::perform(int lineNumber, const StoredPreferencesStep& step) {
    transcript_.headline(lineNumber, "stored-preferences " + step.bytes);
    machine_.userDefaults->setData(preferencesDefaultsKey, step.bytes);
}

void SimulatedProgram::perform(int lineNumber, const NoteStep& step) {
    transcript_.headline(lineNumber, "note: " + step.text);
}

void SimulatedProgram::perform(int lineNumber, const LogLevelStep& step) {
    transcript_.headline(lineNumber, "log-level " + std::string(logLevelName(step.minimumLevel)));
    logSink_.setMinimumLevel(step.minimumLevel);
}

void SimulatedProgram::perform(int lineNumber, const PrintStep& step) {
    switch (step.subject) {
        case PrintStep::Subject::overlay:
            transcript_.headline(lineNumber, "print overlay");
            printOverlay();
            return;
        case PrintStep::Subject::welcome:
            transcript_.headline(lineNumber, "print welcome");
            printWelcome();
            return;
        case PrintStep::Subject::program:
            transcript_.headline(lineNumber, "print program");
            printProgram();
            return;
        case PrintStep::Subject::menu:
            transcript_.headline(lineNumber, "print menu");
            printMenu();
            return;
        case PrintStep::Subject::settings:
            transcript_.headline(lineNumber, "print settings");
            printSettings();
            return;
        case PrintStep::Subject::defaults: {
            transcript_.headline(lineNumber, "print defaults");
            auto stored = machine_.userDefaults->dataForKey(preferencesDefaultsKey);
            transcript_.effect("defaults", std::string(preferencesDefaultsKey) + " " +
                                               (stored ? *stored : std::string("absent")));
            return;
        }
        case PrintStep::Subject::desktop:
            transcript_.headline(lineNumber, "print desktop");
            printDesktop();
            return;
    }
}

void SimulatedProgram::perform(int lineNumber, const InstallApplicationStep& step) {
    transcript_.headline(lineNumber, "installed " + step.directory + "/" + step.bundleName);
    machine_.fileSystem->addApplication(step.directory, step.bundleName);
}

void SimulatedProgram::perform(int lineNumber, const PermissionStep& step) {
    const bool accessibility = step.capability == PermissionCapability::accessibility;
    transcript_.headline(lineNumber,
                         std::string(accessibility ? "accessibility " : "screen-recording ") +
                             (step.granted ? "granted" : "denied"));
    machine_.setPermission(step.capability, step.granted);
}

void SimulatedProgram::perform(int lineNumber, const StartProgramStep&) {
    transcript_.headline(lineNumber, "start");
    start();
}

void SimulatedProgram::perform(int lineNumber, const SystemEventStep& step) {
    using Kind = SystemEventStep::Kind;
    auto post = [](const std::shared_ptr<SimulatedNotificationCenter>& center, const char* name) {
        center->postNotification(PlatformNotification{name});
    };
    switch (step.kind) {
        case Kind::sleep:
            transcript_.headline(lineNumber, "sleep");
            post(desktop_->workspaceNotificationCenter(), workspace_notification::willSleep);
            return;
        case Kind::screensSleep:
            transcript_.headline(lineNumber, "screens-sleep");
            post(desktop_->workspaceNotificationCenter(), workspace_notification::screensDidSleep);
            return;
        case Kind::lockScreen:
            transcript_.headline(lineNumber, "lock-screen");
            post(desktop_->distributedNotificationCenter(), "com.apple.screenIsLocked");
            return;
        case Kind::switchUser:
            transcript_.headline(lineNumber, "switch-user");
            post(desktop_->workspaceNotificationCenter(),
                 workspace_notification::sessionDidResignActive);
            return;
        case Kind::tapDisabledByTimeout:
        case Kind::tapDisabledByUserInput: {
            const bool timeout = step.kind == Kind::tapDisabledByTimeout;
            transcript_.headline(
                lineNumber,
                std::string("tap-disabled ") + (timeout ? "timeout" : "user-input") +
                    (step.noticeDelay > 0 ? ", told after " + formatSeconds(step.noticeDelay) + " s"
                                          : ""));
            desktop_->eventTapPort()->disableTaps(timeout
                                                      ? keyboard_event_type::tapDisabledByTimeout
                                                      : keyboard_event_type::tapDisabledByUserInput,
                                                  step.noticeDelay);
            return;
        }
    }
}

void SimulatedProgram::perform(int lineNumber, const ProgramActionStep& step) {
    using Kind = ProgramActionStep::Kind;
    auto* program = delegate();
    switch (step.kind) {
        case Kind::bringToFront:
            transcript_.headline(lineNumber, "bring-to-front");
            // The user comes back from elsewhere, even where the program was active before.
            machine_.application->resignActive();
            machine_.application->activate();
            return;
        case Kind::reopen:
        case Kind::reopenWithVisibleWindows: {
            const bool visible = step.kind == Kind::reopenWithVisibleWindows;
            transcript_.headline(lineNumber, visible ? "reopen windows-visible" : "reopen");
            const bool handled = program->applicationShouldHandleReopen(visible);
            transcript_.effect("application",
                               std::string("reopen answered ") + (handled ? "true" : "false"));
            return;
        }
        case Kind::showWelcome:
            transcript_.headline(lineNumber, "show-welcome");
            program->showWelcomeWindow();
            return;
        case Kind::diagnostics:
            transcript_.headline(lineNumber, "diagnostics");
            effectLines(transcript_, "diagnostics",
                        program->bugReportComposer()->diagnosticsText());
            return;
        case Kind::copyDiagnostics:
            transcript_.headline(lineNumber, "copy-diagnostics");
            program->bugReportComposer()->copyDiagnosticsToClipboard();
            return;
        case Kind::bugReport: {
            transcript_.headline(lineNumber, "bug-report");
            auto url = program->bugReportComposer()->composeBugReportURL();
            transcript_.effect("bug report", url.value_or("no URL"));
            return;
        }
        case Kind::quitProgram:
            transcript_.headline(lineNumber, "quit-program");
            app_->terminate();
            return;
    }
}

void SimulatedProgram::perform(int lineNumber, const OpenSettingsStep& step) {
    transcript_.headline(lineNumber, "settings " + std::string(rawValue(step.pane)));
    auto application = machine_.application;
    openSettingsPane(
        step.pane, *machine_.applicationNotifications, [application] { application->activate(); },
        [application] { return application->showSettingsWindow(); });
}

void SimulatedProgram::perform(int lineNumber, const MenuStep& step) {
    transcript_.headline(lineNumber, "menu choose \"" + step.entry + "\"");
    auto& menu = app_->menuBarScene().content();
    for (const auto& entry : menu.entries()) {
        if (entry.text != step.entry) {
            continue;
        }
        if (entry.kind != MenuEntryKind::button || !entry.isEnabled) {
            transcript_.effect("menu", "\"" + step.entry + "\" cannot be chosen");
            return;
        }
        menu.choose(entry.action);
        return;
    }
    transcript_.effect("menu", "no entry \"" + step.entry + "\"");
}

void SimulatedProgram::perform(int lineNumber, const SettingsControlStep& step) {
    using Kind = SettingsControlStep::Kind;
    const auto& view = app_->settingsView();
    auto& pane = view->pane(view->selectedPane().value());
    std::string headline = "settings ";
    bool handled = isSettingsWindowOpen();
    switch (step.kind) {
        case Kind::toggle:
            transcript_.headline(lineNumber, headline + "toggle \"" + step.label + "\" " +
                                                 (step.isOn ? "on" : "off"));
            handled = handled && pane.setToggle(step.label, step.isOn);
            break;
        case Kind::pick: {
            transcript_.headline(lineNumber,
                                 headline + "pick \"" + step.label + "\" \"" + step.segment + "\"");
            std::optional<std::size_t> segment;
            for (const auto& section : pane.content().sections) {
                for (const auto& row : section.rows) {
                    const auto* picker = std::get_if<PanePicker>(&row);
                    if (picker == nullptr || picker->label != step.label) {
                        continue;
                    }
                    const auto found =
                        std::find(picker->segments.begin(), picker->segments.end(), step.segment);
                    if (found != picker->segments.end()) {
                        segment = static_cast<std::size_t>(found - picker->segments.begin());
                    }
                }
            }
            handled = handled && segment && pane.pick(step.label, *segment);
            break;
        }
        case Kind::press:
            transcript_.headline(lineNumber, headline + "press \"" + step.label + "\"");
            handled = handled && pane.press(step.label);
            break;
        case Kind::tab:
            transcript_.headline(lineNumber, headline + "tab " + std::string(rawValue(step.pane)));
            if (handled) {
                view->select(step.pane);
            }
            break;
        case Kind::close:
            transcript_.headline(lineNumber, headline + "close");
            if (handled) {
                machine_.application->userClose(*settingsWindow_);
            }
            break;
    }
    if (!handled) {
        transcript_.effect("settings",
                           isSettingsWindowOpen() ? "no such enabled control" : "no window open");
    }
}

void SimulatedProgram::perform(int lineNumber, const LoginItemStep& step) {
    transcript_.headline(lineNumber, step.refuses ? "login-item refuses" : "login-item accepts");
    machine_.loginItem->setFailure(
        step.refuses ? std::optional<std::string>("Operation not permitted") : std::nullopt);
}

void SimulatedProgram::perform(int lineNumber, const UpdaterStep& step) {
    transcript_.headline(lineNumber, step.canCheck ? "updater can-check" : "updater busy");
    machine_.updater->setCanCheckForUpdates(step.canCheck);
}

void SimulatedProgram::openSettingsWindow() {
    const auto& view = app_->settingsView();
    if (!settingsWindow_) {
        using namespace window_style_mask;
        settingsWindow_ = machine_.application->addWindow(
            view->title(), titled | closable | miniaturizable, false, true);
        view->attach(settingsWindow_);
    } else {
        machine_.application->makeKeyAndOrderFront(*settingsWindow_);
    }
    view->windowDidShow();
    drawSettings();
}

void SimulatedProgram::drawSettings() {
    if (!isSettingsWindowOpen()) {
        return;
    }
    const auto& view = app_->settingsView();
    const auto pane = view->selectedPane().value();
    drawnSettingsPanes_[pane] = view->pane(pane).content();
}

bool SimulatedProgram::isSettingsWindowOpen() const {
    if (!settingsWindow_) {
        return false;
    }
    const auto window = machine_.application->window(*settingsWindow_);
    return window && window->isVisible;
}

void SimulatedProgram::printMenu() {
    auto& scene = app_->menuBarScene();
    transcript_.effect("menu", "\"" + scene.title() + "\" icon " + scene.imageName() +
                                   (scene.isInserted().value() ? ", shown" : ", hidden"));
    for (const auto& line : SettingsTextRenderer::menuLines(scene.content().entries())) {
        transcript_.effect("menu", line);
    }
}

void SimulatedProgram::printSettings() {
    if (!isSettingsWindowOpen()) {
        transcript_.effect("settings", "no window open");
        return;
    }
    const auto& view = app_->settingsView();
    std::string tabs;
    for (const auto& tab : SettingsView::tabs) {
        tabs += tab.pane == view->selectedPane().value() ? std::string(" [") + tab.title + "]"
                                                         : std::string(" ") + tab.title;
    }
    transcript_.effect("settings", "\"" + machine_.application->window(*settingsWindow_)->title +
                                       "\", tabs" + tabs);
    const auto drawn = drawnSettingsPanes_.find(view->selectedPane().value());
    if (drawn == drawnSettingsPanes_.end()) {
        transcript_.effect("settings", "pane not drawn");
        return;
    }
    for (const auto& line : SettingsTextRenderer::paneLines(drawn->second)) {
        transcript_.effect("settings", line);
    }
}

void SimulatedProgram::perform(int lineNumber, const WelcomeWindowStep& step) {
    using Kind = WelcomeWindowStep::Kind;
    const auto& controller = delegate()->permissionOnboardingWindowController();
    auto view = controller->view();
    auto window = controller->window();
    switch (step.kind) {
        case Kind::rowAction:
            transcript_.headline(
                lineNumber, "welcome press " +
                                std::string(step.capability == PermissionCapability::accessibility
                                                ? "accessibility"
                                                : "screen-recording"));
            break;
        case Kind::continueButton:
            transcript_.headline(lineNumber, "welcome continue");
            break;
        case Kind::notNowButton:
            transcript_.headline(lineNumber, "welcome not-now");
            break;
        case Kind::closeButton:
            transcript_.headline(lineNumber, "welcome close");
            break;
    }
    if (!view || !window) {
        transcript_.effect("welcome", "no welcome window is open");
        return;
    }
    switch (step.kind) {
        case Kind::rowAction:
            view->pressRowAction(step.capability);
            return;
        case Kind::continueButton:
            view->pressContinue();
            return;
        case Kind::notNowButton:
            view->pressNotNow();
            return;
        case Kind::closeButton:
            machine_.application->close(*window);
            return;
    }
}

void SimulatedProgram::printOverlay() {
    auto* program = delegate();
    const auto& frame = machine_.overlayPanel->frame();
    std::ostringstream placement;
    placement << (machine_.overlayPanel->isOrderedFront() ? "on screen" : "hidden") << ", frame "
              << frame.origin.x << "," << frame.origin.y << " " << frame.size.width << "x"
              << frame.size.height;
    transcript_.effect("overlay", placement.str());
    if (!machine_.overlayPanel->isOrderedFront() || program == nullptr) {
        return;
    }
    auto workspace = desktop_->workspacePort();
    const OverlayViewBuilder builder(
        [workspace](ProcessIdentifier process, const std::string&) -> std::optional<ImageHandle> {
            auto application = workspace->runningApplication(process);
            return application ? application->icon : std::nullopt;
        },
        std::make_shared<FixedAdvanceOverlayTextMeasurer>());
    effectLines(transcript_, "view",
                OverlayTextRenderer::render(
                    builder.build(*program->overlayCoordinator()->viewModel(), frame.size)));
}

void SimulatedProgram::printWelcome() {
    auto* program = delegate();
    auto view = program ? program->permissionOnboardingWindowController()->view() : nullptr;
    if (!view) {
        transcript_.effect("welcome", "no welcome window is open");
        return;
    }
    effectLines(transcript_, "welcome", PermissionOnboardingTextRenderer::render(view->content()));
}

void SimulatedProgram::printProgram() {
    auto* program = delegate();
    if (program == nullptr) {
        transcript_.effect("program", "not started");
        return;
    }
    const auto& interceptor = *program->globalShortcutInterceptor();
    const auto& coordinator = *program->permissionStatusCoordinator();
    std::string permissions;
    for (auto capability : allPermissionCapabilities) {
        const auto& table = coordinator.statusByCapability().value();
        auto entry = table.find(capability);
        permissions +=
            (permissions.empty() ? "" : ", ") +
            std::string(PermissionStatusCoordinator::logName(capability)) + " " +
            std::string(PermissionStatusCoordinator::logName(
                entry == table.end() ? PermissionGrantStatus::notGranted : entry->second));
    }
    transcript_.effect(
        "program",
        std::string(app_->hasTerminated() ? "terminated" : "running") + "; event tap " +
            (interceptor.hasEventTap() ? (interceptor.isEventTapEnabled() ? "enabled" : "disabled")
                                       : std::string("none")) +
            "; retrying " + (program->isRetryingInterception() ? "yes" : "no") +
            "; welcome window " +
            (program->permissionOnboardingWindowController()->window() ? "open" : "closed") +
            "; polling " + (coordinator.isPolling() ? "yes" : "no") + "; permissions " +
            permissions);
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
    auto* program = delegate();
    const bool wasActive = program && program->switcherSessionCoordinator()->isSessionActive();
    const auto previousIndex = program ? program->switcherSessionCoordinator()->selectedIndex() : 0;

    SimulatedKeyboardEvent event(step.keyCode, step.flags, step.isAutorepeat, step.typedText);
    const auto delivery = desktop_->postKeyboardEvent(step.type, event);

    std::string receiver = "swallowed";
    if (!delivery.swallowed) {
        receiver = delivery.receiver ? "passed to pid " + std::to_string(*delivery.receiver)
                                     : std::string("passed");
    }
    if (program == nullptr) {
        transcript_.effect("result", receiver);
        return;
    }
    reportSessionChange(wasActive, previousIndex);
    const auto& interceptor = *program->globalShortcutInterceptor();
    std::vector<EventKeyCode> consumed(interceptor.keyCodesWithConsumedKeyDown().begin(),
                                       interceptor.keyCodesWithConsumedKeyDown().end());
    std::sort(consumed.begin(), consumed.end());
    std::string consumedText;
    for (auto keyCode : consumed) {
        consumedText += consumedText.empty() ? "" : ", ";
        consumedText += std::to_string(keyCode);
    }
    transcript_.effect(
        "result", receiver + "; machine " +
                      switcherInteractionStateName(interceptor.interactionStateMachine().state) +
                      "; consumed [" + consumedText + "]");
}

void SimulatedProgram::reportSessionChange(bool wasActive, std::ptrdiff_t previousIndex) {
    const auto& session = *delegate()->switcherSessionCoordinator();
    const bool isActive = session.isSessionActive();
    const auto index = session.selectedIndex();
    if (wasActive && !isActive) {
        transcript_.effect("session", "ended");
        return;
    }
    if (!isActive || (wasActive && index == previousIndex)) {
        return;
    }
    const auto& windows = session.sessionWindows();
    std::string text =
        wasActive ? "selected "
                  : "started with " + std::to_string(windows.size()) + " windows, selected ";
    text += std::to_string(index) + ": " + describeWindow(windows[static_cast<std::size_t>(index)]);
    transcript_.effect("session", text);
}

}  // namespace orvane::simulator
