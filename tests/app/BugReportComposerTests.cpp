#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "app/BugReportComposer.h"
#include "app/ProductSettings.h"
#include "permissions/PermissionStatusCoordinator.h"
#include "platform/simulated/SimulatedBundle.h"
#include "platform/simulated/SimulatedNotificationCenter.h"
#include "platform/simulated/SimulatedPasteboard.h"
#include "platform/simulated/SimulatedPermissions.h"
#include "platform/simulated/SimulatedRunLoop.h"
#include "platform/simulated/SimulatedSystemInformation.h"
#include "platform/simulated/SimulatedUrlComponents.h"
#include "support/TakeLog.h"

namespace orvane {
namespace {

using namespace std::string_literals;
using ::testing::HasSubstr;
using Info = std::map<std::string, PropertyListValue>;

class BugReportComposerTest : public ::testing::Test {
  protected:
    BugReportComposerTest() {
        system->setOperatingSystemVersionString("Version 14.5 (Build 23F79)");
        system->setSysctlValue("hw.model", "Mac15,3\0"s);
        permissions->setAccessibilityTrusted(true);
        logs.sink().clear();
    }
    BugReportComposer composer(std::string address = supportEmailAddress) {
        return BugReportComposer(coordinator, bundle, system, pasteboard,
                                 std::make_shared<SimulatedUrlComponents>(), address);
    }

    ScopedLogCapture logs;
    std::shared_ptr<SimulatedPermissions> permissions = std::make_shared<SimulatedPermissions>();
    std::shared_ptr<PermissionStatusCoordinator> coordinator =
        PermissionStatusCoordinator::make(permissions, std::make_shared<SimulatedRunLoop>(),
                                          std::make_shared<SimulatedNotificationCenter>());
    std::shared_ptr<SimulatedBundle> bundle = std::make_shared<SimulatedBundle>(
        Info{{"CFBundleShortVersionString", "1.4.0"}, {"CFBundleVersion", "57"}});
    std::shared_ptr<SimulatedSystemInformation> system =
        std::make_shared<SimulatedSystemInformation>();
    std::shared_ptr<SimulatedPasteboard> pasteboard = std::make_shared<SimulatedPasteboard>();
};

TEST_F(BugReportComposerTest, DiagnosticsAskThePermissionsAnewAndTheRefusedURLIsLogged) {
    const auto composer = this->composer();
    EXPECT_TRUE(composer.diagnosticsText().ends_with(
        "\nHardware: Mac15,3\nAccessibility: granted\nScreen Recording: not granted"));
    permissions->setAccessibilityTrusted(false);
    permissions->setScreenRecordingGranted(true);
    EXPECT_TRUE(composer.diagnosticsText().ends_with(
        "\nHardware: Mac15,3\nAccessibility: not granted\nScreen Recording: granted"));
    EXPECT_TRUE(logs.sink().records().empty());

    EXPECT_EQ(this->composer("//support@brimcote.com").composeBugReportURL(), std::nullopt);
    EXPECT_EQ(takeLog(logs, LogCategory::diagnostics, LogLevel::error),
              "Failed to compose the bug report mailto URL.\n");
}

TEST_F(BugReportComposerTest, EachMissingOrNonTextVersionValueBecomesAnEmDash) {
    const std::vector<std::pair<Info, std::string>> cases{
        {{{"CFBundleShortVersionString", "1.2"}}, "1.2 (—)"},
        {{{"CFBundleShortVersionString", 12}, {"CFBundleVersion", true}}, "— (—)"},
        {{{"CFBundleVersion", "34"}}, "— (34)"},
    };
    for (const auto& [info, expected] : cases) {
        bundle = std::make_shared<SimulatedBundle>(info);
        EXPECT_THAT(composer().diagnosticsText(),
                    HasSubstr("\nApp:      Orvane " + expected + "\nmacOS:"));
    }
}

TEST_F(BugReportComposerTest, HardwareModelIsCutAtItsZeroByteRepairedOrUnknown) {
    using Failure = std::optional<SimulatedSysctlFailure>;
    const std::vector<std::tuple<std::string, Failure, std::string>> cases{
        {"Mac14,2\0junk\0"s, std::nullopt, "Mac14,2"},
        {"Mac14,2", std::nullopt, "Mac14,2"},
        {"Mac\xC3(\xFF\0"s, std::nullopt, "Mac\uFFFD(\uFFFD"},
        {"", std::nullopt, "?"},
        {"Mac14,2\0"s, SimulatedSysctlFailure::sizeQuery, "?"},
        {"Mac14,2\0"s, SimulatedSysctlFailure::valueRead, "?"},
    };
    for (const auto& [bytes, failure, expected] : cases) {
        system->setSysctlValue("hw.model", bytes);
        system->clearSysctlFailure("hw.model");
        if (failure) {
            system->setSysctlFailure("hw.model", *failure);
        }
        EXPECT_THAT(composer().diagnosticsText(),
                    HasSubstr("\nHardware: " + expected + "\nAccessibility:"))
            << bytes;
    }
}

TEST_F(BugReportComposerTest, CopyLeavesOnlyTheDiagnosticsTextOnThePasteboard) {
    pasteboard->setContentsFromAnotherApplication(
        {{pasteboardTypeString, "earlier text"}, {"public.html", "<b>earlier</b>"}});
    auto composer = this->composer();
    composer.copyDiagnosticsToClipboard();
    EXPECT_EQ(
        pasteboard->stringsByType(),
        (std::map<std::string, std::string>{{pasteboardTypeString, composer.diagnosticsText()}}));
    EXPECT_EQ(pasteboard->clearCount(), 1u);
    EXPECT_EQ(takeLog(logs, LogCategory::diagnostics, LogLevel::info),
              "diagnostics copied to clipboard\n");
}

}  // namespace
}  // namespace orvane
