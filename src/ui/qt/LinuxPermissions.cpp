#include "ui/qt/LinuxPermissions.h"

#include <QDesktopServices>
#include <QUrl>

#include "core/Logger.h"

namespace orvane {

void LinuxPermissions::openURL(const std::string& url) {
    const auto link = QUrl(QString::fromUtf8(url.data(), static_cast<qsizetype>(url.size())));
    if (link.scheme() == QLatin1String("qrc")) {
        conditions_.showHelp(url);
        return;
    }
    if (!QDesktopServices::openUrl(link)) {
        Logger::forCategory(LogCategory::permission)
            .error("the desktop could not open %{public}s", url);
    }
}

std::string LinuxPermissions::settingsLink(PermissionCapability capability) const {
    return capability == PermissionCapability::accessibility ? keyboardShortcutHelp
                                                             : windowPreviewsHelp;
}

std::string LinuxPermissions::missingReason(PermissionCapability capability) {
    if (capability == PermissionCapability::screenRecording) {
        return conditions_.canCaptureWindows()
                   ? std::string()
                   : "This display server cannot capture windows (the X server has no Composite "
                     "extension), so cards show application icons.";
    }
    if (conditions_.holdsShortcut()) {
        return {};
    }
    const auto manager = conditions_.windowManagerName();
    const auto holder = manager.empty() ? std::string("most likely the window manager")
                                        : "most likely " + manager + ", the window manager";
    return conditions_.shortcutName() + " is held by another program, " + holder +
           ". Free it in the window manager's keyboard settings: Openbox's rc.xml, xfwm4's "
           "Window Manager settings, or the Keyboard Shortcuts of Cinnamon and MATE. Orvane "
           "takes it by itself once it is free.";
}

}  // namespace orvane
