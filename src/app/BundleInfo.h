// The texts that the program shows of its own bundle, with "—" for a value that is missing or no
// text.
#pragma once

#include <string>

#include "platform/BundlePort.h"

namespace orvane {

std::string bundleInfoText(const BundlePort& bundle, const std::string& key);
// "1.2 (34)": the short version, then the build in parentheses.
std::string applicationVersionText(const BundlePort& bundle);

}  // namespace orvane
