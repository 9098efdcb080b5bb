#include <benchmark/benchmark.h>

#include <memory>
#include <string>
#include <vector>

#include "core/Log.h"
#include "core/LogSink.h"
#include "enumeration/AccessibilityWindowEnumerationService.h"
#include "platform/simulated/SimulatedDesktop.h"

namespace orvane {
namespace {

// Lines are still rendered, as in the program, but go nowhere.
class DiscardingLogSink final : public LogSink {
  public:
    void write(const LogRecord&) override {}
};

// 20 applications with 10 windows each, stacked in turn so that their windows interleave. Some
// titles are withheld from the window list, some windows are minimized or off screen, a few are
// dialogs, and a third are placed a point off by the Accessibility tree.
std::shared_ptr<SimulatedDesktop> busyDesktop() {
    constexpr int applicationCount = 20;
    constexpr int windowsPerApplication = 10;
    auto desktop = SimulatedDesktop::make(100);
    for (int application = 0; application < applicationCount; ++application) {
        SimulatedApplication launched;
        launched.runningApplication.processIdentifier = 200 + application;
        launched.runningApplication.localizedName = "Application " + std::to_string(application);
        desktop->launchApplication(launched);
    }
    for (int index = 0; index < windowsPerApplication; ++index) {
        for (int application = 0; application < applicationCount; ++application) {
            const int number = application * windowsPerApplication + index;
            SimulatedWindow window;
            window.windowIdentifier = static_cast<WindowIdentifier>(1000 + number);
            window.owningProcessIdentifier = 200 + application;
            window.bounds = Rect{{60.0 * index + application, 40.0 * index}, {800.0 + index, 600}};
            const std::string title = "Document " + std::to_string(number);
            window.accessibilityTitle = title;
            if (index % 4 != 3) {
                window.listTitle = title;
            }
            if (index % 3 == 0) {
                Rect shifted = window.bounds;
                shifted.origin.x += 1;
                window.accessibilityFrame = shifted;
            }
            window.isMinimized = number % 17 == 0;
            window.isOffScreen = number % 23 == 5;
            if (index == 8 && application % 5 == 0) {
                window.subrole = "AXDialog";
            }
            desktop->createWindow(window);
        }
    }
    return desktop;
}

void BM_EnumerateSwitchableWindowsOfTwoHundredWindows(benchmark::State& state) {
    auto previousSinks = Log::shared().replaceSinks({std::make_shared<DiscardingLogSink>()});
    auto desktop = busyDesktop();
    AccessibilityWindowEnumerationService service(
        desktop->currentProcessIdentifier(), desktop->windowListPort(),
        desktop->accessibilityPort(), desktop->workspacePort());
    std::size_t windowCount = 0;
    for (auto _ : state) {
        auto windows = service.enumerateSwitchableWindows();
        windowCount = windows.size();
        benchmark::DoNotOptimize(windows.data());
    }
    state.counters["windows"] = static_cast<double>(windowCount);
    Log::shared().replaceSinks(std::move(previousSinks));
}
BENCHMARK(BM_EnumerateSwitchableWindowsOfTwoHundredWindows)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace orvane
