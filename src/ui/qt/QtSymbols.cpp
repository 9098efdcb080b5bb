#include "ui/qt/QtSymbols.h"

#include <QApplication>
#include <QStyle>
#include <array>

namespace orvane {

namespace {

struct Symbol {
    std::string_view name;
    const char* freedesktopName;
    // Drawn by the style itself where no icon theme is installed (a bare X session).
    QStyle::StandardPixmap fallback;
};

constexpr std::array<Symbol, 10> symbols{{
    {"rectangle.2.swap", "orvane", QStyle::SP_DesktopIcon},
    {"checkmark", "object-select", QStyle::SP_DialogApplyButton},
    {"gearshape", "preferences-system", QStyle::SP_FileDialogDetailedView},
    {"keyboard", "input-keyboard", QStyle::SP_ComputerIcon},
    {"info.circle", "help-about", QStyle::SP_MessageBoxInformation},
    {"checkmark.circle.fill", "emblem-ok", QStyle::SP_DialogApplyButton},
    {"exclamationmark.triangle.fill", "dialog-warning", QStyle::SP_MessageBoxWarning},
    {"lock.shield", "security-high", QStyle::SP_MessageBoxInformation},
    // The permission stands for the keyboard shortcut here.
    {"accessibility.fill", "input-keyboard", QStyle::SP_ComputerIcon},
    {"rectangle.dashed.badge.record", "media-record", QStyle::SP_DesktopIcon},
}};

const Symbol* find(std::string_view name) {
    for (const auto& symbol : symbols) {
        if (symbol.name == name) {
            return &symbol;
        }
    }
    return nullptr;
}

}  // namespace

QIcon QtSymbols::icon(std::string_view symbol) {
    const auto* found = find(symbol);
    if (found == nullptr) {
        return {};
    }
    auto themed = QIcon::fromTheme(QString::fromLatin1(found->freedesktopName));
    if (!themed.isNull() || QApplication::style() == nullptr) {
        return themed;
    }
    // The program's own mark, compiled in, where no theme has it installed.
    if (found->name == "rectangle.2.swap") {
        return QIcon(QStringLiteral(":/orvane/orvane.svg"));
    }
    return QApplication::style()->standardIcon(found->fallback);
}

}  // namespace orvane
