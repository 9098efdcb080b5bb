#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstddef>
#include <memory>
#include <optional>
#include <random>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "core/ScopedLogCapture.h"
#include "launcher/InstalledApplicationLauncherMode.h"
#include "launcher/LauncherMatchScore.h"
#include "launcher/LauncherSessionCoordinator.h"
#include "launcher/WindowLauncherMode.h"
#include "platform/simulated/SimulatedApplicationLauncher.h"
#include "platform/simulated/SimulatedDesktop.h"
#include "platform/simulated/SimulatedFileSystem.h"
#include "platform/simulated/SimulatedSound.h"

namespace orvane {
namespace {

class DiscardingPresenter final : public SwitcherOverlayPresenting {
  public:
    bool isPresented() const override { return false; }
    void presentSwitcher(const std::vector<SwitchableWindow>&, std::ptrdiff_t) override {}
    void updateSelection(std::ptrdiff_t) override {}
    void presentLauncher(const LauncherOverlayPresentation& presentation) override {
        benchmark::DoNotOptimize(presentation.items.data());
    }
    void dismiss() override {}
};

std::vector<std::string> splitAtSpaces(const std::string& text) {
    std::vector<std::string> words;
    std::istringstream stream(text);
    for (std::string word; stream >> word;) {
        words.push_back(word);
    }
    return words;
}

// Names of one to three words, one in twenty with accented letters, so the Unicode path is paid.
std::vector<std::string> applicationLikeNames(std::size_t count) {
    const auto plainWords = splitAtSpaces(
        "Activity Monitor Safari Terminal Text Edit Stickies Mail Calendar Notes Numbers Pages "
        "Keynote Music Photo Preview System Settings Disk Utility Font Book Chess Console Studio "
        "Visual Code Xcode Finder Maps Weather Clock Contacts Podcast Reminder");
    const auto accentedWords =
        splitAtSpaces("Caf\u00E9 \u00DCbersicht R\u00E9sum\u00E9 Fa\u00E7ade Stra\u00DFe");
    std::mt19937 generator(7);
    std::uniform_int_distribution<std::size_t> plainWord(0, plainWords.size() - 1);
    std::uniform_int_distribution<std::size_t> accentedWord(0, accentedWords.size() - 1);
    std::uniform_int_distribution<int> wordCount(1, 3);
    std::uniform_int_distribution<int> oneInTwenty(0, 19);
    std::vector<std::string> names;
    for (std::size_t index = 0; index < count; ++index) {
        std::string name;
        for (int word = wordCount(generator); word > 0; --word) {
            name += (name.empty() ? "" : " ") + plainWords[plainWord(generator)];
        }
        if (oneInTwenty(generator) == 0) {
            name += " " + accentedWords[accentedWord(generator)];
        }
        names.push_back(name + " " + std::to_string(index));
    }
    return names;
}

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

// One keystroke that extends the query `typedBefore` by `key`: append, score every candidate,
// keep eight, publish. The Delete that restores the query is not timed.
void runKeystroke(benchmark::State& state, std::shared_ptr<LauncherMode> mode, bool inApplications,
                  const std::string& typedBefore, const std::string& key) {
    ScopedLogCapture quiet;
    LauncherSessionCoordinator coordinator(mode, mode, std::make_shared<DiscardingPresenter>());
    coordinator.beginLauncherSession();
    if (inApplications) {
        coordinator.switchLauncherMode();
    }
    coordinator.appendToSearchQuery(typedBefore);
    for (auto _ : state) {
        coordinator.appendToSearchQuery(key);
        state.PauseTiming();
        coordinator.deleteLastSearchCharacter();
        state.ResumeTiming();
    }
    benchmark::DoNotOptimize(coordinator.visibleItems().data());
}

void BM_LauncherKeystrokeApplications2000FirstKey(benchmark::State& state) {
    runKeystroke(state, applicationsMode(2000), true, "", "t");
}
void BM_LauncherKeystrokeApplications2000ThirdKey(benchmark::State& state) {
    runKeystroke(state, applicationsMode(2000), true, "te", "r");
}
void BM_LauncherKeystrokeWindows300FirstKey(benchmark::State& state) {
    runKeystroke(state, windowsMode(300), false, "", "t");
}
void BM_LauncherKeystrokeWindows300ThirdKey(benchmark::State& state) {
    runKeystroke(state, windowsMode(300), false, "te", "r");
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
