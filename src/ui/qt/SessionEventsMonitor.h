// Sleep, screen lock and session changes from logind (system bus) and the screensaver (session
// bus), posted as the workspace and distributed notices the program listens for. Where a bus or a
// service is missing, that part is not watched, said once at debug level.
#pragma once

#include <QObject>
#include <memory>

#include "platform/NotificationCenterPort.h"

namespace orvane {

class SessionEventsMonitor final : public QObject {
    Q_OBJECT

  public:
    SessionEventsMonitor(std::shared_ptr<NotificationCenterPort> workspaceNotifications,
                         std::shared_ptr<NotificationCenterPort> distributedNotifications);

  private Q_SLOTS:
    void prepareForSleep(bool starting);
    void sessionLocked();
    void screenSaverActiveChanged(bool active);
    void sessionPropertiesChanged(const QString& interface, const QVariantMap& changed,
                                  const QStringList& invalidated);

  private:
    std::shared_ptr<NotificationCenterPort> workspaceNotifications_;
    std::shared_ptr<NotificationCenterPort> distributedNotifications_;
};

}  // namespace orvane
