// The Shortcuts pane: a reference card of every key the program understands, following the record
// only in the hold modifier's symbol and in dimming the rows of gestures turned off, and its three
// controls (the hold modifier and the two cycling toggles).
#pragma once

#include <memory>

#include "app/PreferencesPaneView.h"
#include "preferences/PreferencesStore.h"

namespace orvane {

class ShortcutPreferencesView final : public PreferencesPaneView {
  public:
    explicit ShortcutPreferencesView(std::shared_ptr<PreferencesStore> preferencesProvider);
    ~ShortcutPreferencesView() override;
    ShortcutPreferencesView(const ShortcutPreferencesView&) = delete;
    ShortcutPreferencesView& operator=(const ShortcutPreferencesView&) = delete;

    PreferencesPaneContent content() override;
    bool setToggle(std::string_view label, bool isOn) override;
    // "Hold modifier": 0 is Option, 1 Control.
    bool pick(std::string_view label, std::size_t segment) override;

  private:
    std::shared_ptr<PreferencesStore> preferencesProvider_;
    ObservationToken preferencesObservation_ = 0;
};

}  // namespace orvane
