#include "ui/qt/LinuxPermissions.h"

#include <gio/gio.h>

#include <QMessageBox>
#include <QUrl>
#include <QUrlQuery>

#include "core/Logger.h"

namespace orvane {

namespace {

// A report that no mail program could take: what to send, and where, in a window of its own.
void showUnsentReport(const QUrl& link) {
    const QUrlQuery query(link);
    auto* box = new QMessageBox(
        QMessageBox::Information, QStringLiteral("Report a Bug"),
        QStringLiteral("No mail program is set up on this computer. Send the report below to %1 "
                       "with the subject \u201c%2\u201d.")
            .arg(link.path(), query.queryItemValue(QStringLiteral("subject"), QUrl::FullyDecoded)),
        QMessageBox::Close);
    box->setDetailedText(query.queryItemValue(QStringLiteral("body"), QUrl::FullyDecoded));
    box->setTextInteractionFlags(Qt::TextSelectableByMouse);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->show();
}

}  // namespace

void LinuxPermissions::openURL(const std::string& url) {
    const auto link = QUrl(QString::fromUtf8(url.data(), static_cast<qsizetype>(url.size())));
    if (link.scheme() == QLatin1String("qrc")) {
        conditions_.showHelp(
            url, missingReason(url == windowPreviewsHelp ? PermissionCapability::screenRecording
                                                         : PermissionCapability::accessibility));
        return;
    }
    const auto& log = Logger::forCategory(LogCategory::permission);
    // Asked first: an opener that finds no program for the address fails out of sight.
    const auto scheme = link.scheme().toStdString();
    GAppInfo* handler = g_app_info_get_default_for_uri_scheme(scheme.c_str());
    if (handler == nullptr) {
        log.error("no program on this desktop opens %{public}s addresses", scheme);
        if (scheme == "mailto") {
            showUnsentReport(link);
        }
        return;
    }
    g_object_unref(handler);
    GError* error = nullptr;
    if (!g_app_info_launch_default_for_uri(url.c_str(), nullptr, &error)) {
        log.error("the desktop could not open %{public}s: %{public}s", url,
                  error != nullptr ? error->message : "no reason given");
    }
    g_clear_error(&error);
}

std::string LinuxPermissions::settingsLink(PermissionCapability capability) const {
    return capability == PermissionCapability::accessibility ? keyboardShortcutHelp
                                                             : windowPreviewsHelp;
}

std::string LinuxPermissions::missingReason(PermissionCapability capability) {
    if (capability == PermissionCapability::screenRecording) {
        if (conditions_.canCaptureWindows()) {
            return {};
        }
        return !conditions_.captureMissingReason.empty()
                   ? conditions_.captureMissingReason
                   : "This display server cannot capture windows (the X server has no Composite "
                     "extension), so cards show application icons.";
    }
    if (conditions_.holdsShortcut()) {
        return {};
    }
    if (conditions_.shortcutMissingReason) {
        return conditions_.shortcutMissingReason();
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
