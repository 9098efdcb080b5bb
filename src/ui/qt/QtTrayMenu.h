// The menu bar scene on a Linux desktop: a tray icon (StatusNotifierItem or XEmbed, whichever the
// desktop's tray offers, as Qt finds it) with the program's menu, drawn from the menu's data in
// the desktop's wording. It stands exactly while the setting asks for it and a tray exists.
#pragma once

#include <QIcon>
#include <QMenu>
#include <QSystemTrayIcon>
#include <memory>

#include "app/MenuBarScene.h"
#include "core/Wording.h"

namespace orvane {

class QtTrayMenu {
  public:
    QtTrayMenu(MenuBarScene& scene, Wording wording, QIcon icon);
    ~QtTrayMenu();
    QtTrayMenu(const QtTrayMenu&) = delete;
    QtTrayMenu& operator=(const QtTrayMenu&) = delete;

    // Whether the icon stands in a tray now.
    bool isShown() const { return tray_.isVisible(); }

  private:
    void rebuild();
    void follow();

    MenuBarScene& scene_;
    Wording wording_;
    QMenu menu_;
    QSystemTrayIcon tray_;
    ObservationToken redrawObservation_ = 0;
    ObservationToken insertedObservation_ = 0;
};

}  // namespace orvane
