// The platform's symbol names of the views (such as "gearshape") as freedesktop icon names, and
// as icons of the current theme, else of the widget style (a null icon for an unknown symbol).
#pragma once

#include <QIcon>
#include <string_view>

namespace orvane {

class QtSymbols {
  public:
    // A freedesktop icon name, such as "help-about"; empty for an unknown symbol.
    static const char* freedesktopName(std::string_view symbol);
    static QIcon icon(std::string_view symbol);
};

}  // namespace orvane
