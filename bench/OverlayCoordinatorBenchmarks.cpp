#include <benchmark/benchmark.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "core/ScopedLogCapture.h"
#include "overlay/SwitcherOverlayCoordinator.h"
#include "platform/simulated/SimulatedOverlayPanel.h"
#include "platform/simulated/SimulatedScreens.h"

namespace orvane {
namespace {

// The captures themselves are left out: the tasks the presentation posts are counted and dropped.
class DroppingRunLoop final : public RunLoopPort {
  public:
    void post(std::function<void()>) override { ++posted; }
    TimerToken scheduleTimer(double, bool, double, std::function<void()>) override { return 0; }
    void cancelTimer(TimerToken) override {}
    void addSource(RunLoopSourceHandle, RunLoopMode) override {}
    void removeSource(RunLoopSourceHandle, RunLoopMode) override {}

    std::size_t posted = 0;
};

class NoCaptures final : public WindowThumbnailCaptureService {
  public:
    void captureThumbnail(const SwitchableWindow&, CancellationToken, Completion) override {}
};

class DefaultPreferences final : public PreferencesProviding {
  public:
    SwitcherPreferences preferences() const override { return {}; }
    void setPreferences(const SwitcherPreferences&) override {}
    ObservationToken observePreferences(std::function<void(const SwitcherPreferences&)>) override {
        return 0;
    }
    void removePreferencesObserver(ObservationToken) override {}
};

// A session's presentation of 50 windows with thumbnails on: view model, screen, geometry, panel
// and one thumbnail task per card (each iteration cancels the previous iteration's tasks).
void BM_PresentSwitcherFiftyWindows(benchmark::State& state) {
    ScopedLogCapture quiet;
    std::vector<SwitchableWindow> windows;
    for (int number = 0; number < 50; ++number) {
        SwitchableWindow window;
        window.windowIdentifier = static_cast<WindowIdentifier>(1000 + number);
        window.owningProcessIdentifier = 500 + number % 10;
        window.owningApplicationName = "Application " + std::to_string(number % 10);
        window.windowTitle = "Document " + std::to_string(number);
        windows.push_back(window);
    }
    auto runLoop = std::make_shared<DroppingRunLoop>();
    auto coordinator = std::make_shared<SwitcherOverlayCoordinator>(
        std::make_shared<NoCaptures>(), std::make_shared<DefaultPreferences>(),
        std::make_shared<SimulatedScreens>(), std::make_shared<SimulatedOverlayPanel>(), runLoop);
    std::ptrdiff_t selected = 0;
    for (auto _ : state) {
        coordinator->presentSwitcher(windows, ++selected % 50);
    }
    if (runLoop->posted != 50 * static_cast<std::size_t>(state.iterations())) {
        state.SkipWithError("a presentation did not start one thumbnail task per card");
    }
}
BENCHMARK(BM_PresentSwitcherFiftyWindows)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace orvane
