#include "ui/qt/QtSymbols.h"

#include <array>
#include <utility>

namespace orvane {

namespace {

constexpr std::array<std::pair<std::string_view, const char*>, 10> names{{
    {"checkmark", "object-select"},
    {"gearshape", "preferences-system"},
    {"keyboard", "input-keyboard"},
    {"info.circle", "help-about"},
    {"checkmark.circle.fill", "emblem-ok"},
    {"exclamationmark.triangle.fill", "dialog-warning"},
    {"lock.shield", "security-high"},
    {"rectangle.on.rectangle", "video-display"},
    {"hand.raised", "dialog-information"},
    {"macwindow", "window-new"},
}};

}  // namespace

const char* QtSymbols::freedesktopName(std::string_view symbol) {
    for (const auto& [from, to] : names) {
        if (from == symbol) {
            return to;
        }
    }
    return "";
}

QIcon QtSymbols::icon(std::string_view symbol) {
    return QIcon::fromTheme(QString::fromLatin1(freedesktopName(symbol)));
}

}  // namespace orvane
