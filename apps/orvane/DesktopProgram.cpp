#include "DesktopProgram.h"

#include <xcb/xfixes.h>

#include <QAbstractEventDispatcher>
#include <QCoreApplication>
#include <QTimer>
#include <cstdlib>

#include "platform/linux/LinuxWindowList.h"

namespace orvane {

std::unique_ptr<DesktopProgram> DesktopProgram::start(std::unique_ptr<X11Connection> connection) {
    return std::unique_ptr<DesktopProgram>(new DesktopProgram(std::move(connection)));
}

DesktopProgram::DesktopProgram(std::unique_ptr<X11Connection> connection)
    : connection_(std::move(connection)) {
    // The compositor's coming and going is told by the server, so the first gesture after it
    // already draws the panel for it: square without one, never with black corners.
    watchCompositor();
    const auto& entries = shell_.desktopEntries();
    // An application is what the desktop's menu shows as one: four terminals are one terminal.
    model_ = std::make_unique<X11WindowModel>(
        *connection_, [entries](std::string_view instance, std::string_view windowClass) {
            return entries->entryPathForWindowClass(instance, windowClass);
        });
    screens_ = std::make_unique<X11Screens>(*connection_, *model_);
    // Before the Accessibility port: it must hear of a launch before the focus notices.
    workspace_ = std::make_shared<LinuxWorkspace>(
        *model_, shell_.workspaceNotifications(),
        [entries](std::string_view instance, std::string_view windowClass) {
            return entries->entryForWindowClass(instance, windowClass);
        });
    eventTap_ = std::make_shared<X11EventTap>(*connection_);
    // The chords beside the required one, held by another program, are tried again while any
    // is missing, on the retry's own beat; nothing runs once all are Orvane's.
    chordRetry_.setInterval(
        static_cast<int>(OrvaneApplicationDelegate::interceptionRetryInterval * 1000));
    QObject::connect(&chordRetry_, &QTimer::timeout, [this] { eventTap_->retryMissingChords(); });
    eventTap_->setMissingChordsHandler([this](bool anyMissing) {
        if (!anyMissing) {
            chordRetry_.stop();
        } else if (!chordRetry_.isActive()) {
            chordRetry_.start();
        }
    });
    overlayPanel_ = std::make_shared<QtOverlayPanel>(
        QtOverlayPanel::Environment{[this] { return isComposited(); },
                                    [this](const Rect& frame) { return toDesktop(frame); },
                                    [this](std::function<void()> then) {
                                        accessibility_->whenActivationAnswered(std::move(then));
                                    }},
        QtOverlayRenderer([this](const ImageHandle& handle) { return shell_.image(handle); }));

    auto platform = shell_.platform();
    screenCapture_ =
        std::make_shared<X11ScreenCapture>(*connection_, *model_, *screens_, shell_.runLoop());
    permissions_ = std::make_shared<LinuxPermissions>(LinuxPermissions::Conditions{
        [this] { return eventTap_->requiredChordIsFree(); },
        [this] { return eventTap_->requiredChordName(); },
        [this] { return connection_->windowManagerName(); },
        [capture = screenCapture_] { return capture->preflightScreenCaptureAccess(); },
        [this](const std::string& address, const std::string& reason) {
            shell_.showHelp(address, reason);
        },
        {},
        {}});
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
                 [this] { return connection_->windowManagerName(); });

    const auto& delegate = shell_.delegate();
    eventTap_->setPreferences(delegate->preferencesStore());
    // Alt goes down a moment before Tab: the windows are read then, not on Tab's path.
    eventTap_->setHoldModifierHandler([weak = std::weak_ptr(delegate)] {
        if (auto program = weak.lock()) {
            program->switcherSessionCoordinator()->prepare();
        }
    });
    eventTap_->setSessionQuery([this] { return shell_.isRunning() && shell_.isSessionActive(); });
    overlayPanel_->attach(delegate->overlayCoordinator()->viewModel(),
                          shell_.overlayBuilder(workspace_));

    // Everything the server sends is read as soon as it arrives, and whatever a reply brought in
    // along the way before the loop sleeps again: no polling.
    notifier_ =
        std::make_unique<QSocketNotifier>(connection_->fileDescriptor(), QSocketNotifier::Read);
    QObject::connect(notifier_.get(), &QSocketNotifier::activated,
                     [this] { connection_->dispatchPendingEvents(); });
    // Without its X server the program has nothing left to do.
    connection_->setLostHandler([this] {
        notifier_->setEnabled(false);
        QCoreApplication::exit(1);
    });
    aboutToBlock_ = QObject::connect(QAbstractEventDispatcher::instance(),
                                     &QAbstractEventDispatcher::aboutToBlock, [this] {
                                         connection_->dispatchPendingEvents();
                                         connection_->flush();
                                     });
    shell_.launch();
    connection_->flush();
}

DesktopProgram::~DesktopProgram() {
    terminate();
    QObject::disconnect(aboutToBlock_);
}

void DesktopProgram::terminate() {
    if (shell_.isRunning()) {
        shell_.terminate();
        connection_->flush();
    }
}

void DesktopProgram::perform(ExternalGesture gesture) {
    if (shell_.isRunning() && eventTap_) {
        eventTap_->perform(gesture);
    }
}

bool DesktopProgram::isComposited() {
    if (!composited_) {
        composited_ = readComposited();
    }
    const bool composited = *composited_;
    if (!compositorWatched_) {
        QTimer::singleShot(0, [this] { composited_ = readComposited(); });
    }
    return composited;
}

void DesktopProgram::watchCompositor() {
    auto* connection = connection_->connection();
    const auto* extension = xcb_get_extension_data(connection, &xcb_xfixes_id);
    if (extension == nullptr || extension->present == 0) {
        return;
    }
    std::free(xcb_xfixes_query_version_reply(
        connection, xcb_xfixes_query_version(connection, XCB_XFIXES_MAJOR_VERSION, 0), nullptr));
    const auto selection = connection_->atom("_NET_WM_CM_S0");
    xcb_xfixes_select_selection_input(connection, connection_->root(), selection,
                                      XCB_XFIXES_SELECTION_EVENT_MASK_SET_SELECTION_OWNER |
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_WINDOW_DESTROY |
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_CLIENT_CLOSE);
    const auto notify =
        static_cast<std::uint8_t>(extension->first_event + XCB_XFIXES_SELECTION_NOTIFY);
    connection_->addListener([this, notify, selection](const xcb_generic_event_t& event) {
        if ((event.response_type & 0x7f) != notify) {
            return;
        }
        const auto& change = reinterpret_cast<const xcb_xfixes_selection_notify_event_t&>(event);
        if (change.selection == selection) {
            composited_ = change.owner != XCB_NONE;
        }
    });
    compositorWatched_ = true;
}

bool DesktopProgram::readComposited() {
    const auto selection = "_NET_WM_CM_S0";
    auto* reply = xcb_get_selection_owner_reply(
        connection_->connection(),
        xcb_get_selection_owner(connection_->connection(), connection_->atom(selection)), nullptr);
    const bool owned = reply != nullptr && reply->owner != XCB_NONE;
    std::free(reply);
    return owned;
}

Rect DesktopProgram::toDesktop(const Rect& frame) const {
    const double scale = screens_->scaleFactor();
    const double top = screens_->primaryHeight() / scale;
    return {{frame.origin.x, top - frame.origin.y - frame.size.height}, frame.size};
}

}  // namespace orvane
