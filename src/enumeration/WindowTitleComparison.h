// Decides whether two window titles name the same text, so that the window list and the
// Accessibility tree, which may normalise Unicode differently, still agree on a title.
#pragma once

#include <string_view>

namespace orvane {

class WindowTitleComparison {
  public:
    // True when the UTF-8 titles are canonically equivalent (same NFC form). Case and whitespace
    // count. Titles that are already NFC, such as plain ASCII, are compared without allocating.
    static bool areCanonicallyEquivalent(std::string_view left, std::string_view right);
};

}  // namespace orvane
