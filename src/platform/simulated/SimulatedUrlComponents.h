// The simulated URL components: a URL of the form scheme:path?name=value&..., percent-encoded as
// the platform encodes a URL without host, and the reverse reading for whoever checks the result.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platform/UrlComponentsPort.h"

namespace orvane {

class SimulatedUrlComponents final : public UrlComponentsPort {
  public:
    // Nothing for a malformed scheme, or for a path starting with "//", which without a host
    // would read as an authority.
    std::optional<std::string> url(const std::string& scheme, const std::string& path,
                                   const std::vector<UrlQueryItem>& queryItems) const override;

    // The query items of a URL, percent-decoded, in order; empty without a query.
    static std::vector<UrlQueryItem> queryItems(const std::string& url);
};

}  // namespace orvane
