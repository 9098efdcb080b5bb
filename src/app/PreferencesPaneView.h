// A pane of the Settings window: what it shows now, and what the user does with its controls,
// addressed by their labels. A renderer draws `content()` again whenever `redraws` changes, which
// a pane makes happen for every change it shows (the preferences included).
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "app/PreferencesPaneContent.h"
#include "core/Observable.h"

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

  private:
    Observable<std::uint64_t> redraws_;
};

}  // namespace orvane
