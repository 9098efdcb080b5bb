// How the transcript names a window: its identifier, application, title and process.
#pragma once

#include <string>
#include <vector>

#include "core/SwitchableWindow.h"

namespace orvane::simulator {

std::string describeWindow(const SwitchableWindow& window);
// "N windows [id, id, ...]".
std::string describeWindowList(const std::vector<SwitchableWindow>& windows);

}  // namespace orvane::simulator
