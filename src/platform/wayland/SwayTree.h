// sway's layout tree (its IPC's `get_tree` answer) read as the windows it holds, most recently
// focused first: each container lists its children in its own focus order, so the outputs, the
// workspaces on each and the windows in each come in the order the user last visited them.
#pragma once

#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "core/Geometry.h"
#include "core/Identifiers.h"

namespace orvane {

class SwayTree {
  public:
    struct Window {
        // The app_id, or an X11 window's class under Xwayland.
        std::string appId;
        std::string title;
        std::optional<ProcessIdentifier> process;
        // In the layout's coordinates, decorations included.
        Rect frame;
        // Whether its workspace is the one its output shows; scratchpad windows never are.
        bool isOnShownWorkspace = false;
    };

    // Whatever in the tree is not a window, or has the wrong shape, is passed over.
    static std::vector<Window> windowsByFocus(const nlohmann::json& tree);
};

}  // namespace orvane
