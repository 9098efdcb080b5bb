// A launcher candidate folded and cut into clusters once, when the list it belongs to is read, so
// that a keystroke only compares.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "launcher/LauncherFoldedView.h"

namespace orvane {

class LauncherCandidateText {
  public:
    explicit LauncherCandidateText(std::string_view utf8);

    LauncherFoldedView view() const { return {units_.data(), boundaries_}; }

  private:
    std::u16string units_;
    std::vector<std::int32_t> boundaries_;
};

}  // namespace orvane
