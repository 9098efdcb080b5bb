#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "LauncherKeystroke.h"
#include "launcher/InstalledApplicationLauncherMode.h"
#include "launcher/LauncherMatchScore.h"
#include "launcher/WindowLauncherMode.h"
#include "platform/simulated/SimulatedApplicationLauncher.h"
#include "platform/simulated/SimulatedDesktop.h"
#include "platform/simulated/SimulatedFileSystem.h"
#include "platform/simulated/SimulatedSound.h"

namespace orvane {
namespace {

// The real applications mode over a simulated disk holding `count` bundles in the folders it
// searches; its listing is cached for thirty seconds of a clock that never moves here.
std::shared_ptr<LauncherMode> applicationsMode(std::size_t count) {
    auto runLoop = std::make_shared<SimulatedRunLoop>();
    auto fileSystem = std::make_shared<SimulatedFileSystem>();
    fileSystem->createApplicationFolders();
    const auto names = applicationLikeNames(count);
    for (std::size_t index = 0; index < names.size(); ++index) {
        fileSystem->addApplication(SimulatedFileSystem::applicationFolders[index % 4],
                                   names[index] + ".app");
    }
    auto mode = std::make_shared<InstalledApplicationLauncherMode>(
        fileSystem, std::make_shared<SimulatedApplicationLauncher>(runLoop),
        std::make_shared<SimulatedSound>(), runLoop, [runLoop] { return runLoop->now(); });
    mode->items("");
    return mode;
}

// A desktop of `count` windows, listed as enumerated: typing never enumerates again.
class FixedWindows final : public WindowEnumerationService,
                           public MostRecentlyUsedWindowOrdering,
                           public WindowActivationService {
  public:
    explicit FixedWindows(std::vector<SwitchableWindow> windows) : windows_(std::move(windows)) {}
    std::vector<SwitchableWindow> enumerateSwitchableWindows() override { return windows_; }
    void startTracking() override {}
    void stopTracking() override {}
    std::vector<SwitchableWindow> orderedByRecency(std::vector<SwitchableWindow> windows) override {
        return windows;
    }
    void recordImmediateFocus(const SwitchableWindow&) override {}
    void activate(const SwitchableWindow&) override {}

  private:
    std::vector<SwitchableWindow> windows_;
};

// The real windows mode: candidates of application name, one space and title.
std::shared_ptr<LauncherMode> windowsMode(std::size_t count) {
    const auto applications = applicationLikeNames(40);
    const auto titles = applicationLikeNames(count);
    std::vector<SwitchableWindow> windows;
    for (std::size_t index = 0; index < count; ++index) {
        SwitchableWindow window;
        window.windowIdentifier = static_cast<WindowIdentifier>(index + 1);
        window.owningProcessIdentifier = static_cast<ProcessIdentifier>(400 + index % 40);
        window.owningApplicationName = applications[index % applications.size()];
        window.windowTitle = titles[index];
        windows.push_back(std::move(window));
    }
    auto fixed = std::make_shared<FixedWindows>(std::move(windows));
    return std::make_shared<WindowLauncherMode>(fixed, fixed, fixed,
                                                SimulatedDesktop::make()->workspacePort(),
                                                std::make_shared<SimulatedSound>());
}

void BM_LauncherKeystrokeApplications2000FirstKey(benchmark::State& state) {
    runLauncherKeystroke(state, applicationsMode(2000), true, "", "t");
}
void BM_LauncherKeystrokeApplications2000ThirdKey(benchmark::State& state) {
    runLauncherKeystroke(state, applicationsMode(2000), true, "te", "r");
}
void BM_LauncherKeystrokeWindows300FirstKey(benchmark::State& state) {
    runLauncherKeystroke(state, windowsMode(300), false, "", "t");
}
void BM_LauncherKeystrokeWindows300ThirdKey(benchmark::State& state) {
    runLauncherKeystroke(state, windowsMode(300), false, "te", "r");
}

void BM_LauncherMatchScore(benchmark::State& state, const char* query, const char* candidate) {
    for (auto _ : state) {
        benchmark::DoNotOptimize(launcherMatchScore(query, candidate));
    }
}

BENCHMARK(BM_LauncherKeystrokeApplications2000FirstKey)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_LauncherKeystrokeApplications2000ThirdKey)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_LauncherKeystrokeWindows300FirstKey)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_LauncherKeystrokeWindows300ThirdKey)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(BM_LauncherMatchScore, ascii_subsequence, "amr", "Activity Monitor");
BENCHMARK_CAPTURE(BM_LauncherMatchScore, accented_word, "bru", "Cr\u00E8me Br\u00FBl\u00E9e");
BENCHMARK_CAPTURE(BM_LauncherMatchScore, emoji_word, "code", "\U0001F469\u200D\U0001F4BB Code");

}  // namespace
}  // namespace orvane
