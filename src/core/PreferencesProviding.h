// The live preferences record: read at the moment of use, written through, observable.
#pragma once

#include <functional>

#include "core/Observable.h"
#include "preferences/SwitcherPreferences.h"

namespace orvane {

class PreferencesProviding {
  public:
    virtual ~PreferencesProviding() = default;

    virtual SwitcherPreferences preferences() const = 0;
    // Every write is persisted at once.
    virtual void setPreferences(const SwitcherPreferences& preferences) = 0;
    // Told of every real change of the record.
    virtual ObservationToken observePreferences(
        std::function<void(const SwitcherPreferences&)> observer) = 0;
    virtual void removePreferencesObserver(ObservationToken token) = 0;
};

}  // namespace orvane
