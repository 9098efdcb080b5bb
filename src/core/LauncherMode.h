// One source of launcher results: open windows or installed applications.
#pragma once

#include <string>
#include <vector>

#include "core/LauncherItem.h"

namespace orvane {

class LauncherMode {
  public:
    virtual ~LauncherMode() = default;

    // "Windows" or "Applications": the badge of the search row.
    virtual std::string modeDisplayName() const = 0;
    // Shown while the query is empty.
    virtual std::string searchPlaceholder() const = 0;
    // Every matching item, best first; synchronous; no limit of its own.
    virtual std::vector<LauncherItem> items(const std::string& query) = 0;
    // Carries the item out: focuses the window or opens the application.
    virtual void activate(const LauncherItem& item) = 0;
};

}  // namespace orvane
