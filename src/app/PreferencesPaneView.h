// A pane of the Settings window: what it shows now, and what the user does with its controls,
// addressed by their labels. A renderer draws `content()` again whenever `redraws` changes, which
// a pane makes happen for every change it shows (the preferences included).
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "app/PreferencesPaneContent.h"
#include "core/Observable.h"
#include "preferences/PreferencesStore.h"

namespace orvane {

class PreferencesPaneView {
  public:
    virtual ~PreferencesPaneView() = default;

    // Reads the preferences and the permissions as they stand (asking for a permission refreshes
    // the coordinator's table).
    virtual PreferencesPaneContent content() = 0;

    // Each answers false, changing nothing, when the pane has no such enabled control.
    virtual bool setToggle(std::string_view /*label*/, bool /*isOn*/) { return false; }
    virtual bool pick(std::string_view /*label*/, std::size_t /*segment*/) { return false; }
    virtual bool press(std::string_view /*title*/) { return false; }

    // The pane came on screen, or left it.
    virtual void appear() {}
    virtual void disappear() {}

    Observable<std::uint64_t>& redraws() { return redraws_; }

  protected:
    void redraw() { redraws_.set(redraws_.value() + 1); }

    // Writes the change the control `label` made; when the store could not keep it, the control
    // is remembered, for `noteFailedWrite` to say why beside it.
    void change(PreferencesStore& store, std::string_view label,
                const std::function<void(SwitcherPreferences&)>& change) {
        store.modifyPreferences(change);
        const bool wasNoted = !failedControl_.empty();
        failedControl_ = store.lastWriteFailure() ? std::string(label) : std::string();
        // The store's notice drew the pane before the control was known.
        if (wasNoted || !failedControl_.empty()) {
            redraw();
        }
    }
    // Under the section of the control whose change was not kept: why, and that the control
    // shows the value in effect.
    void noteFailedWrite(PreferencesPaneContent& pane, const PreferencesStore& store) const {
        if (failedControl_.empty() || !store.lastWriteFailure()) {
            return;
        }
        for (auto& section : pane.sections) {
            for (const auto& row : section.rows) {
                const auto* toggle = std::get_if<PaneToggle>(&row);
                const auto* picker = std::get_if<PanePicker>(&row);
                if ((toggle != nullptr && toggle->label == failedControl_) ||
                    (picker != nullptr && picker->label == failedControl_)) {
                    section.footer.insert(
                        section.footer.begin(),
                        PaneFootnote{
                            "This change could not be saved: " + *store.lastWriteFailure() +
                            ". The setting shown is the one in effect."});
                    return;
                }
            }
        }
    }

  private:
    Observable<std::uint64_t> redraws_;
    std::string failedControl_;
};

}  // namespace orvane
