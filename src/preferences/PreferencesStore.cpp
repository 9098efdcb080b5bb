#include "preferences/PreferencesStore.h"

#include <algorithm>

namespace orvane {

PreferencesStore::PreferencesStore(std::shared_ptr<UserDefaultsPort> userDefaults, Encoder encoder)
    : userDefaults_(std::move(userDefaults)),
      encoder_(std::move(encoder)),
      log_(Logger::forCategory(LogCategory::preferences)) {
    // A record that fails to decode is not an error worth telling anyone: the program simply
    // runs on the defaults.
    if (const auto bytes = userDefaults_->dataForKey(preferencesDefaultsKey)) {
        if (auto decoded = SwitcherPreferencesCodec::decode(*bytes).preferences) {
            preferences_ = *decoded;
        }
    }
}

void PreferencesStore::setPreferences(const SwitcherPreferences& preferences) {
    if (preferences == preferences_) {
        // Still persisted, so that a write replaces bad stored bytes even when nothing changed.
        preferences_ = preferences;
        persist();
        return;
    }
    changeAndPersist([&preferences](SwitcherPreferences& current) { current = preferences; },
                     false);
}

void PreferencesStore::modifyPreferences(const std::function<void(SwitcherPreferences&)>& change) {
    changeAndPersist(change, true);
}

void PreferencesStore::changeAndPersist(const std::function<void(SwitcherPreferences&)>& change,
                                        bool undoWhatIsNotStored) {
    tell(willChangeObservers_);
    const auto stored = preferences_;
    change(preferences_);
    if (!persist() && lastWriteFailure_ && undoWhatIsNotStored) {
        // A control the user just set shows what will be there after a restart, not a wish.
        preferences_ = stored;
    }
    tell(didChangeObservers_);
}

bool PreferencesStore::persist() {
    const auto encoded = encoder_(preferences_);
    if (!encoded.bytes) {
        // The record stays current in memory; the next write tries again.
        log_.error("failed to persist preferences: %{public}s", encoded.error);
        return false;
    }
    lastWriteFailure_ = userDefaults_->setData(preferencesDefaultsKey, *encoded.bytes);
    return !lastWriteFailure_;
}

void PreferencesStore::tell(const Observers& observers) const {
    // A copy, so that an observer may subscribe or unsubscribe while being told.
    const auto receivers = observers;
    for (const auto& entry : receivers) {
        entry.second(preferences_);
    }
}

ObservationToken PreferencesStore::observePreferences(Observer observer) {
    didChangeObservers_.emplace_back(++lastToken_, std::move(observer));
    return lastToken_;
}

void PreferencesStore::removePreferencesObserver(ObservationToken token) {
    std::erase_if(didChangeObservers_, [token](const auto& entry) { return entry.first == token; });
}

ObservationToken PreferencesStore::observePreferencesWillChange(Observer observer) {
    willChangeObservers_.emplace_back(++lastToken_, std::move(observer));
    return lastToken_;
}

void PreferencesStore::removePreferencesWillChangeObserver(ObservationToken token) {
    std::erase_if(willChangeObservers_,
                  [token](const auto& entry) { return entry.first == token; });
}

}  // namespace orvane
