#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <optional>
#include <sstream>
#include <string>
#include <tuple>
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

std::vector<std::string> lines(const std::string& text) {
    std::vector<std::string> result;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        result.push_back(line);
    }
    return result;
}

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
    std::shared_ptr<SimulatedBundle> bundle =
        std::make_shared<SimulatedBundle>(std::map<std::string, PropertyListValue>{
            {"CFBundleShortVersionString", "1.4.0"}, {"CFBundleVersion", "57"}});
    std::shared_ptr<SimulatedSystemInformation> system =
        std::make_shared<SimulatedSystemInformation>();
    std::shared_ptr<SimulatedPasteboard> pasteboard = std::make_shared<SimulatedPasteboard>();
};

TEST_F(BugReportComposerTest, DiagnosticsTextIsSixExactLinesAndAsksPermissionsAnew) {
    const auto composer = this->composer();
    EXPECT_EQ(composer.diagnosticsText(),
              "Environment (no personal information):\n"
              "App:      Orvane 1.4.0 (57)\n"
              "macOS:    Version 14.5 (Build 23F79)\n"
              "Hardware: Mac15,3\n"
              "Accessibility: granted\n"
              "Screen Recording: not granted");

    permissions->setAccessibilityTrusted(false);
    permissions->setScreenRecordingGranted(true);
    EXPECT_TRUE(composer.diagnosticsText().ends_with(
        "\nHardware: Mac15,3\nAccessibility: not granted\nScreen Recording: granted"));
    EXPECT_TRUE(logs.sink().records().empty());
}

TEST_F(BugReportComposerTest, EachMissingOrNonTextVersionValueBecomesAnEmDash) {
    using Value = std::optional<PropertyListValue>;
    const std::vector<std::tuple<Value, Value, std::string>> cases{
        {"1.2", std::nullopt, "App:      Orvane 1.2 (—)"},
        {12, true, "App:      Orvane — (—)"},
        {std::nullopt, "34", "App:      Orvane — (34)"},
    };
    for (const auto& [shortVersion, build, expected] : cases) {
        bundle = std::make_shared<SimulatedBundle>();
        if (shortVersion) {
            bundle->setInfoDictionaryValue("CFBundleShortVersionString", *shortVersion);
        }
        if (build) {
            bundle->setInfoDictionaryValue("CFBundleVersion", *build);
        }
        EXPECT_EQ(lines(composer().diagnosticsText())[1], expected);
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
        EXPECT_EQ(lines(composer().diagnosticsText())[3], "Hardware: " + expected) << bytes;
    }
}

TEST_F(BugReportComposerTest, MailURLCarriesSubjectAndFormHeadFollowedByDiagnostics) {
    const auto composer = this->composer();
    const auto url = composer.composeBugReportURL();
    ASSERT_TRUE(url.has_value());
    EXPECT_TRUE(
        url->starts_with("mailto:support@brimcote.com?subject=Orvane%20bug%20report&body="
                         "Describe%20what%20happened,%20and%20what"))
        << *url;
    EXPECT_EQ(url->find_first_of("\n "), std::string::npos);
    EXPECT_NE(url->find("%0A%0ASteps%20to%20reproduce:%0A1.%0A%0A%E2%94%80%E2%94%80"),
              std::string::npos);

    const std::string head =
        "Describe what happened, and what you expected instead:\n\n\nSteps to reproduce:\n1.\n\n"
        "────────────────────────────────────────\n";
    EXPECT_EQ(head.size(), 202u);
    const auto items = SimulatedUrlComponents::queryItems(*url);
    ASSERT_EQ(items.size(), 2u);
    EXPECT_EQ(items[0].name, "subject");
    EXPECT_EQ(items[0].value, "Orvane bug report");
    EXPECT_EQ(items[1].name, "body");
    EXPECT_EQ(items[1].value, head + composer.diagnosticsText());
    EXPECT_TRUE(logs.sink().records().empty());
}

TEST_F(BugReportComposerTest, URLThePlatformRefusesGivesNothingAndTheErrorLine) {
    EXPECT_EQ(composer("//support@brimcote.com").composeBugReportURL(), std::nullopt);
    EXPECT_EQ(takeLog(logs, LogCategory::diagnostics, LogLevel::error),
              "Failed to compose the bug report mailto URL.\n");
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
