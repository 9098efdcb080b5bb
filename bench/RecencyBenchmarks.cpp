#include <benchmark/benchmark.h>

#include <algorithm>
#include <memory>
#include <numeric>
#include <random>
#include <string>
#include <vector>

#include "recency/MostRecentlyUsedWindowTracker.h"

namespace orvane {
namespace {

class IdleFocusEventSource final : public WindowFocusEventSource {
  public:
    std::weak_ptr<WindowFocusEventObserving> observer() const override { return {}; }
    void setObserver(std::weak_ptr<WindowFocusEventObserving>) override {}
    void startObserving() override {}
    void stopObserving() override {}
};

// Equal by number, with a type check on each comparison as a platform element would make.
class NumberedElement final : public AccessibilityElementObject {
  public:
    explicit NumberedElement(int number) : number_(number) {}

    bool isEqualTo(const AccessibilityElementObject& other) const override {
        const auto* numbered = dynamic_cast<const NumberedElement*>(&other);
        return numbered != nullptr && numbered->number_ == number_;
    }
    std::size_t hashValue() const override { return std::hash<int>{}(number_); }

  private:
    int number_;
};

std::shared_ptr<const AccessibilityWindowElement> numberedElement(int number) {
    return std::make_shared<const AccessibilityWindowElement>(
        std::make_shared<NumberedElement>(number));
}

// A desktop of 1,000 windows over 50 applications, every one focused once in a shuffled order, and
// 32 focus observations of windows no enumeration shows, so they stay pending on every call.
void BM_RecencyOrderingOfThousandWindows(benchmark::State& state) {
    constexpr int windowCount = 1000;
    std::vector<SwitchableWindow> windows;
    for (int number = 0; number < windowCount; ++number) {
        SwitchableWindow window;
        window.windowIdentifier = static_cast<WindowIdentifier>(1000 + number);
        window.owningProcessIdentifier = 500 + number % 50;
        window.owningApplicationName = "Application " + std::to_string(number % 50);
        window.windowTitle = "Window " + std::to_string(number);
        window.accessibilityElement = numberedElement(number);
        windows.push_back(window);
    }

    double seconds = 0;
    MostRecentlyUsedWindowTracker tracker(std::make_shared<IdleFocusEventSource>(),
                                          [&seconds] { return Date{seconds}; });
    tracker.orderedByRecency(windows);
    std::vector<int> focusOrder(windowCount);
    std::iota(focusOrder.begin(), focusOrder.end(), 0);
    std::shuffle(focusOrder.begin(), focusOrder.end(), std::mt19937(20240611));
    for (int number : focusOrder) {
        seconds += 1;
        tracker.windowFocusEventDidOccur(WindowFocusEvent::focusedWindowChanged(
            windows[static_cast<std::size_t>(number)].owningProcessIdentifier,
            numberedElement(number)));
    }
    for (int number = windowCount; number < windowCount + 32; ++number) {
        seconds += 1;
        tracker.windowFocusEventDidOccur(
            WindowFocusEvent::focusedWindowChanged(600, numberedElement(number)));
    }
    const auto stackBefore = tracker.recencyOrderedWindowIdentifiers();
    if (stackBefore.size() != windowCount || tracker.pendingFocusObservations().size() != 32) {
        state.SkipWithError("the setup did not fill the stack and the pending queue");
        return;
    }

    for (auto _ : state) {
        auto ordered = tracker.orderedByRecency(windows);
        benchmark::DoNotOptimize(ordered.data());
        benchmark::ClobberMemory();
    }

    // Every iteration must have met the same state, or the numbers describe something else.
    if (tracker.recencyOrderedWindowIdentifiers() != stackBefore ||
        tracker.pendingFocusObservations().size() != 32 ||
        !tracker.consecutiveAbsenceCountsByWindowIdentifier().empty()) {
        state.SkipWithError("the tracker's state drifted between iterations");
    }
    state.SetItemsProcessed(state.iterations() * windowCount);
}
BENCHMARK(BM_RecencyOrderingOfThousandWindows)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace orvane
