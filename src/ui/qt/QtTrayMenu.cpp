#include "ui/qt/QtTrayMenu.h"

#include <QKeySequence>
#include <utility>

#include "core/Logger.h"
#include "ui/qt/QtSymbols.h"

namespace orvane {

QtTrayMenu::QtTrayMenu(MenuBarScene& scene, Wording wording, QIcon icon)
    : scene_(scene), wording_(std::move(wording)) {
    tray_.setIcon(icon);
    tray_.setToolTip(QString::fromStdString(scene_.title()));
    tray_.setContextMenu(&menu_);
    // The icon's own click opens Settings; the menu is the other button's.
    QObject::connect(&tray_, &QSystemTrayIcon::activated,
                     [this](QSystemTrayIcon::ActivationReason reason) {
                         if (reason == QSystemTrayIcon::Trigger) {
                             scene_.content().choose(MenuAction::settings);
                         }
                     });
    // The entries read the permissions as they are drawn: drawn again each time the menu opens.
    QObject::connect(&menu_, &QMenu::aboutToShow, [this] { rebuild(); });
    // Later, never inside the handler of an entry that the rebuild would delete.
    redrawObservation_ = scene_.content().redraws().subscribe([this](const auto&) {
        QMetaObject::invokeMethod(
            &menu_, [this] { rebuild(); }, Qt::QueuedConnection);
    });
    insertedObservation_ = scene_.isInserted().subscribe([this](const bool&) { follow(); });
    rebuild();
    follow();
}

QtTrayMenu::~QtTrayMenu() {
    scene_.content().redraws().unsubscribe(redrawObservation_);
    scene_.isInserted().unsubscribe(insertedObservation_);
}

void QtTrayMenu::rebuild() {
    menu_.clear();
    for (const auto& entry : scene_.content().entries()) {
        if (entry.kind == MenuEntryKind::separator) {
            menu_.addSeparator();
            continue;
        }
        auto* action = menu_.addAction(QString::fromStdString(wording_.apply(entry.text)));
        if (!entry.symbol.empty()) {
            action->setIcon(QtSymbols::icon(entry.symbol));
        }
        // A label reads as a disabled entry, as the desktop's own status lines do.
        action->setEnabled(entry.kind == MenuEntryKind::button && entry.isEnabled);
        if (!entry.commandKey.empty()) {
            // Command is Control on this desktop.
            action->setShortcut(QKeySequence(QStringLiteral("Ctrl+") +
                                             QString::fromStdString(entry.commandKey).toUpper()));
        }
        QObject::connect(action, &QAction::triggered,
                         [this, choice = entry.action] { scene_.content().choose(choice); });
    }
}

void QtTrayMenu::follow() {
    const bool wanted = scene_.isInserted().value();
    if (wanted && !QSystemTrayIcon::isSystemTrayAvailable()) {
        Logger::forCategory(LogCategory::lifecycle)
            .info("no system tray on this desktop; start orvane again to open its Settings");
    }
    tray_.setVisible(wanted);
}

}  // namespace orvane
