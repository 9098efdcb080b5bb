#include "permissions/PermissionOnboardingTextRenderer.h"

#include <string_view>

#include "core/FormatPoints.h"
#include "permissions/PermissionStatusCoordinator.h"

namespace orvane {

namespace {

std::string_view name(OnboardingTextStyle style) {
    switch (style) {
        case OnboardingTextStyle::body:
            return "body";
        case OnboardingTextStyle::title:
            return "title";
        case OnboardingTextStyle::subheadline:
            return "subheadline";
        case OnboardingTextStyle::title3:
            return "title3";
        case OnboardingTextStyle::callout:
            return "callout";
        case OnboardingTextStyle::caption2:
            return "caption2";
        case OnboardingTextStyle::footnote:
            return "footnote";
    }
    return "?";
}

std::string_view name(OnboardingFontWeight weight) {
    switch (weight) {
        case OnboardingFontWeight::regular:
            return "regular";
        case OnboardingFontWeight::medium:
            return "medium";
        case OnboardingFontWeight::semibold:
            return "semibold";
    }
    return "?";
}

std::string_view name(OnboardingColorRole color) {
    switch (color) {
        case OnboardingColorRole::primary:
            return "primary";
        case OnboardingColorRole::secondary:
            return "secondary";
        case OnboardingColorRole::quaternary:
            return "quaternary";
        case OnboardingColorRole::accent:
            return "accent";
        case OnboardingColorRole::green:
            return "green";
    }
    return "?";
}

std::string font(const OnboardingFont& font) {
    std::string out;
    if (const auto* style = std::get_if<OnboardingTextStyle>(&font.size)) {
        out = name(*style);
    } else {
        out = formatPoints(std::get<OnboardingPointSize>(font.size).points) + "pt";
    }
    if (font.weight != OnboardingFontWeight::regular) {
        out += ' ';
        out += name(font.weight);
    }
    return out;
}

std::string color(OnboardingColorRole role) {
    return role == OnboardingColorRole::primary ? "" : " " + std::string(name(role));
}

std::string text(const OnboardingText& text) {
    return "\"" + text.text + "\" " + font(text.font) + color(text.color);
}

std::string symbol(const OnboardingSymbol& symbol) {
    return symbol.name + " " + font(symbol.font) + color(symbol.color);
}

std::string button(const OnboardingButton& button) {
    std::string out = "button \"" + button.title + "\"";
    out += button.role == OnboardingButtonRole::cancelAction ? " cancel" : " default";
    if (button.controlSize == OnboardingControlSize::large) {
        out += " large";
    }
    if (button.style == OnboardingButtonStyle::borderedProminent) {
        out += " prominent";
    }
    if (!button.isEnabled) {
        out += " disabled";
    }
    return out;
}

std::string action(const PermissionRowAction& action) {
    if (action.kind != PermissionRowActionKind::grantedLabel) {
        return "button \"" + action.text.text + "\"";
    }
    std::string out = "label";
    if (action.symbol) {
        out += ' ' + action.symbol->name;
    }
    out += ' ' + text(action.text);
    if (!action.accessibilityLabel.empty()) {
        out += " reads \"" + action.accessibilityLabel + "\"";
    }
    return out;
}

}  // namespace

std::string PermissionOnboardingTextRenderer::render(const PermissionOnboardingContent& content) {
    std::string out = "window " + formatPoints(content.layout.frame.width) + "x" +
                      formatPoints(content.layout.frame.height) + "\n";
    out += "icon symbol " + symbol(content.icon) + "\n";
    out += "title text " + text(content.title) + "\n";
    out += "subtitle text " + text(content.subtitle) + "\n";
    for (const auto& row : content.rows) {
        const std::string key =
            " #" + std::string(PermissionStatusCoordinator::logName(row.capability)) + " ";
        out += "rowIcon" + key + "symbol " + symbol(row.icon) + "\n";
        out += "rowTitle" + key + "text " + text(row.title) + "\n";
        if (row.badge) {
            out += "rowBadge" + key + "capsule " + text(row.badge->text) + " on" +
                   color(row.badge->fill) + "\n";
        }
        out += "rowDescription" + key + "text " + text(row.description) + "\n";
        out += "rowAction" + key + action(row.action) + "\n";
    }
    out += "footnoteSymbol symbol " + symbol(content.footnoteSymbol) + "\n";
    out += "footnote text " + text(content.footnote) + "\n";
    for (const auto& each : content.buttons) {
        out += button(each) + "\n";
    }
    return out;
}

}  // namespace orvane
