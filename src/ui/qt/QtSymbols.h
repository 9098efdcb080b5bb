// The platform's symbol names of the views (such as "gearshape") as icons: the current theme's by
// freedesktop icon name, else the widget style's (a null icon for an unknown symbol).
#pragma once

#include <QIcon>
#include <string_view>

namespace orvane {

class QtSymbols {
  public:
    static QIcon icon(std::string_view symbol);
};

}  // namespace orvane
