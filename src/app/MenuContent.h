// The menu of the program's icon, as data: its eleven places from "About Orvane" to "Quit Orvane",
// with exactly one of the two Accessibility entries (and no update entry where a package manager
// brings new versions), and what choosing each entry does. Drawn again
// whenever `redraws` changes: the permission table or the updater's readiness changed.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "app/BugReportComposer.h"
#include "core/Observable.h"
#include "core/SoftwareUpdateService.h"
#include "permissions/PermissionStatusCoordinator.h"
#include "platform/ApplicationPort.h"

namespace orvane {

enum class MenuEntryKind { button, label, separator };

enum class MenuAction {
    none,
    about,
    openAccessibilitySettings,
    settings,
    checkForUpdates,
    copyDiagnostics,
    reportBug,
    quit
};

struct MenuEntry {
    MenuEntryKind kind = MenuEntryKind::separator;
    std::string text{};
    // A system symbol shown before the text, such as "checkmark"; empty for none.
    std::string symbol{};
    bool isEnabled = true;
    // The key pressed with Command, such as ","; empty for none.
    std::string commandKey{};
    MenuAction action = MenuAction::none;
    friend bool operator==(const MenuEntry&, const MenuEntry&) = default;
};

class MenuContent {
  public:
    // `openSettings` is the platform's action that opens the Settings window on the pane it holds;
    // `openURL` opens an address with the system's handler.
    MenuContent(std::function<void()> openSettings,
                std::shared_ptr<PermissionStatusCoordinator> permissionStatusProviding,
                std::shared_ptr<SoftwareUpdateService> softwareUpdateService,
                std::shared_ptr<BugReportComposer> bugReportComposer,
                std::shared_ptr<ApplicationPort> application,
                std::function<void(const std::string&)> openURL);
    ~MenuContent();
    MenuContent(const MenuContent&) = delete;
    MenuContent& operator=(const MenuContent&) = delete;

    // Asks the Accessibility status as it is drawn.
    std::vector<MenuEntry> entries();
    // Carries out an entry's action; a disabled "Check for Updates…" does nothing.
    void choose(MenuAction action);

    Observable<std::uint64_t>& redraws() { return redraws_; }

  private:
    void showAboutPanel();
    void reportBug();

    std::function<void()> openSettings_;
    std::shared_ptr<PermissionStatusCoordinator> permissionStatusProviding_;
    std::shared_ptr<SoftwareUpdateService> softwareUpdateService_;
    std::shared_ptr<BugReportComposer> bugReportComposer_;
    std::shared_ptr<ApplicationPort> application_;
    std::function<void(const std::string&)> openURL_;
    Observable<std::uint64_t> redraws_;
    ObservationToken tableObservation_ = 0;
    ObservationToken canCheckObservation_ = 0;
};

}  // namespace orvane
