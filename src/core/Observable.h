// A value that tells its subscribers of real changes. Tokens identify subscriptions; whoever
// subscribes removes its own token.
#pragma once

#include <cstdint>
#include <functional>
#include <utility>
#include <vector>

namespace orvane {

using ObservationToken = std::uint64_t;

template <typename Value>
class Observable {
  public:
    using Observer = std::function<void(const Value&)>;

    Observable() = default;
    explicit Observable(Value initial) : value_(std::move(initial)) {}

    const Value& value() const { return value_; }

    // Stores the value; subscribers hear of it only when it differs from the one held.
    void set(Value newValue) {
        if (newValue == value_) {
            value_ = std::move(newValue);
            return;
        }
        value_ = std::move(newValue);
        notify();
    }

    // Stores the value and tells every subscriber, changed or not.
    void replace(Value newValue) {
        value_ = std::move(newValue);
        notify();
    }

    ObservationToken subscribe(Observer observer) {
        const ObservationToken token = ++lastToken_;
        observers_.push_back({token, std::move(observer)});
        return token;
    }

    void unsubscribe(ObservationToken token) {
        std::erase_if(observers_, [token](const auto& entry) { return entry.first == token; });
    }

  private:
    void notify() {
        // A copy, so that an observer may subscribe or unsubscribe while being told.
        auto observers = observers_;
        for (const auto& entry : observers) {
            entry.second(value_);
        }
    }

    Value value_{};
    ObservationToken lastToken_ = 0;
    std::vector<std::pair<ObservationToken, Observer>> observers_;
};

}  // namespace orvane
