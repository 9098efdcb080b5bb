#include "ui/qt/QtApplicationObject.h"

#include <QCoreApplication>
#include <QGuiApplication>
#include <QScreen>
#include <array>

#include "core/Logger.h"
#include "core/Wording.h"
#include "ui/qt/QtWelcomeWindow.h"

namespace orvane {

namespace {

constexpr std::array<const char*, 2> assetNames{"MenuBarIcon", "AboutPanelLogo"};

}  // namespace

QtApplicationObject::QtApplicationObject(std::shared_ptr<NotificationCenterPort> notifications)
    : notifications_(std::move(notifications)) {
    // The program becomes active whenever one of its windows gets the focus, whoever gave it.
    stateConnection_ = QObject::connect(
        qApp, &QGuiApplication::applicationStateChanged, [this](Qt::ApplicationState state) {
            if (state == Qt::ApplicationActive) {
                Logger::forCategory(LogCategory::lifecycle)
                    .debug("a window of Orvane has the focus: the program is active");
                notifications_->postNotification(
                    PlatformNotification{applicationDidBecomeActiveNotification});
            }
        });
}

QtApplicationObject::~QtApplicationObject() {
    QObject::disconnect(stateConnection_);
}

std::vector<PlatformWindowHandle> QtApplicationObject::windows() const {
    std::vector<PlatformWindowHandle> handles;
    for (const auto& [handle, window] : windows_) {
        handles.push_back(handle);
    }
    return handles;
}

void QtApplicationObject::setActivationPolicy(ApplicationActivationPolicy policy) {
    policy_ = policy;
}

bool QtApplicationObject::showSettingsWindow() {
    if (!settingsWindowOpener_) {
        return false;
    }
    settingsWindowOpener_();
    return true;
}

void QtApplicationObject::orderFrontStandardAboutPanel(std::optional<ImageHandle> applicationIcon) {
    if (aboutPanelPresenter_) {
        aboutPanelPresenter_(std::move(applicationIcon));
    }
}

std::optional<ImageHandle> QtApplicationObject::imageNamed(const std::string& name) const {
    for (std::size_t index = 0; index < assetNames.size(); ++index) {
        if (name == assetNames[index]) {
            ImageHandle image;
            image.identifier = assetIdentifierBit | index;
            image.pixelWidth = image.pixelHeight = 256;
            image.description = name;
            return image;
        }
    }
    return std::nullopt;
}

std::optional<std::string> QtApplicationObject::assetName(std::uint64_t identifier) {
    const auto index = identifier & ~assetIdentifierBit;
    if ((identifier & assetIdentifierBit) == 0 || index >= assetNames.size()) {
        return std::nullopt;
    }
    return assetNames[index];
}

void QtApplicationObject::terminate() {
    // Not quit(): that asks every window to close first, and Settings only hides.
    QMetaObject::invokeMethod(
        QCoreApplication::instance(), [] { QCoreApplication::exit(0); }, Qt::QueuedConnection);
}

void QtApplicationObject::activate() {
    // A program in the background can't take the focus on X11; the window it shows next asks the
    // window manager for it, and the focus it gets makes the program active.
}

PlatformWindowHandle QtApplicationObject::makeWindow(std::shared_ptr<HostedView> content) {
    const auto handle = ++lastHandle_;
    auto& window = windows_[handle];
    if (auto welcome = std::dynamic_pointer_cast<PermissionOnboardingView>(content)) {
        // The title bar's button closes it the way the program does, telling the controller.
        window.ownedWidget = std::make_shared<QtWelcomeWindow>(welcome, Wording::linuxDesktop(),
                                                               [this, handle] { close(handle); });
        window.widget = window.ownedWidget.get();
    }
    window.content = std::move(content);
    return handle;
}

PlatformWindowHandle QtApplicationObject::adopt(QWidget* widget) {
    const auto handle = ++lastHandle_;
    windows_[handle].widget = widget;
    return handle;
}

void QtApplicationObject::setTitle(PlatformWindowHandle window, const std::string& title) {
    if (auto found = windows_.find(window); found != windows_.end()) {
        found->second.title = title;
        if (found->second.widget) {
            found->second.widget->setWindowTitle(QString::fromStdString(title));
        }
    }
}

void QtApplicationObject::setStyleMask(PlatformWindowHandle window, std::uint64_t styleMask) {
    auto found = windows_.find(window);
    if (found == windows_.end()) {
        return;
    }
    found->second.styleMask = styleMask;
    auto* widget = found->second.widget.data();
    if (widget == nullptr) {
        return;
    }
    // Only the buttons the mask allows: the window manager reads them from the window's hints.
    Qt::WindowFlags flags = Qt::Window | Qt::CustomizeWindowHint;
    if ((styleMask & window_style_mask::titled) != 0) {
        flags |= Qt::WindowTitleHint;
    }
    if ((styleMask & window_style_mask::closable) != 0) {
        flags |= Qt::WindowCloseButtonHint;
    }
    if ((styleMask & window_style_mask::miniaturizable) != 0) {
        flags |= Qt::WindowMinimizeButtonHint;
    }
    if ((styleMask & window_style_mask::resizable) != 0) {
        flags |= Qt::WindowMaximizeButtonHint;
    }
    widget->setWindowFlags(flags);
}

void QtApplicationObject::center(PlatformWindowHandle window) {
    auto found = windows_.find(window);
    if (found == windows_.end() || !found->second.widget) {
        return;
    }
    auto* widget = found->second.widget.data();
    if (const auto* screen = widget->screen()) {
        auto frame = widget->frameGeometry();
        frame.moveCenter(screen->availableGeometry().center());
        widget->move(frame.topLeft());
    }
}

void QtApplicationObject::makeKeyAndOrderFront(PlatformWindowHandle window) {
    auto found = windows_.find(window);
    if (found == windows_.end()) {
        return;
    }
    found->second.visible = true;
    if (auto* widget = found->second.widget.data()) {
        widget->show();
        widget->raise();
        widget->activateWindow();
        return;
    }
    Logger::forCategory(LogCategory::lifecycle)
        .info("window \"%{public}s\" is open; this desktop does not draw it yet",
              found->second.title);
}

void QtApplicationObject::close(PlatformWindowHandle window) {
    auto found = windows_.find(window);
    if (found == windows_.end() || !isVisible(window)) {
        return;
    }
    notifications_->postNotification(
        PlatformNotification{windowWillCloseNotification, std::nullopt, {}, window});
    if (auto still = windows_.find(window); still != windows_.end()) {
        still->second.visible = false;
        if (still->second.widget) {
            still->second.widget->hide();
        }
    }
}

bool QtApplicationObject::isVisible(PlatformWindowHandle window) const {
    auto found = windows_.find(window);
    if (found != windows_.end() && found->second.widget) {
        return found->second.widget->isVisible();
    }
    return found != windows_.end() && found->second.visible;
}

std::uint64_t QtApplicationObject::styleMask(PlatformWindowHandle window) const {
    auto found = windows_.find(window);
    return found == windows_.end() ? 0 : found->second.styleMask;
}

}  // namespace orvane
