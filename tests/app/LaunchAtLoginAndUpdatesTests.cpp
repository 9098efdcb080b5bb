#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "app/LaunchAtLoginConfigurator.h"
#include "app/SparkleSoftwareUpdateService.h"
#include "platform/simulated/SimulatedLoginItem.h"
#include "platform/simulated/SimulatedUpdater.h"
#include "support/TakeLog.h"

namespace orvane {
namespace {

TEST(LaunchAtLoginConfiguratorTest, LogsEachChangeAndAbsorbsFailuresWithTheValueAskedFor) {
    ScopedLogCapture logs;
    auto loginItem = std::make_shared<SimulatedLoginItem>();
    LaunchAtLoginConfigurator configurator(loginItem);

    configurator.setLaunchAtLoginEnabled(true);
    EXPECT_EQ(loginItem->status(), LoginItemStatus::enabled);
    configurator.setLaunchAtLoginEnabled(false);
    EXPECT_EQ(loginItem->status(), LoginItemStatus::notRegistered);
    EXPECT_EQ(takeLog(logs, LogCategory::preferences, LogLevel::info),
              "launch-at-login registered\nlaunch-at-login unregistered\n");

    loginItem->setFailure("Operation not permitted");
    configurator.setLaunchAtLoginEnabled(true);
    configurator.setLaunchAtLoginEnabled(false);
    EXPECT_EQ(takeLog(logs, LogCategory::preferences, LogLevel::error),
              "failed to set launch-at-login to true: Operation not permitted\n"
              "failed to set launch-at-login to false: Operation not permitted\n");
    EXPECT_EQ(loginItem->changeRequestCount(), 4u);
}

// Notes what the log held when the check reached the updater.
class CheckRecordingUpdater final : public SimulatedUpdater {
  public:
    explicit CheckRecordingUpdater(CapturingLogSink& sink) : sink_(sink) {}
    void checkForUpdates() override {
        logAtCheck = sink_.messages();
        SimulatedUpdater::checkForUpdates();
    }
    std::vector<std::string> logAtCheck;

  private:
    CapturingLogSink& sink_;
};

TEST(SparkleSoftwareUpdateServiceTest, MirrorsRealChangesPassesSettingsOnAndLogsBeforeChecking) {
    ScopedLogCapture logs;
    auto updater = std::make_shared<CheckRecordingUpdater>(logs.sink());
    updater->setCanCheckForUpdates(true);
    auto service = SparkleSoftwareUpdateService::make(updater);
    EXPECT_EQ(updater->startCount(), 1u);
    EXPECT_TRUE(service->canCheckForUpdates());
    EXPECT_EQ(updater->observerCount(), 1u);

    std::vector<bool> heard;
    service->observeCanCheckForUpdates([&](const bool& canCheck) { heard.push_back(canCheck); });
    for (bool canCheck : {true, false, false, true, true}) {
        updater->setCanCheckForUpdates(canCheck);
    }
    EXPECT_EQ(heard, (std::vector<bool>{false, true}));

    service->setAutomaticallyChecksForUpdates(true);
    EXPECT_TRUE(updater->automaticallyChecksForUpdates());
    updater->setAutomaticallyChecksForUpdates(false);
    EXPECT_FALSE(service->automaticallyChecksForUpdates());
    service->setAutomaticallyChecksForUpdates(false);
    service->checkForUpdates();
    ASSERT_EQ(updater->checkCount(), 1u);
    EXPECT_EQ(updater->logAtCheck.back(), "User-initiated update check requested.");
    EXPECT_EQ(takeLog(logs, LogCategory::softwareupdates, LogLevel::info),
              "Sparkle updater started.\n"
              "Automatic update checks set to true.\n"
              "Automatic update checks set to false.\n"
              "User-initiated update check requested.\n");

    // The observation must not keep the service alive, and goes with it.
    std::weak_ptr<SparkleSoftwareUpdateService> weak = service;
    service.reset();
    EXPECT_TRUE(weak.expired());
    EXPECT_EQ(updater->observerCount(), 0u);
}

}  // namespace
}  // namespace orvane
