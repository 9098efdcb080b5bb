// Holds the live preferences record in memory, without storage, and tells observers of changes.
#pragma once

#include "core/Observable.h"
#include "core/PreferencesProviding.h"

namespace orvane::simulator {

class StandInPreferencesProvider final : public PreferencesProviding {
  public:
    SwitcherPreferences preferences() const override { return preferences_.value(); }
    void setPreferences(const SwitcherPreferences& preferences) override {
        preferences_.set(preferences);
    }
    ObservationToken observePreferences(
        std::function<void(const SwitcherPreferences&)> observer) override {
        return preferences_.subscribe(std::move(observer));
    }
    void removePreferencesObserver(ObservationToken token) override {
        preferences_.unsubscribe(token);
    }

  private:
    Observable<SwitcherPreferences> preferences_;
};

}  // namespace orvane::simulator
