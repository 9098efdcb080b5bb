// A keystroke to the applications mode over 2,000 real desktop entries, read through GIO from a
// folder of their own: the same keystroke as the portable benchmark, over the Linux file manager.
#include <benchmark/benchmark.h>
#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

#include "LauncherKeystroke.h"
#include "launcher/InstalledApplicationLauncherMode.h"
#include "platform/simulated/SimulatedApplicationLauncher.h"
#include "platform/simulated/SimulatedRunLoop.h"
#include "platform/simulated/SimulatedSound.h"
#include "platform/x11/DesktopEntryCatalog.h"

namespace orvane {
namespace {

class EntryFolder {
  public:
    explicit EntryFolder(std::size_t count) {
        char pattern[] = "/tmp/orvane-entries-XXXXXX";
        path_ = ::mkdtemp(pattern);
        const auto names = applicationLikeNames(count);
        for (std::size_t index = 0; index < names.size(); ++index) {
            std::ofstream(path_ / ("bench-" + std::to_string(index) + ".desktop"))
                << "[Desktop Entry]\nType=Application\nName=" << names[index]
                << "\nExec=true\nIcon=bench-" << index % 50 << "\n";
        }
    }
    ~EntryFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    const std::filesystem::path& path() const { return path_; }

  private:
    std::filesystem::path path_;
};

std::shared_ptr<LauncherMode> desktopEntriesMode(const EntryFolder& folder,
                                                 std::shared_ptr<DesktopEntryCatalog>& catalog) {
    auto runLoop = std::make_shared<SimulatedRunLoop>();
    catalog = std::make_shared<DesktopEntryCatalog>(std::vector{folder.path().string()});
    catalog->prepare();
    auto mode = std::make_shared<InstalledApplicationLauncherMode>(
        catalog, std::make_shared<SimulatedApplicationLauncher>(runLoop),
        std::make_shared<SimulatedSound>(), runLoop, [runLoop] { return runLoop->now(); },
        catalog->folders());
    mode->items("");
    return mode;
}

void BM_LauncherKeystrokeDesktopEntries2000(benchmark::State& state, const char* typedBefore,
                                            const char* key) {
    const EntryFolder folder(2000);
    std::shared_ptr<DesktopEntryCatalog> catalog;
    runLauncherKeystroke(state, desktopEntriesMode(folder, catalog), true, typedBefore, key);
}

BENCHMARK_CAPTURE(BM_LauncherKeystrokeDesktopEntries2000, FirstKey, "", "t")
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(BM_LauncherKeystrokeDesktopEntries2000, ThirdKey, "te", "r")
    ->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace orvane

BENCHMARK_MAIN();
