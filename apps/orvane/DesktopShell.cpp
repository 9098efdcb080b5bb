#include "DesktopShell.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QIcon>
#include <QTimer>

#include "app/ProductSettings.h"
#include "core/Logger.h"
#include "core/Wording.h"
#include "platform/posix/LinuxSystemInformation.h"
#include "platform/posix/LocalNotificationCenter.h"
#include "platform/posix/PackageManagerUpdater.h"
#include "platform/posix/PosixDynamicLibrary.h"
#include "platform/posix/ProgramBundle.h"
#include "platform/posix/SystemClock.h"
#include "platform/posix/XdgUserDefaults.h"
#include "platform/x11/GioApplicationLauncher.h"
#include "platform/x11/XdgAutostartLoginItem.h"
#include "preferences/PreferencesStore.h"
#include "preferences/SwitcherPreferencesCodec.h"
#include "ui/qt/QtPasteboard.h"
#include "ui/qt/QtSound.h"
#include "ui/qt/QtTextMeasurer.h"
#include "ui/qt/QtUrlComponents.h"

#ifndef ORVANE_VERSION
#define ORVANE_VERSION "0"
#endif

namespace orvane {

DesktopShell::DesktopShell()
    : runLoop_(std::make_shared<QtRunLoop>()),
      desktopEntries_(std::make_shared<DesktopEntryCatalog>()),
      workspaceNotifications_(std::make_shared<LocalNotificationCenter>()),
      applicationNotifications_(std::make_shared<LocalNotificationCenter>()),
      distributedNotifications_(std::make_shared<LocalNotificationCenter>()),
      application_(std::make_shared<QtApplicationObject>(applicationNotifications_)) {}

DesktopShell::~DesktopShell() {
    terminate();
    settingsWindow_.reset();
    helpWindow_.reset();
    delete aboutPanel_.data();
    tray_.reset();
}

OrvaneApplicationDelegate::Platform DesktopShell::platform(std::optional<std::string> loginNote) {
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
    platform.mainRunLoop = runLoop_;
    platform.clock = std::make_shared<SystemClock>();
    platform.application = application_;
    platform.applicationNotifications = applicationNotifications_;
    platform.workspaceNotifications = workspaceNotifications_;
    sessionEvents_ =
        std::make_unique<SessionEventsMonitor>(workspaceNotifications_, distributedNotifications_);
    platform.distributedNotifications = distributedNotifications_;
    platform.privateFocusLibrary = std::make_shared<PosixDynamicLibrary>();
    platform.fileManager = desktopEntries_;
    platform.applicationFolders = desktopEntries_->folders();
    platform.applicationLauncher = std::make_shared<GioApplicationLauncher>(runLoop_);
    platform.sound = std::make_shared<QtSound>();
    platform.updater = std::make_shared<PackageManagerUpdater>(
        QCoreApplication::applicationFilePath().toStdString());
    platform.bundle = std::make_shared<ProgramBundle>(ORVANE_VERSION, ORVANE_VERSION);
    platform.systemInformation = std::make_shared<LinuxSystemInformation>();
    platform.pasteboard = std::make_shared<QtPasteboard>();
    platform.urlComponents = std::make_shared<QtUrlComponents>();
    platform.loginItem = std::make_shared<XdgAutostartLoginItem>(
        XdgAutostartLoginItem::standardEntryFile(),
        QCoreApplication::applicationFilePath().toStdString(), std::move(loginNote));
    platform.supportAddress = supportEmailAddress;
    platform.wording = Wording::linuxDesktop();
    return platform;
}

void DesktopShell::start(OrvaneApplicationDelegate::Platform platform, Images images,
                         std::function<std::string()> windowManagerName) {
    images_ = std::move(images);
    windowManagerName_ = std::move(windowManagerName);
    app_ = std::make_unique<OrvaneApp>(std::move(platform));
    application_->setSettingsWindowOpener([this] { openSettingsWindow(); });
    application_->setAboutPanelPresenter(
        [this](std::optional<ImageHandle> icon) { showAboutPanel(icon); });
    tray_ = std::make_unique<QtTrayMenu>(app_->menuBarScene(), Wording::linuxDesktop(),
                                         QIcon(QStringLiteral(":/orvane/orvane-menubar.svg")));
}

void DesktopShell::launch() {
    app_->finishLaunching();
    // Read once the program runs, before anyone searches: thousands of entries take a while.
    QTimer::singleShot(0, [entries = desktopEntries_] { entries->prepare(); });
}

bool DesktopShell::isSessionActive() const {
    const auto& program = app_->delegate();
    return program->switcherSessionCoordinator()->isSessionActive() ||
           program->launcherSessionCoordinator()->isLauncherSessionActive();
}

std::shared_ptr<const OverlayViewBuilder> DesktopShell::overlayBuilder(
    std::shared_ptr<WorkspacePort> workspace) const {
    return std::make_shared<OverlayViewBuilder>(
        [workspace](ProcessIdentifier process, const std::string&) -> std::optional<ImageHandle> {
            auto application = workspace->runningApplication(process);
            return application ? application->icon : std::nullopt;
        },
        std::make_shared<QtTextMeasurer>(), Wording::linuxDesktop());
}

void DesktopShell::terminate() {
    if (isRunning()) {
        app_->terminate();
    }
}

void DesktopShell::reopen() {
    if (!isRunning()) {
        return;
    }
    const bool anyVisible = settingsWindow_ && settingsWindow_->isVisible();
    app_->delegate()->applicationShouldHandleReopen(anyVisible);
    if (anyVisible) {
        settingsWindow_->raise();
        settingsWindow_->activateWindow();
    }
}

void DesktopShell::openSettingsWindow() {
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

void DesktopShell::showHelp(const std::string& address, const std::string& reason) {
    if (!helpWindow_) {
        keyboardSettings_ = std::make_unique<DesktopKeyboardSettings>(
            windowManagerName_ ? windowManagerName_() : "");
        helpWindow_ = std::make_unique<QtHelpWindow>(QtHelpWindow::Actions{
            keyboardSettings_->name(), [this] { keyboardSettings_->open(); }});
        helpWindow_->setWindowIcon(QIcon(QStringLiteral(":/orvane/orvane.svg")));
    }
    helpWindow_->showPage(address, reason);
}

void DesktopShell::showAboutPanel(const std::optional<ImageHandle>& icon) {
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

QImage DesktopShell::image(const ImageHandle& handle) {
    if (const auto asset = QtApplicationObject::assetName(handle.identifier)) {
        const auto file = *asset == "MenuBarIcon" ? QStringLiteral(":/orvane/orvane-menubar.svg")
                                                  : QStringLiteral(":/orvane/orvane.svg");
        return QIcon(file)
            .pixmap(
                QSize(static_cast<int>(handle.pixelWidth), static_cast<int>(handle.pixelHeight)))
            .toImage();
    }
    if (auto found = imageCache_.find(handle.identifier); found != imageCache_.end()) {
        return found->second;
    }
    // Previews change with every capture: they go to the renderer as they are, never kept here.
    if (const auto* thumbnail =
            images_.thumbnail ? images_.thumbnail(handle.identifier) : nullptr) {
        return QImage(reinterpret_cast<const uchar*>(thumbnail->pixels.data()), thumbnail->width,
                      thumbnail->height, thumbnail->width * 4, QImage::Format_ARGB32_Premultiplied);
    }
    if (auto name = desktopEntries_->iconName(handle.identifier)) {
        auto icon = themeIcon(*name, handle);
        imageCache_.emplace(handle.identifier, icon);
        return icon;
    }
    const auto* pixels = images_.iconPixels ? images_.iconPixels(handle.identifier) : nullptr;
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
    if (imageCache_.size() > 256) {
        imageCache_.clear();
    }
    imageCache_.emplace(handle.identifier, copy);
    return copy;
}

QImage DesktopShell::themeIcon(const std::string& name, const ImageHandle& handle) const {
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
