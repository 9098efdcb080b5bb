// The welcome window's content as data: its layout numbers, texts, symbols, permission rows and
// buttons, in drawing order, so that a renderer (the simulator's text, a toolkit) only draws them.
#pragma once

#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "core/Geometry.h"
#include "core/PermissionCapability.h"

namespace orvane {

// Text styles of the platform; `body` is also the look of a button that keeps the default one.
enum class OnboardingTextStyle { body, title, subheadline, title3, callout, caption2, footnote };

enum class OnboardingFontWeight { regular, medium, semibold };

// Colour roles of the platform; a toolkit maps each to its own equivalent.
enum class OnboardingColorRole { primary, secondary, quaternary, accent, green };

// A fixed size in points, for a symbol that doesn't follow a text style.
struct OnboardingPointSize {
    double points = 0;
    friend bool operator==(const OnboardingPointSize&, const OnboardingPointSize&) = default;
};

struct OnboardingFont {
    std::variant<OnboardingTextStyle, OnboardingPointSize> size = OnboardingTextStyle::body;
    OnboardingFontWeight weight = OnboardingFontWeight::regular;
    friend bool operator==(const OnboardingFont&, const OnboardingFont&) = default;
};

struct OnboardingText {
    std::string text;
    OnboardingFont font;
    OnboardingColorRole color = OnboardingColorRole::primary;
    friend bool operator==(const OnboardingText&, const OnboardingText&) = default;
};

// A system symbol by its platform name, such as "lock.shield".
struct OnboardingSymbol {
    std::string name;
    OnboardingFont font;
    OnboardingColorRole color = OnboardingColorRole::primary;
    friend bool operator==(const OnboardingSymbol&, const OnboardingSymbol&) = default;
};

// The spacings and margins of the window, in points.
struct PermissionOnboardingLayout {
    Size frame{560, 460};
    double horizontalMargin = 28;
    double sectionSpacing = 24;
    double iconTopMargin = 24;
    double headerLineSpacing = 8;
    double rowSpacing = 14;
    double rowsHorizontalMargin = 32;
    double rowItemSpacing = 12;
    double rowIconWidth = 28;
    double rowTextLineSpacing = 2;
    double rowTitleItemSpacing = 6;
    double badgeHorizontalPadding = 6;
    double badgeVerticalPadding = 2;
    double minimumActionSpacing = 12;
    double buttonSpacing = 12;
    double buttonsBottomMargin = 24;
    friend bool operator==(const PermissionOnboardingLayout&,
                           const PermissionOnboardingLayout&) = default;
};

// A text on a filled capsule.
struct OnboardingBadge {
    OnboardingText text;
    OnboardingColorRole fill = OnboardingColorRole::quaternary;
    friend bool operator==(const OnboardingBadge&, const OnboardingBadge&) = default;
};

enum class PermissionRowActionKind { grantedLabel, allowButton, openSystemSettingsButton };

// What a row offers at its end. Only the granted label has a symbol and an accessibility label;
// the buttons keep the platform's default look.
struct PermissionRowAction {
    PermissionRowActionKind kind = PermissionRowActionKind::allowButton;
    OnboardingText text;
    std::optional<OnboardingSymbol> symbol;
    std::string accessibilityLabel;
    friend bool operator==(const PermissionRowAction&, const PermissionRowAction&) = default;
};

struct PermissionOnboardingRow {
    PermissionCapability capability = PermissionCapability::accessibility;
    OnboardingSymbol icon;
    OnboardingText title;
    OnboardingText description;
    // Present for a capability that isn't required.
    std::optional<OnboardingBadge> badge;
    PermissionRowAction action;
    friend bool operator==(const PermissionOnboardingRow&,
                           const PermissionOnboardingRow&) = default;
};

// The key a button answers to: the cancel action is Escape, the default action Return.
enum class OnboardingButtonRole { cancelAction, defaultAction };

enum class OnboardingButtonStyle { automatic, borderedProminent };

enum class OnboardingControlSize { regular, large };

struct OnboardingButton {
    std::string title;
    OnboardingButtonRole role = OnboardingButtonRole::cancelAction;
    OnboardingButtonStyle style = OnboardingButtonStyle::automatic;
    OnboardingControlSize controlSize = OnboardingControlSize::regular;
    bool isEnabled = true;
    friend bool operator==(const OnboardingButton&, const OnboardingButton&) = default;
};

struct PermissionOnboardingContent {
    PermissionOnboardingLayout layout;
    OnboardingSymbol icon;
    OnboardingText title;
    OnboardingText subtitle;
    // One per capability, in case order.
    std::vector<PermissionOnboardingRow> rows;
    OnboardingSymbol footnoteSymbol;
    OnboardingText footnote;
    // Left to right.
    std::vector<OnboardingButton> buttons;
    friend bool operator==(const PermissionOnboardingContent&,
                           const PermissionOnboardingContent&) = default;
};

}  // namespace orvane
