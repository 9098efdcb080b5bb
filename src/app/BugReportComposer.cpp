#include "app/BugReportComposer.h"

#include <unicode/stringpiece.h>
#include <unicode/unistr.h>

#include <string_view>
#include <utility>
#include <vector>

#include "app/BundleInfo.h"
#include "core/Logger.h"
#include "permissions/PermissionStatusCoordinator.h"

namespace orvane {

namespace {

// The form the user fills in above the environment block; the rule ends it on its own line.
std::string bugReportFormHead() {
    std::string head =
        "Describe what happened, and what you expected instead:\n"
        "\n"
        "\n"
        "Steps to reproduce:\n"
        "1.\n"
        "\n";
    for (int index = 0; index < 40; ++index) {
        head += "─";
    }
    head += "\n";
    return head;
}

// Invalid sequences become U+FFFD, as the platform's lenient UTF-8 decoding does.
std::string repairedUTF8(std::string_view bytes) {
    const auto decoded = icu::UnicodeString::fromUTF8(
        icu::StringPiece(bytes.data(), static_cast<int32_t>(bytes.size())));
    std::string repaired;
    decoded.toUTF8String(repaired);
    return repaired;
}

}  // namespace

BugReportComposer::BugReportComposer(
    std::shared_ptr<PermissionStatusProviding> permissionStatusProviding,
    std::shared_ptr<BundlePort> bundle, std::shared_ptr<SystemInformationPort> systemInformation,
    std::shared_ptr<PasteboardPort> pasteboard, std::shared_ptr<UrlComponentsPort> urlComponents,
    std::string supportAddress, Wording wording)
    : permissionStatusProviding_(std::move(permissionStatusProviding)),
      bundle_(std::move(bundle)),
      systemInformation_(std::move(systemInformation)),
      pasteboard_(std::move(pasteboard)),
      urlComponents_(std::move(urlComponents)),
      supportAddress_(std::move(supportAddress)),
      wording_(std::move(wording)) {}

std::string BugReportComposer::hardwareModel() const {
    std::size_t size = 0;
    if (systemInformation_->sysctlByName("hw.model", nullptr, &size) != 0 || size < 1) {
        return "?";
    }
    std::vector<char> buffer(size, '\0');
    if (systemInformation_->sysctlByName("hw.model", buffer.data(), &size) != 0) {
        return "?";
    }
    const std::string_view value(buffer.data(), buffer.size());
    return repairedUTF8(value.substr(0, value.find('\0')));
}

std::string BugReportComposer::diagnosticsText() const {
    std::string text = "Environment (no personal information):\n";
    text += "App:      Orvane " + applicationVersionText(*bundle_) + "\n";
    text += "macOS:    " + systemInformation_->operatingSystemVersionString() + "\n";
    text += "Hardware: " + hardwareModel();
    for (auto capability : allPermissionCapabilities) {
        const bool granted =
            permissionStatusProviding_->status(capability) == PermissionGrantStatus::granted;
        text += "\n";
        text += PermissionStatusCoordinator::displayTitle(capability);
        text += granted ? ": granted" : ": not granted";
    }
    return wording_.apply(text);
}

std::optional<std::string> BugReportComposer::composeBugReportURL() const {
    const std::vector<UrlQueryItem> queryItems{
        {"subject", "Orvane bug report"},
        {"body", bugReportFormHead() + diagnosticsText()},
    };
    auto url = urlComponents_->url("mailto", supportAddress_, queryItems);
    if (!url) {
        Logger::forCategory(LogCategory::diagnostics)
            .error("Failed to compose the bug report mailto URL.");
    }
    return url;
}

void BugReportComposer::copyDiagnosticsToClipboard() {
    pasteboard_->clearContents();
    pasteboard_->setString(diagnosticsText(), pasteboardTypeString);
    Logger::forCategory(LogCategory::diagnostics).info("diagnostics copied to clipboard");
}

}  // namespace orvane
