// How the transcript names a window: its identifier, application, title and process.
#pragma once

#include <string>

#include "core/SwitchableWindow.h"

namespace orvane::simulator {

std::string describeWindow(const SwitchableWindow& window);

}  // namespace orvane::simulator
