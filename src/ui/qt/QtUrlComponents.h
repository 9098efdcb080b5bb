// URLs of a scheme, a path and query items, percent-encoded by Qt.
#pragma once

#include "platform/UrlComponentsPort.h"

namespace orvane {

class QtUrlComponents final : public UrlComponentsPort {
  public:
    std::optional<std::string> url(const std::string& scheme, const std::string& path,
                                   const std::vector<UrlQueryItem>& queryItems) const override;
};

}  // namespace orvane
