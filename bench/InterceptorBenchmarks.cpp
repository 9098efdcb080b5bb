#include <benchmark/benchmark.h>

#include <cstddef>
#include <functional>
#include <memory>
#include <string>

#include "interception/GlobalShortcutInterceptor.h"
#include "interception/KeyCode.h"
#include "platform/simulated/SimulatedKeyboardEvent.h"

namespace orvane {
namespace {

// Hand-written so the measurement is the interceptor's own cost, not a mock's bookkeeping.
class TrivialSessionDriver final : public SwitcherSessionDriving {
  public:
    bool isSessionActive() const override { return active_; }
    bool startSession(bool) override { return active_ = true; }
    bool startSameApplicationSession(bool) override { return active_ = true; }
    void moveSelection(std::ptrdiff_t delta) override { selection_ += delta; }
    void moveSelection(SwitcherSelectionDirection) override { ++selection_; }
    void commitSession() override { active_ = false; }
    void cancelSession() override { active_ = false; }

    std::ptrdiff_t selection() const { return selection_; }

  private:
    bool active_ = false;
    std::ptrdiff_t selection_ = 0;
};

class ClosedLauncher final : public LauncherSessionDriving {
  public:
    bool isLauncherSessionActive() const override { return false; }
    void beginLauncherSession() override {}
    void switchLauncherMode() override {}
    void appendToSearchQuery(const std::string&) override {}
    void deleteLastSearchCharacter() override {}
    void moveLauncherSelection(std::ptrdiff_t) override {}
    void commitLauncherSession() override {}
    void endLauncherSession() override {}
};

class DefaultPreferences final : public PreferencesProviding {
  public:
    SwitcherPreferences preferences() const override { return preferences_; }
    void setPreferences(const SwitcherPreferences& preferences) override {
        preferences_ = preferences;
    }
    ObservationToken observePreferences(std::function<void(const SwitcherPreferences&)>) override {
        return 0;
    }
    void removePreferencesObserver(ObservationToken) override {}

  private:
    SwitcherPreferences preferences_;
};

struct Harness {
    std::shared_ptr<TrivialSessionDriver> session = std::make_shared<TrivialSessionDriver>();
    GlobalShortcutInterceptor interceptor{
        session, std::make_shared<ClosedLauncher>(), std::make_shared<DefaultPreferences>(), {}};
};

// Each iteration handles two events; this reports the time of one.
void reportPerEvent(benchmark::State& state) {
    state.SetItemsProcessed(state.iterations() * 2);
    state.counters["time_per_event"] = benchmark::Counter(
        2, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

// What every ordinary keystroke of the desktop pays.
void BM_HandleEvent_PlainKeyDownAndUp(benchmark::State& state) {
    Harness harness;
    constexpr EventKeyCode keyA = 0;
    const SimulatedKeyboardEvent keyEvent(keyA, 0);
    for (auto _ : state) {
        bool swallowedDown =
            harness.interceptor.handleEvent(keyboard_event_type::keyDown, keyEvent);
        benchmark::DoNotOptimize(swallowedDown);
        bool swallowedUp = harness.interceptor.handleEvent(keyboard_event_type::keyUp, keyEvent);
        benchmark::DoNotOptimize(swallowedUp);
    }
    reportPerEvent(state);
}
BENCHMARK(BM_HandleEvent_PlainKeyDownAndUp);

void BM_HandleEvent_TriggerTapInSession(benchmark::State& state) {
    Harness harness;
    const SimulatedKeyboardEvent option(58, keyboard_event_flag::option);
    const SimulatedKeyboardEvent tab(key_code::tab, keyboard_event_flag::option);
    harness.interceptor.handleEvent(keyboard_event_type::flagsChanged, option);
    harness.interceptor.handleEvent(keyboard_event_type::keyDown, tab);
    harness.interceptor.handleEvent(keyboard_event_type::keyUp, tab);
    if (!harness.session->isSessionActive()) {
        state.SkipWithError("the first tap started no session");
        return;
    }
    for (auto _ : state) {
        bool swallowedDown = harness.interceptor.handleEvent(keyboard_event_type::keyDown, tab);
        benchmark::DoNotOptimize(swallowedDown);
        bool swallowedUp = harness.interceptor.handleEvent(keyboard_event_type::keyUp, tab);
        benchmark::DoNotOptimize(swallowedUp);
    }
    if (harness.session->selection() != static_cast<std::ptrdiff_t>(state.iterations())) {
        state.SkipWithError("a tap did not step the selection");
    }
    reportPerEvent(state);
}
BENCHMARK(BM_HandleEvent_TriggerTapInSession);

}  // namespace
}  // namespace orvane
