#include "SimulatedMachine.h"

#include <string>

#include "app/ProductSettings.h"
#include "platform/simulated/SimulatedKeyboardEvent.h"

namespace orvane::simulator {

namespace {

// An opened application starts with one window in front and comes forward with it; one that runs
// already just comes forward.
void openApplication(SimulatedDesktop& desktop, const std::string& path) {
    auto name = path.substr(path.rfind('/') + 1);
    if (name.ends_with(".app")) {
        name.resize(name.size() - 4);
    }
    const auto bundleIdentifier = "com.example." + name;
    for (auto process : desktop.applicationsInLaunchOrder()) {
        const auto* running = desktop.application(process);
        if (running != nullptr &&
            running->runningApplication.bundleIdentifier == bundleIdentifier) {
            desktop.activateApplication(process);
            return;
        }
    }
    // Identifiers no scenario is likely to use, and never one in use.
    ProcessIdentifier process = 900;
    while (desktop.application(process) != nullptr) {
        ++process;
    }
    WindowIdentifier identifier = 9000;
    while (desktop.window(identifier) != nullptr) {
        ++identifier;
    }
    SimulatedApplication application;
    application.runningApplication.processIdentifier = process;
    application.runningApplication.localizedName = name;
    application.runningApplication.bundleIdentifier = bundleIdentifier;
    desktop.launchApplication(application);
    SimulatedWindow window;
    window.windowIdentifier = identifier;
    window.owningProcessIdentifier = application.runningApplication.processIdentifier;
    window.listTitle = window.accessibilityTitle = name;
    desktop.createWindow(window, true);
    desktop.focusWindow(window.windowIdentifier);
}

}  // namespace

SimulatedMachine::SimulatedMachine()
    : desktop(SimulatedDesktop::make(programProcessIdentifier)),
      permissions(std::make_shared<SimulatedPermissions>()),
      userDefaults(std::make_shared<SimulatedUserDefaults>()),
      applicationNotifications(std::make_shared<SimulatedNotificationCenter>()),
      application(std::make_shared<SimulatedApplicationObject>(
          applicationNotifications, ApplicationActivationPolicy::accessory,
          desktop->runLoopPort())),
      skyLight(std::make_shared<SimulatedSkyLight>(desktop)),
      screenCapture(std::make_shared<SimulatedScreenCapture>(desktop)),
      fileSystem(std::make_shared<SimulatedFileSystem>()),
      applicationLauncher(std::make_shared<SimulatedApplicationLauncher>(desktop->runLoopPort())),
      sound(std::make_shared<SimulatedSound>()),
      overlayPanel(std::make_shared<SimulatedOverlayPanel>()),
      updater(std::make_shared<SimulatedUpdater>()),
      bundle(std::make_shared<SimulatedBundle>()),
      systemInformation(std::make_shared<SimulatedSystemInformation>()),
      pasteboard(std::make_shared<SimulatedPasteboard>()),
      urlComponents(std::make_shared<SimulatedUrlComponents>()),
      loginItem(std::make_shared<SimulatedLoginItem>()) {
    fileSystem->createApplicationFolders();
    applicationLauncher->launchEffect =
        [desktop = std::weak_ptr<SimulatedDesktop>(desktop)](const std::string& path) {
            if (auto machineDesktop = desktop.lock()) {
                openApplication(*machineDesktop, path);
            }
        };
    setPermission(PermissionCapability::accessibility, true);
    setPermission(PermissionCapability::screenRecording, true);
    bundle->setInfoDictionaryValue("CFBundleShortVersionString", "1.0");
    bundle->setInfoDictionaryValue("CFBundleVersion", "1");
    systemInformation->setOperatingSystemVersionString("Version 14.5 (Build 23F79)");
    systemInformation->setSysctlValue("hw.model", std::string("Mac14,2") + '\0');
}

OrvaneApplicationDelegate::Platform SimulatedMachine::platform() const {
    OrvaneApplicationDelegate::Platform platform;
    platform.currentProcessIdentifier = programProcessIdentifier;
    platform.userDefaults = userDefaults;
    platform.permissions = permissions;
    platform.mainRunLoop = desktop->runLoopPort();
    platform.clock = desktop->runLoopPort();
    platform.application = application;
    platform.applicationNotifications = applicationNotifications;
    platform.accessibility = desktop->accessibilityPort();
    platform.windowList = desktop->windowListPort();
    platform.workspace = desktop->workspacePort();
    platform.workspaceNotifications = desktop->workspaceNotificationCenter();
    platform.distributedNotifications = desktop->distributedNotificationCenter();
    platform.eventTaps = desktop->eventTapPort();
    platform.privateFocusLibrary = skyLight;
    platform.screenCapture = screenCapture;
    platform.screens = desktop->screensPort();
    platform.overlayPanel = overlayPanel;
    platform.fileManager = fileSystem;
    platform.applicationLauncher = applicationLauncher;
    platform.sound = sound;
    platform.updater = updater;
    platform.bundle = bundle;
    platform.systemInformation = systemInformation;
    platform.pasteboard = pasteboard;
    platform.urlComponents = urlComponents;
    platform.loginItem = loginItem;
    platform.supportAddress = supportEmailAddress;
    return platform;
}

void SimulatedMachine::setPermission(PermissionCapability capability, bool granted) {
    if (capability == PermissionCapability::accessibility) {
        desktop->setAccessibilityTrusted(granted);
        permissions->setAccessibilityTrusted(granted);
        return;
    }
    screenCapture->screenCaptureAccessGranted = granted;
    permissions->setScreenRecordingGranted(granted);
}

void SimulatedMachine::settle() {
    desktop->runLoop().runUntilIdle();
}

void SimulatedMachine::key(KeyboardEventType type, EventKeyCode code, KeyboardEventFlags flags) {
    desktop->postKeyboardEvent(type, SimulatedKeyboardEvent(code, flags, false, u""));
    settle();
}

}  // namespace orvane::simulator
