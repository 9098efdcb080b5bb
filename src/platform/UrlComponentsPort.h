// The platform's URL components: builds a URL from its parts, percent-encoding each part the way
// the platform does.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace orvane {

struct UrlQueryItem {
    std::string name;
    std::optional<std::string> value;
};

class UrlComponentsPort {
  public:
    virtual ~UrlComponentsPort() = default;

    // The URL of a scheme, a path and query items in order; nothing when the parts make no URL.
    virtual std::optional<std::string> url(const std::string& scheme, const std::string& path,
                                           const std::vector<UrlQueryItem>& queryItems) const = 0;
};

}  // namespace orvane
