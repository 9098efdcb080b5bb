// Content that a window of the application hosts. A toolkit's renderer knows the concrete views it
// can draw and finds them by their type.
#pragma once

namespace orvane {

class HostedView {
  public:
    virtual ~HostedView() = default;
};

}  // namespace orvane
