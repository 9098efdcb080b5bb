// How text renderings of views write a length in points: at most one decimal, no "-0".
#pragma once

#include <string>

namespace orvane {

std::string formatPoints(double value);

}  // namespace orvane
