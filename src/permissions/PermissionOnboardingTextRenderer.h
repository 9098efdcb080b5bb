// Writes the welcome window's content as deterministic text, one line per element, for the
// simulator's transcript.
#pragma once

#include <string>

#include "permissions/PermissionOnboardingContent.h"

namespace orvane {

class PermissionOnboardingTextRenderer {
  public:
    // A first line "window <width>x<height>", then per element, top to bottom:
    // "<part>[ #<capability>] <kind>" and what it draws, such as
    // `rowAction #screenRecording label checkmark.circle.fill "Granted" callout medium green
    // reads "Screen Recording granted"` or `button "Continue" default large prominent`. A regular
    // weight, the primary colour and the default look of a button are left out.
    static std::string render(const PermissionOnboardingContent& content);
};

}  // namespace orvane
