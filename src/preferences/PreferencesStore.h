// Owns the one live preferences record of the running program: loads it from the user defaults
// once, hands it out, tells observers of changes and persists every change at once.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "core/Logger.h"
#include "core/PreferencesProviding.h"
#include "platform/UserDefaultsPort.h"
#include "preferences/SwitcherPreferencesCodec.h"

namespace orvane {

inline constexpr const char* preferencesDefaultsKey = "brimcote.orvane.preferences";

class PreferencesStore final : public PreferencesProviding {
  public:
    using Encoder =
        std::function<SwitcherPreferencesCodec::EncodeResult(const SwitcherPreferences&)>;
    using Observer = std::function<void(const SwitcherPreferences&)>;

    // Loads the stored record, or the defaults when it is absent or does not decode. Loading
    // logs, writes and removes nothing, so bad stored bytes survive until the first write.
    // `encoder` turns the record into the stored bytes; the codec's unless another is given.
    explicit PreferencesStore(std::shared_ptr<UserDefaultsPort> userDefaults,
                              Encoder encoder = &SwitcherPreferencesCodec::encode);

    SwitcherPreferences preferences() const override { return preferences_; }

    // A record equal to the current one is stored and persisted without telling anyone. A
    // different one is announced to the will-change observers, stored, persisted and then
    // announced to the change observers, which thus find the new bytes already in the defaults.
    void setPreferences(const SwitcherPreferences& preferences) override;

    // Changes fields of the current record in place, as the Settings panes write: both notices
    // are given around the change and the persisting, without comparing the records. When the
    // user defaults can't store the result, the change is undone before the second notice, so
    // that the panes show what is stored, and `lastWriteFailure` says why.
    void modifyPreferences(const std::function<void(SwitcherPreferences&)>& change);

    // Why the last write of a change failed; nothing once a write succeeds.
    const std::optional<std::string>& lastWriteFailure() const { return lastWriteFailure_; }

    // Told, with the new record, after each change has been stored and persisted.
    ObservationToken observePreferences(Observer observer) override;
    void removePreferencesObserver(ObservationToken token) override;

    // Told, with the record still current, before each change.
    ObservationToken observePreferencesWillChange(Observer observer);
    void removePreferencesWillChangeObserver(ObservationToken token);

  private:
    using Observers = std::vector<std::pair<ObservationToken, Observer>>;

    // With `undoWhatIsNotStored`, a change the user defaults refuse is taken back.
    void changeAndPersist(const std::function<void(SwitcherPreferences&)>& change,
                          bool undoWhatIsNotStored);
    // Answers whether the bytes were stored (an encoding failure stores nothing, and says so).
    bool persist();
    void tell(const Observers& observers) const;

    std::shared_ptr<UserDefaultsPort> userDefaults_;
    Encoder encoder_;
    const Logger& log_;
    SwitcherPreferences preferences_;
    Observers willChangeObservers_;
    Observers didChangeObservers_;
    ObservationToken lastToken_ = 0;
    std::optional<std::string> lastWriteFailure_;
};

}  // namespace orvane
