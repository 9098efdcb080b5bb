#include "DesktopProgram.h"

#include <xcb/xfixes.h>

#include <QAbstractEventDispatcher>
#include <QCoreApplication>
#include <QFileInfo>
#include <QIcon>
#include <QMessageBox>
#include <QTimer>
#include <cstdlib>

#include "app/ProductSettings.h"
#include "core/Logger.h"
#include "core/Wording.h"
#include "platform/linux/LinuxWindowList.h"
#include "platform/posix/LinuxSystemInformation.h"
#include "platform/posix/LocalNotificationCenter.h"
#include "platform/posix/PackageManagerUpdater.h"
#include "platform/posix/PosixDynamicLibrary.h"
#include "platform/posix/ProgramBundle.h"
#include "platform/posix/SystemClock.h"
#include "platform/posix/XdgUserDefaults.h"
#include "platform/x11/GioApplicationLauncher.h"
#include "platform/x11/X11ScreenCapture.h"
#include "platform/x11/XdgAutostartLoginItem.h"
#include "preferences/PreferencesStore.h"
#include "preferences/SwitcherPreferencesCodec.h"
#include "ui/qt/LinuxPermissions.h"
#include "ui/qt/QtApplicationObject.h"
#include "ui/qt/QtPasteboard.h"
#include "ui/qt/QtRunLoop.h"
#include "ui/qt/QtSound.h"
#include "ui/qt/QtTextMeasurer.h"
#include "ui/qt/QtUrlComponents.h"

#ifndef ORVANE_VERSION
#define ORVANE_VERSION "0"
#endif

