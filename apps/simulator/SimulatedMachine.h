// A machine for the program to run on: the simulated desktop with every other platform service the
// program reaches, set up like a machine where the program has run before (both permissions
// granted, a bundle version, a hardware model).
#pragma once

#include <memory>

#include "app/OrvaneApplicationDelegate.h"
#include "platform/simulated/SimulatedApplicationLauncher.h"
#include "platform/simulated/SimulatedApplicationObject.h"
#include "platform/simulated/SimulatedBundle.h"
#include "platform/simulated/SimulatedDesktop.h"
#include "platform/simulated/SimulatedFileSystem.h"
#include "platform/simulated/SimulatedLoginItem.h"
#include "platform/simulated/SimulatedNotificationCenter.h"
#include "platform/simulated/SimulatedOverlayPanel.h"
#include "platform/simulated/SimulatedPasteboard.h"
#include "platform/simulated/SimulatedPermissions.h"
#include "platform/simulated/SimulatedScreenCapture.h"
#include "platform/simulated/SimulatedSkyLight.h"
#include "platform/simulated/SimulatedSound.h"
#include "platform/simulated/SimulatedSystemInformation.h"
#include "platform/simulated/SimulatedUpdater.h"
#include "platform/simulated/SimulatedUrlComponents.h"
#include "platform/simulated/SimulatedUserDefaults.h"

namespace orvane::simulator {

class SimulatedMachine {
  public:
    // The program's own process on the simulated desktop.
    static constexpr ProcessIdentifier programProcessIdentifier = 100;

    SimulatedMachine();

    // The ports as the program's composition root takes them.
    OrvaneApplicationDelegate::Platform platform() const;

    // Accessibility reaches both the tap and the permission answers; Screen Recording both the
    // captures and the permission answers.
    void setPermission(PermissionCapability capability, bool granted);

    // Runs the desktop's run loop until nothing is left to do.
    void settle();
    // A key event from the keyboard, and everything it sets off.
    void key(KeyboardEventType type, EventKeyCode code, KeyboardEventFlags flags);

    std::shared_ptr<SimulatedDesktop> desktop;
    std::shared_ptr<SimulatedPermissions> permissions;
    std::shared_ptr<SimulatedUserDefaults> userDefaults;
    std::shared_ptr<SimulatedNotificationCenter> applicationNotifications;
    std::shared_ptr<SimulatedApplicationObject> application;
    std::shared_ptr<SimulatedSkyLight> skyLight;
    std::shared_ptr<SimulatedScreenCapture> screenCapture;
    std::shared_ptr<SimulatedFileSystem> fileSystem;
    std::shared_ptr<SimulatedApplicationLauncher> applicationLauncher;
    std::shared_ptr<SimulatedSound> sound;
    std::shared_ptr<SimulatedOverlayPanel> overlayPanel;
    std::shared_ptr<SimulatedUpdater> updater;
    std::shared_ptr<SimulatedBundle> bundle;
    std::shared_ptr<SimulatedSystemInformation> systemInformation;
    std::shared_ptr<SimulatedPasteboard> pasteboard;
    std::shared_ptr<SimulatedUrlComponents> urlComponents;
    std::shared_ptr<SimulatedLoginItem> loginItem;
};

}  // namespace orvane::simulator
