// Whatever the bundle and the system report (any bytes, invalid UTF-8 and separators included), the
// bug report's mailto URL is plain ASCII and decodes back to exactly the subject and the body.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "app/BugReportComposer.h"
#include "app/ProductSettings.h"
#include "platform/simulated/SimulatedBundle.h"
#include "platform/simulated/SimulatedPasteboard.h"
#include "platform/simulated/SimulatedSystemInformation.h"
#include "platform/simulated/SimulatedUrlComponents.h"

namespace {

struct FixedPermissions final : orvane::PermissionStatusProviding {
    explicit FixedPermissions(std::uint8_t bits) : bits(bits) {}
    orvane::PermissionGrantStatus status(orvane::PermissionCapability capability) override {
        return (bits >> static_cast<int>(capability)) & 1
                   ? orvane::PermissionGrantStatus::granted
                   : orvane::PermissionGrantStatus::notGranted;
    }
    void requestAccess(orvane::PermissionCapability) override {}
    void openSystemSettings(orvane::PermissionCapability) override {}
    std::uint8_t bits;
};

// The input's fields, split at each zero byte.
std::vector<std::string> fields(std::string_view bytes, std::size_t count) {
    std::vector<std::string> result;
    while (result.size() + 1 < count) {
        const auto split = bytes.find('\0');
        result.emplace_back(bytes.substr(0, split));
        bytes = split == std::string_view::npos ? std::string_view() : bytes.substr(split + 1);
    }
    result.emplace_back(bytes);
    return result;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) {
        return 0;
    }
    const auto parts =
        fields(std::string_view(reinterpret_cast<const char*>(data + 1), size - 1), 4);
    auto bundle = std::make_shared<orvane::SimulatedBundle>();
    // An empty field leaves the key out of the bundle, as a damaged bundle would.
    if (!parts[0].empty()) {
        bundle->setInfoDictionaryValue("CFBundleShortVersionString", parts[0]);
    }
    if (!parts[1].empty()) {
        bundle->setInfoDictionaryValue("CFBundleVersion", parts[1]);
    }
    auto system = std::make_shared<orvane::SimulatedSystemInformation>();
    system->setOperatingSystemVersionString(parts[2]);
    system->setSysctlValue("hw.model", parts[3]);
    auto urls = std::make_shared<orvane::SimulatedUrlComponents>();
    orvane::BugReportComposer composer(std::make_shared<FixedPermissions>(data[0]), bundle, system,
                                       std::make_shared<orvane::SimulatedPasteboard>(), urls,
                                       std::string(orvane::supportEmailAddress));
    const auto url = composer.composeBugReportURL();
    if (!url || !url->starts_with("mailto:")) {
        std::abort();
    }
    for (const char character : *url) {
        if (character <= ' ' || character >= 127) {
            std::abort();
        }
    }
    const auto items = orvane::SimulatedUrlComponents::queryItems(*url);
    if (items.size() != 2 || items[0].name != "subject" || items[1].name != "body" ||
        items[0].value != "Orvane bug report" || !items[1].value ||
        !items[1].value->ends_with(composer.diagnosticsText())) {
        std::abort();
    }
    return 0;
}
