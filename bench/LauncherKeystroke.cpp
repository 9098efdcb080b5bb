#include "LauncherKeystroke.h"

#include <benchmark/benchmark.h>

#include <random>
#include <sstream>

#include "core/ScopedLogCapture.h"
#include "launcher/LauncherSessionCoordinator.h"

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

}  // namespace

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

void runLauncherKeystroke(benchmark::State& state, std::shared_ptr<LauncherMode> mode,
                          bool inApplications, const std::string& typedBefore,
                          const std::string& key) {
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

}  // namespace orvane
