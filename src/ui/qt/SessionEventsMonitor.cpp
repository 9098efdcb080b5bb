#include "ui/qt/SessionEventsMonitor.h"

#include <QDBusConnection>
#include <QVariantMap>

#include "core/Logger.h"

namespace orvane {

namespace {

const Logger& log() {
    return Logger::forCategory(LogCategory::shortcutinterception);
}

const QString login1 = QStringLiteral("org.freedesktop.login1");
// logind's alias for the session of the calling process.
const QString ownSession = QStringLiteral("/org/freedesktop/login1/session/auto");

}  // namespace

SessionEventsMonitor::SessionEventsMonitor(
    std::shared_ptr<NotificationCenterPort> workspaceNotifications,
    std::shared_ptr<NotificationCenterPort> distributedNotifications)
    : workspaceNotifications_(std::move(workspaceNotifications)),
      distributedNotifications_(std::move(distributedNotifications)) {
    auto system = QDBusConnection::systemBus();
    if (system.isConnected()) {
        const bool sleep =
            system.connect(login1, QStringLiteral("/org/freedesktop/login1"),
                           QStringLiteral("org.freedesktop.login1.Manager"),
                           QStringLiteral("PrepareForSleep"), this, SLOT(prepareForSleep(bool)));
        const bool lock =
            system.connect(login1, ownSession, QStringLiteral("org.freedesktop.login1.Session"),
                           QStringLiteral("Lock"), this, SLOT(sessionLocked()));
        system.connect(login1, ownSession, QStringLiteral("org.freedesktop.DBus.Properties"),
                       QStringLiteral("PropertiesChanged"), this,
                       SLOT(sessionPropertiesChanged(QString, QVariantMap, QStringList)));
        log().debug("logind watched for sleep %{bool}d and lock %{bool}d", sleep, lock);
    } else {
        log().debug("no system bus: sleep and session changes are not watched");
    }
    auto session = QDBusConnection::sessionBus();
    if (session.isConnected()) {
        session.connect(QString(), QStringLiteral("/org/freedesktop/ScreenSaver"),
                        QStringLiteral("org.freedesktop.ScreenSaver"),
                        QStringLiteral("ActiveChanged"), this,
                        SLOT(screenSaverActiveChanged(bool)));
    } else {
        log().debug("no session bus: the screensaver is not watched");
    }
}

void SessionEventsMonitor::prepareForSleep(bool starting) {
    if (starting) {
        workspaceNotifications_->postNotification({workspace_notification::willSleep});
    }
}

void SessionEventsMonitor::sessionLocked() {
    distributedNotifications_->postNotification({"com.apple.screenIsLocked"});
}

void SessionEventsMonitor::screenSaverActiveChanged(bool active) {
    if (active) {
        workspaceNotifications_->postNotification({workspace_notification::screensDidSleep});
    }
}

void SessionEventsMonitor::sessionPropertiesChanged(const QString& interface,
                                                    const QVariantMap& changed,
                                                    const QStringList&) {
    const auto active = changed.find(QStringLiteral("Active"));
    if (interface == QStringLiteral("org.freedesktop.login1.Session") && active != changed.end() &&
        !active->toBool()) {
        workspaceNotifications_->postNotification({workspace_notification::sessionDidResignActive});
    }
}

}  // namespace orvane