namespace orvane {

std::unique_ptr<DesktopProgram> DesktopProgram::start(std::unique_ptr<X11Connection> connection) {
    return std::unique_ptr<DesktopProgram>(new DesktopProgram(std::move(connection)));
}

DesktopProgram::DesktopProgram(std::unique_ptr<X11Connection> connection)
    : connection_(std::move(connection)) {
    auto runLoop = std::make_shared<QtRunLoop>();
    // The compositor's coming and going is told by the server, so the first gesture after it
    // already draws the panel for it: square without one, never with black corners.
    watchCompositor();
    desktopEntries_ = std::make_shared<DesktopEntryCatalog>();
    // An application is what the desktop's menu shows as one: four terminals are one terminal.
    model_ = std::make_unique<X11WindowModel>(
        *connection_,
        [entries = desktopEntries_](std::string_view instance, std::string_view windowClass) {
            return entries->entryPathForWindowClass(instance, windowClass);
        });
    screens_ = std::make_unique<X11Screens>(*connection_, *model_);
    auto workspaceNotifications = std::make_shared<LocalNotificationCenter>();
    // Before the Accessibility port: it must hear of a launch before the focus notices.
    workspace_ = std::make_shared<LinuxWorkspace>(
        *model_, workspaceNotifications,
        [entries = desktopEntries_](std::string_view instance, std::string_view windowClass) {
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
        QtOverlayRenderer([this](const ImageHandle& handle) { return image(handle); }));
    auto applicationNotifications = std::make_shared<LocalNotificationCenter>();

    OrvaneApplicationDelegate::Platform platform;
    platform.currentProcessIdentifier =
        static_cast<ProcessIdentifier>(QCoreApplication::applicationPid());
    platform.userDefaults = std::make_shared<XdgUserDefaults>(
        XdgUserDefaults::defaultFolder(), [](const std::string& key, const std::string& bytes) {
            if (key != preferencesDefaultsKey) {
                return std::string();
            }
            const auto decoded = SwitcherPreferencesCodec::decode(bytes);
            if (decoded.preferences) {
                return std::string();
            }
            return decoded.error.empty() ? std::string("it does not decode") : decoded.error;
        });
    screenCapture_ = std::make_shared<X11ScreenCapture>(*connection_, *model_, *screens_, runLoop);
    permissions_ = std::make_shared<LinuxPermissions>(LinuxPermissions::Conditions{
        [this] { return eventTap_->requiredChordIsFree(); },
        [this] { return eventTap_->requiredChordName(); },
        [this] { return connection_->windowManagerName(); },
        [capture = screenCapture_] { return capture->preflightScreenCaptureAccess(); },
        [this](const std::string& address, const std::string& reason) {
            showHelp(address, reason);
        }});
    platform.permissions = permissions_;
    platform.mainRunLoop = runLoop;
    platform.clock = std::make_shared<SystemClock>();
    application_ = std::make_shared<QtApplicationObject>(applicationNotifications);
    platform.application = application_;
    platform.applicationNotifications = applicationNotifications;
    accessibility_ = std::make_shared<LinuxAccessibility>(*model_, runLoop);
    platform.accessibility = accessibility_;
    platform.windowList = std::make_shared<LinuxWindowList>(*model_);
    platform.workspace = workspace_;
    platform.workspaceNotifications = workspaceNotifications;
    auto distributedNotifications = std::make_shared<LocalNotificationCenter>();
    sessionEvents_ =
        std::make_unique<SessionEventsMonitor>(workspaceNotifications, distributedNotifications);
    platform.distributedNotifications = distributedNotifications;
    platform.eventTaps = eventTap_;
    platform.privateFocusLibrary = std::make_shared<PosixDynamicLibrary>();
    platform.screenCapture = screenCapture_;
    platform.screens = std::shared_ptr<ScreenPort>(screens_.get(), [](ScreenPort*) {});
    platform.overlayPanel = overlayPanel_;
    platform.fileManager = desktopEntries_;
    platform.applicationFolders = desktopEntries_->folders();
    platform.applicationLauncher = std::make_shared<GioApplicationLauncher>(runLoop);
    platform.sound = std::make_shared<QtSound>();
    platform.updater = std::make_shared<PackageManagerUpdater>(
        QCoreApplication::applicationFilePath().toStdString());
    platform.bundle = std::make_shared<ProgramBundle>(ORVANE_VERSION, ORVANE_VERSION);
    platform.systemInformation = std::make_shared<LinuxSystemInformation>();
    platform.pasteboard = std::make_shared<QtPasteboard>();
    platform.urlComponents = std::make_shared<QtUrlComponents>();
    platform.loginItem = std::make_shared<XdgAutostartLoginItem>(
        XdgAutostartLoginItem::standardEntryFile(),
        QCoreApplication::applicationFilePath().toStdString());
    platform.supportAddress = supportEmailAddress;
    platform.wording = Wording::linuxDesktop();

    app_ = std::make_unique<OrvaneApp>(std::move(platform));
    const auto& delegate = app_->delegate();
    eventTap_->setPreferences(delegate->preferencesStore());
    // Alt goes down a moment before Tab: the windows are read then, not on Tab's path.
    eventTap_->setHoldModifierHandler([weak = std::weak_ptr(delegate)] {
        if (auto program = weak.lock()) {
            program->switcherSessionCoordinator()->prepare();
        }
    });
    eventTap_->setSessionQuery([weak = std::weak_ptr(delegate)] {
        auto program = weak.lock();
        return program && (program->switcherSessionCoordinator()->isSessionActive() ||
                           program->launcherSessionCoordinator()->isLauncherSessionActive());
    });
    auto workspace = workspace_;
    overlayPanel_->attach(delegate->overlayCoordinator()->viewModel(),
                          std::make_shared<OverlayViewBuilder>(
                              [workspace](ProcessIdentifier process,
                                          const std::string&) -> std::optional<ImageHandle> {
                                  auto application = workspace->runningApplication(process);
                                  return application ? application->icon : std::nullopt;
                              },
                              std::make_shared<QtTextMeasurer>(), Wording::linuxDesktop()));

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
    application_->setSettingsWindowOpener([this] { openSettingsWindow(); });
    application_->setAboutPanelPresenter(
        [this](std::optional<ImageHandle> icon) { showAboutPanel(icon); });
    tray_ = std::make_unique<QtTrayMenu>(app_->menuBarScene(), Wording::linuxDesktop(),
                                         QIcon(QStringLiteral(":/orvane/orvane-menubar.svg")));
    app_->finishLaunching();
    connection_->flush();
    // Read once the program runs, before anyone searches: thousands of entries take a while.
    QTimer::singleShot(0, [entries = desktopEntries_] { entries->prepare(); });
}

DesktopProgram::~DesktopProgram() {
    terminate();
    settingsWindow_.reset();
    helpWindow_.reset();
    delete aboutPanel_.data();
    tray_.reset();
    QObject::disconnect(aboutToBlock_);
}

void DesktopProgram::terminate() {
    if (app_ && !app_->hasTerminated()) {
        app_->terminate();
        connection_->flush();
    }
}

void DesktopProgram::perform(ExternalGesture gesture) {
    if (app_ && !app_->hasTerminated() && eventTap_) {
        eventTap_->perform(gesture);
    }
}

void DesktopProgram::reopen() {
    if (!app_ || app_->hasTerminated()) {
        return;
    }
    const bool anyVisible = settingsWindow_ && settingsWindow_->isVisible();
    app_->delegate()->applicationShouldHandleReopen(anyVisible);
    if (anyVisible) {
        settingsWindow_->raise();
        settingsWindow_->activateWindow();
    }
}

void DesktopProgram::openSettingsWindow() {
    const auto& view = app_->settingsView();
    if (!settingsWindow_) {
        settingsWindow_ = std::make_unique<QtSettingsWindow>(
            view, Wording::linuxDesktop(), [view] { view->windowDidShow(); },
            [view] { view->windowDidHide(); });
        settingsWindow_->setWindowIcon(QIcon(QStringLiteral(":/orvane/orvane.svg")));
        view->attach(application_->adopt(settingsWindow_.get()));
    }
    settingsWindow_->show();
    settingsWindow_->raise();
    settingsWindow_->activateWindow();
}

void DesktopProgram::showHelp(const std::string& address, const std::string& reason) {
    if (!helpWindow_) {
        keyboardSettings_ =
            std::make_unique<DesktopKeyboardSettings>(connection_->windowManagerName());
        helpWindow_ = std::make_unique<QtHelpWindow>(QtHelpWindow::Actions{
            keyboardSettings_->name(), [this] { keyboardSettings_->open(); }});
        helpWindow_->setWindowIcon(QIcon(QStringLiteral(":/orvane/orvane.svg")));
    }
    helpWindow_->showPage(address, reason);
}

void DesktopProgram::showAboutPanel(const std::optional<ImageHandle>& icon) {
    // One at a time: asked again, the open one comes forward.
    if (aboutPanel_) {
        aboutPanel_->raise();
        aboutPanel_->activateWindow();
        return;
    }
    auto* panel = new QMessageBox(QMessageBox::NoIcon, QStringLiteral("About Orvane"),
                                  QStringLiteral("<b>Orvane</b> %1<br><br>A keyboard-driven window "
                                                 "switcher ordered by recency, with a search "
                                                 "launcher.")
                                      .arg(QStringLiteral(ORVANE_VERSION)),
                                  QMessageBox::Close);
    panel->setAttribute(Qt::WA_DeleteOnClose);
    // A message box blocks the whole program by default, the tray menu included.
    panel->setWindowModality(Qt::NonModal);
    if (icon) {
        panel->setIconPixmap(QPixmap::fromImage(image(*icon))
                                 .scaled(96, 96, Qt::KeepAspectRatio, Qt::SmoothTransformation));
    }
    aboutPanel_ = panel;
    panel->show();
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

QImage DesktopProgram::image(const ImageHandle& handle) {
    if (const auto asset = QtApplicationObject::assetName(handle.identifier)) {
        const auto file = *asset == "MenuBarIcon" ? QStringLiteral(":/orvane/orvane-menubar.svg")
                                                  : QStringLiteral(":/orvane/orvane.svg");
        return QIcon(file)
            .pixmap(
                QSize(static_cast<int>(handle.pixelWidth), static_cast<int>(handle.pixelHeight)))
            .toImage();
    }
    if (auto found = images_.find(handle.identifier); found != images_.end()) {
        return found->second;
    }
    // Previews change with every capture: they go to the renderer as they are, never kept here.
    if (const auto* thumbnail = screenCapture_->thumbnail(handle.identifier)) {
        return QImage(reinterpret_cast<const uchar*>(thumbnail->pixels.data()), thumbnail->width,
                      thumbnail->height, thumbnail->width * 4, QImage::Format_ARGB32_Premultiplied);
    }
    if (auto name = desktopEntries_->iconName(handle.identifier)) {
        auto icon = themeIcon(*name, handle);
        images_.emplace(handle.identifier, icon);
        return icon;
    }
    const auto* pixels = workspace_->iconPixels(handle.identifier);
    if (pixels == nullptr || handle.pixelWidth <= 0 || handle.pixelHeight <= 0) {
        return {};
    }
    const int width = static_cast<int>(handle.pixelWidth);
    const int height = static_cast<int>(handle.pixelHeight);
    if (pixels->size() < static_cast<std::size_t>(width) * static_cast<std::size_t>(height)) {
        return {};
    }
    QImage image(reinterpret_cast<const uchar*>(pixels->data()), width, height, width * 4,
                 QImage::Format_ARGB32);
    auto copy = image.copy();
    if (images_.size() > 256) {
        images_.clear();
    }
    images_.emplace(handle.identifier, copy);
    return copy;
}

QImage DesktopProgram::themeIcon(const std::string& name, const ImageHandle& handle) const {
    const auto text = QString::fromStdString(name);
    const QSize size(static_cast<int>(handle.pixelWidth), static_cast<int>(handle.pixelHeight));
    auto image =
        (text.startsWith('/') ? QIcon(text) : QIcon::fromTheme(text)).pixmap(size).toImage();
    // Many entries still name an icon that lives only among the old pixmaps.
    for (const auto* extension : {".png", ".svg", ".xpm"}) {
        if (!image.isNull() || text.startsWith('/')) {
            break;
        }
        const auto path = QStringLiteral("/usr/share/pixmaps/") + text + QLatin1String(extension);
        if (QFileInfo::exists(path)) {
            image = QIcon(path).pixmap(size).toImage();
        }
    }
    if (image.isNull()) {
        Logger::forCategory(LogCategory::launcher)
            .debug("icon %{public}s is in no icon theme; the card draws none", name);
        return {};
    }
    return image.convertToFormat(QImage::Format_ARGB32_Premultiplied);
}

}  // namespace orvane
