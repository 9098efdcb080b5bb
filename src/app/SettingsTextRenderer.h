// The menu and the Settings panes as lines of text, for the simulator's transcript: every text,
// state and control a user would see, one line each, in drawing order.
#pragma once

#include <string>
#include <vector>

#include "app/MenuContent.h"
#include "app/PreferencesPaneContent.h"

namespace orvane {

class SettingsTextRenderer {
  public:
    static std::vector<std::string> menuLines(const std::vector<MenuEntry>& entries);
    static std::vector<std::string> paneLines(const PreferencesPaneContent& content);
};

}  // namespace orvane
