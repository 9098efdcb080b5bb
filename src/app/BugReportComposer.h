// Builds what a user hands to support: a block describing the environment, free of personal data,
// and a mailto URL whose body carries that block below a short form.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "core/PermissionStatusProviding.h"
#include "core/Wording.h"
#include "platform/BundlePort.h"
#include "platform/PasteboardPort.h"
#include "platform/SystemInformationPort.h"
#include "platform/UrlComponentsPort.h"

namespace orvane {

class BugReportComposer {
  public:
    BugReportComposer(std::shared_ptr<PermissionStatusProviding> permissionStatusProviding,
                      std::shared_ptr<BundlePort> bundle,
                      std::shared_ptr<SystemInformationPort> systemInformation,
                      std::shared_ptr<PasteboardPort> pasteboard,
                      std::shared_ptr<UrlComponentsPort> urlComponents, std::string supportAddress,
                      Wording wording = {});

    // Six lines joined by line feeds, none after the last; built anew at each call, permissions
    // included.
    std::string diagnosticsText() const;
    // The mailto URL to the support address; nothing, after an error line, when the platform
    // makes no URL of the parts.
    std::optional<std::string> composeBugReportURL() const;
    // Leaves the diagnostics text alone on the general pasteboard.
    void copyDiagnosticsToClipboard();

  private:
    std::string hardwareModel() const;

    std::shared_ptr<PermissionStatusProviding> permissionStatusProviding_;
    std::shared_ptr<BundlePort> bundle_;
    std::shared_ptr<SystemInformationPort> systemInformation_;
    std::shared_ptr<PasteboardPort> pasteboard_;
    std::shared_ptr<UrlComponentsPort> urlComponents_;
    std::string supportAddress_;
    // The desktop's words for the platform's things in the texts it composes.
    Wording wording_;
};

}  // namespace orvane
