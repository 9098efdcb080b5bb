// What a pane of the Settings window shows, as data: sections of rows in drawing order, each
// control named by its label, so that a renderer (the simulator's text, Qt) only draws them and
// hands presses back by label.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "app/PermissionStatusBadge.h"

namespace orvane {

struct PaneButton {
    std::string title{};
    bool isEnabled = true;
    std::string tooltip{};
    // The small control size, as in a footer.
    bool isSmall = false;
    friend bool operator==(const PaneButton&, const PaneButton&) = default;
};

// A switch.
struct PaneToggle {
    std::string label{};
    bool isOn = false;
    bool isEnabled = true;
    friend bool operator==(const PaneToggle&, const PaneToggle&) = default;
};

// A segmented picker.
struct PanePicker {
    std::string label{};
    std::vector<std::string> segments{};
    std::size_t selectedIndex = 0;
    // The label stands beside the picker as a text of the row instead.
    bool isLabelHidden = false;
    std::optional<double> maximumWidth{};
    friend bool operator==(const PanePicker&, const PanePicker&) = default;
};

// A row of the shortcuts card: a title, and the keys on a cap at the row's end.
struct PaneKeyCap {
    std::string title{};
    std::string keyCap{};
    bool isDimmed = false;
    friend bool operator==(const PaneKeyCap&, const PaneKeyCap&) = default;
};

// A labelled value, such as the version.
struct PaneValue {
    std::string label{};
    std::string value{};
    friend bool operator==(const PaneValue&, const PaneValue&) = default;
};

// A title, a badge when the row has one, and a button at the row's end.
struct PaneActionRow {
    std::string title{};
    std::optional<PermissionStatusBadge> badge{};
    PaneButton button{};
    friend bool operator==(const PaneActionRow&, const PaneActionRow&) = default;
};

using PaneRow =
    std::variant<PaneToggle, PanePicker, PaneKeyCap, PaneValue, PaneActionRow, PaneButton>;

// A footer is a column of footnote lines and small buttons.
struct PaneFootnote {
    std::string text{};
    friend bool operator==(const PaneFootnote&, const PaneFootnote&) = default;
};
using PaneFooterItem = std::variant<PaneFootnote, PaneButton>;

struct PaneSection {
    std::string header{};
    // Under the header, in the footnote font and the secondary colour (the shortcuts card).
    std::string description{};
    std::vector<PaneRow> rows{};
    std::vector<PaneFooterItem> footer{};
    friend bool operator==(const PaneSection&, const PaneSection&) = default;
};

enum class PaneStyle {
    // A grouped form: headed sections of rows, each with a footer.
    groupedForm,
    // A scrolling column of headed sections, each a description and a box of rows.
    referenceCard,
};

struct PreferencesPaneContent {
    PaneStyle style = PaneStyle::groupedForm;
    std::vector<PaneSection> sections{};
    friend bool operator==(const PreferencesPaneContent&, const PreferencesPaneContent&) = default;
};

// The numbers of the reference card, in points.
struct ReferenceCardLayout {
    static constexpr double margin = 20;
    static constexpr double sectionSpacing = 18;
    static constexpr double partSpacing = 6;
    static constexpr double rowSpacing = 8;
    static constexpr double boxVerticalMargin = 4;
    static constexpr double keyCapHorizontalPadding = 12;
    static constexpr double keyCapVerticalPadding = 4;
    static constexpr double keyCapMinimumWidth = 96;
    static constexpr double keyCapCornerRadius = 6;
    static constexpr double dimmedOpacity = 0.5;
};

}  // namespace orvane
