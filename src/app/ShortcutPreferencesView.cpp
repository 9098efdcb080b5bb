#include "app/ShortcutPreferencesView.h"

#include <string>
#include <utility>

namespace orvane {

namespace {

constexpr std::string_view holdModifierPicker = "Hold modifier";
constexpr std::string_view reverseToggle = "Cycle backward with Shift-Tab";
constexpr std::string_view sameApplicationToggle = "Cycle windows of the current app";

PaneKeyCap key(std::string title, std::string keyCap, bool isDimmed = false) {
    return {std::move(title), std::move(keyCap), isDimmed};
}

}  // namespace

ShortcutPreferencesView::ShortcutPreferencesView(
    std::shared_ptr<PreferencesStore> preferencesProvider)
    : preferencesProvider_(std::move(preferencesProvider)) {
    preferencesObservation_ =
        preferencesProvider_->observePreferences([this](const SwitcherPreferences&) { redraw(); });
}

ShortcutPreferencesView::~ShortcutPreferencesView() {
    preferencesProvider_->removePreferencesObserver(preferencesObservation_);
}

PreferencesPaneContent ShortcutPreferencesView::content() {
    const auto preferences = preferencesProvider_->preferences();
    const bool control =
        preferences.shortcutConfiguration.holdModifier == SwitcherHoldModifier::control;
    const std::string hold = control ? "⌃" : "⌥";
    // The trigger always prints as Tab and the launcher always as Option-Space: neither follows
    // the record.
    PreferencesPaneContent pane;
    pane.style = PaneStyle::referenceCard;
    pane.sections.push_back(
        {"System-wide",
         "These fire from any app. Hold the modifier and tap the key to open the switcher; release "
         "the modifier to switch. Everything below only fires while an overlay is visible.",
         {key("Switch windows", hold + "⇥"),
          key("Cycle windows of the current app", hold + "`",
              !preferences.sameApplicationCyclingEnabled),
          key("Open the launcher", "⌥␣")},
         {}});
    pane.sections.push_back(
        {std::string(holdModifierPicker),
         "Drives the switcher shortcuts above. Command isn't offered — macOS's own app switcher "
         "owns Command-Tab.",
         {PanePicker{std::string(holdModifierPicker),
                     {"⌥ Option", "⌃ Control"},
                     control ? 1U : 0U,
                     true,
                     240}},
         {}});
    pane.sections.push_back({"While the switcher is open",
                             "Consumed by the switcher — they never reach the app underneath.",
                             {key("Cycle forward", "⇥"),
                              key("Cycle backward", "⇧⇥", !preferences.reverseCyclingEnabled),
                              key("Move selection", "← ↑ ↓ →"),
                              key("Switch to selection", "release " + hold), key("Cancel", "⎋")},
                             {}});
    pane.sections.push_back(
        {"While the launcher is open",
         "Type to search — every other keystroke goes to the launcher while it is open.",
         {key("Switch between windows and apps", "⌥␣"), key("Move selection", "⇥ ↑ ↓"),
          key("Activate selection", "↩"), key("Close", "⎋")},
         {}});
    pane.sections.push_back({"Options",
                             "Disabled gestures pass their keys through to the focused app.",
                             {PaneToggle{.label = std::string(reverseToggle),
                                         .isOn = preferences.reverseCyclingEnabled},
                              PaneToggle{.label = std::string(sameApplicationToggle),
                                         .isOn = preferences.sameApplicationCyclingEnabled}},
                             {}});
    noteFailedWrite(pane, *preferencesProvider_);
    return pane;
}

bool ShortcutPreferencesView::setToggle(std::string_view label, bool isOn) {
    if (label == reverseToggle) {
        change(*preferencesProvider_, reverseToggle, [isOn](SwitcherPreferences& preferences) {
            preferences.reverseCyclingEnabled = isOn;
        });
        return true;
    }
    if (label == sameApplicationToggle) {
        change(*preferencesProvider_, sameApplicationToggle,
               [isOn](SwitcherPreferences& preferences) {
                   preferences.sameApplicationCyclingEnabled = isOn;
               });
        return true;
    }
    return false;
}

bool ShortcutPreferencesView::pick(std::string_view label, std::size_t segment) {
    if (label != holdModifierPicker || segment >= allSwitcherHoldModifiers.size()) {
        return false;
    }
    change(*preferencesProvider_, holdModifierPicker, [segment](SwitcherPreferences& preferences) {
        preferences.shortcutConfiguration.holdModifier = allSwitcherHoldModifiers[segment];
    });
    return true;
}

}  // namespace orvane
