#include "WaylandProgram.h"

#include <QAbstractEventDispatcher>
#include <QCoreApplication>

#include "core/Logger.h"
#include "platform/linux/LinuxWindowList.h"
#include "platform/wayland/SwayTree.h"

namespace orvane {

namespace {

const Logger& log() {
    return Logger::forCategory(LogCategory::lifecycle);
}

}  // namespace

std::unique_ptr<WaylandProgram> WaylandProgram::start(std::unique_ptr<WaylandConnection> connection,
                                                      const std::string& swaySocket) {
    return std::unique_ptr<WaylandProgram>(new WaylandProgram(std::move(connection), swaySocket));
}

WaylandProgram::WaylandProgram(std::unique_ptr<WaylandConnection> connection,
                               const std::string& swaySocket)
    : connection_(std::move(connection)) {
    if (!swaySocket.empty()) {
        swayCommands_ = SwayIpc::connect(swaySocket);
        swayEvents_ = SwayIpc::connect(swaySocket);
        if (swayEvents_ &&
            !swayEvents_->request(SwayIpc::Request::subscribe,
                                  R"(["binding","window","workspace","shutdown"])")) {
            swayEvents_.reset();
        }
    }
    const auto& entries = shell_.desktopEntries();
    model_ = std::make_unique<WaylandWindowModel>(
        *connection_, [entries](std::string_view instance, std::string_view windowClass) {
            return entries->entryPathForWindowClass(instance, windowClass);
        });
    screens_ = std::make_unique<WaylandScreens>(*connection_, *model_);
    learnFromSway(true);
    // Before the Accessibility port: it must hear of a launch before the focus notices.
    workspace_ = std::make_shared<LinuxWorkspace>(
        *model_, shell_.workspaceNotifications(),
        [entries](std::string_view instance, std::string_view windowClass) {
            return entries->entryForWindowClass(instance, windowClass);
        });
    eventTap_ =
        std::make_shared<WaylandEventTap>(*connection_, swayCommands_.get(), shell_.runLoop());
    overlayPanel_ = std::make_shared<WaylandOverlayPanel>(
        *connection_, *screens_,
        QtOverlayRenderer([this](const ImageHandle& handle) { return shell_.image(handle); }));

    // sway starts no autostart entries by itself.
    auto platform = shell_.platform(
        swayCommands_
            ? std::optional<std::string>(
                  "sway runs no autostart entries by itself: add the line \"exec orvane\" "
                  "to its configuration (~/.config/sway/config), or turn on systemd's "
                  "XDG autostart for your session.")
            : std::nullopt);
    screenCapture_ =
        std::make_shared<WaylandScreenCapture>(*connection_, *model_, *screens_, shell_.runLoop());
    screenCapture_->setCoverQuery([this] {
        return WaylandScreenCapture::Cover{
            overlayPanel_->isShown() || (shell_.isRunning() && shell_.isSessionActive()),
            overlayPanel_->appearances()};
    });
    const std::string compositor = swayCommands_ ? "sway" : "";
    permissions_ = std::make_shared<LinuxPermissions>(LinuxPermissions::Conditions{
        [this] { return eventTap_->hasBindings() || hasHadGesture_; },
        [this] { return eventTap_->requiredChordName(); }, [compositor] { return compositor; },
        [capture = screenCapture_] { return capture->preflightScreenCaptureAccess(); },
        [this](const std::string& address, const std::string& reason) {
            shell_.showHelp(address, reason);
        },
        [this] {
            const std::string bind =
                "bind its gestures to \"orvane --gesture next\" (and previous, same-application, "
                "launcher) in the compositor's configuration; this help shows the lines for "
                "Hyprland, labwc and river.";
            return swayCommands_ ? "sway did not take Orvane's bindings (its log says why): " + bind
                                 : "On Wayland only the compositor sees every key: " + bind;
        },
        "This compositor does not let programs copy the screen (it has no screencopy), so cards "
        "show application icons."});
    platform.permissions = permissions_;
    accessibility_ = std::make_shared<LinuxAccessibility>(*model_, shell_.runLoop());
    platform.accessibility = accessibility_;
    platform.windowList = std::make_shared<LinuxWindowList>(*model_);
    platform.workspace = workspace_;
    platform.eventTaps = eventTap_;
    platform.screenCapture = screenCapture_;
    platform.screens = std::shared_ptr<ScreenPort>(screens_.get(), [](ScreenPort*) {});
    platform.overlayPanel = overlayPanel_;
    shell_.start(std::move(platform),
                 {[capture = screenCapture_](std::uint64_t identifier) {
                      return capture->thumbnail(identifier);
                  },
                  [workspace = workspace_](std::uint64_t identifier) {
                      return workspace->iconPixels(identifier);
                  }},
                 [compositor] { return compositor; });

    const auto& delegate = shell_.delegate();
    eventTap_->setPreferences(delegate->preferencesStore());
    eventTap_->setSessionQuery([this] { return shell_.isRunning() && shell_.isSessionActive(); });
    overlayPanel_->attach(delegate->overlayCoordinator()->viewModel(),
                          shell_.overlayBuilder(workspace_));
    overlayPanel_->setPresentedHandler([this] {
        if (gestureAt_) {
            const auto taken = std::chrono::steady_clock::now() - *gestureAt_;
            gestureAt_.reset();
            log().debug("picture sent %{public}u microseconds after the gesture's key",
                        static_cast<std::uint64_t>(
                            std::chrono::duration_cast<std::chrono::microseconds>(taken).count()));
        }
    });

    notifier_ =
        std::make_unique<QSocketNotifier>(connection_->fileDescriptor(), QSocketNotifier::Read);
    QObject::connect(notifier_.get(), &QSocketNotifier::activated, [this] {
        if (!connection_->dispatchAvailable()) {
            // Without its compositor the program has nothing left to do.
            log().error("the Wayland compositor closed its connection; Orvane quits with it");
            notifier_->setEnabled(false);
            QCoreApplication::exit(1);
        }
    });
    aboutToBlock_ =
        QObject::connect(QAbstractEventDispatcher::instance(),
                         &QAbstractEventDispatcher::aboutToBlock, [this] { connection_->flush(); });
    if (swayEvents_) {
        swayNotifier_ =
            std::make_unique<QSocketNotifier>(swayEvents_->fileDescriptor(), QSocketNotifier::Read);
        QObject::connect(swayNotifier_.get(), &QSocketNotifier::activated,
                         [this] { readSwayEvents(); });
        // Windows move and workspaces change in bursts: the tree is read once a burst is over.
        swayRefresh_.setSingleShot(true);
        swayRefresh_.setInterval(50);
        QObject::connect(&swayRefresh_, &QTimer::timeout, [this] { learnFromSway(false); });
    }
    shell_.launch();
    screenCapture_->refresh();
    connection_->flush();
}

WaylandProgram::~WaylandProgram() {
    terminate();
    QObject::disconnect(aboutToBlock_);
}

void WaylandProgram::terminate() {
    if (shell_.isRunning()) {
        shell_.terminate();
        connection_->flush();
    }
}

void WaylandProgram::perform(ExternalGesture gesture) {
    if (shell_.isRunning() && eventTap_) {
        hasHadGesture_ = true;
        play(gesture);
    }
}

void WaylandProgram::play(ExternalGesture gesture) {
    gestureAt_ = std::chrono::steady_clock::now();
    screenCapture_->standBack();
    eventTap_->perform(gesture);
    overlayPanel_->presentPending();
}

void WaylandProgram::learnFromSway(bool ordering) {
    if (!swayCommands_ || !swayCommands_->isOpen()) {
        return;
    }
    if (auto tree = swayCommands_->request(SwayIpc::Request::getTree)) {
        model_->learn(SwayTree::windowsByFocus(*tree), ordering);
    }
    // The frames are known now; the windows are captured while nothing covers them.
    if (screenCapture_) {
        screenCapture_->refresh();
    }
}

void WaylandProgram::readSwayEvents() {
    const bool open =
        swayEvents_->readEvents([this](SwayIpc::Event event, const nlohmann::json& payload) {
            if (event == SwayIpc::Event::binding) {
                if (const auto gesture = WaylandEventTap::gestureOfBinding(payload)) {
                    if (shell_.isRunning()) {
                        play(*gesture);
                    }
                }
            } else if (event == SwayIpc::Event::window || event == SwayIpc::Event::workspace) {
                if (!swayRefresh_.isActive()) {
                    swayRefresh_.start();
                }
            }
        });
    if (!open) {
        swayNotifier_->setEnabled(false);
        log().error(
            "sway's IPC closed; Orvane's bindings went with it, and orvane --gesture "
            "still works");
    }
}

}  // namespace orvane
