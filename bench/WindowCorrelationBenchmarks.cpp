#include <benchmark/benchmark.h>

#include <string>
#include <vector>

#include "enumeration/WindowCorrelation.h"

namespace orvane {
namespace {

constexpr ProcessIdentifier currentProcess = 1;
constexpr int processCount = 50;
constexpr int windowsPerProcess = 10;

struct Workload {
    std::vector<CoreGraphicsWindowListEntry> entries;
    WindowCorrelation<int>::SnapshotsByProcessIdentifier snapshots;
};

// A busy desktop: most windows pair by frame, every seventh is being dragged so pairs by title,
// a few sit on other layers or lack an Accessibility window, and some processes put an accent in
// titles the two views encode differently.
Workload busyDesktop() {
    Workload workload;
    for (int process = 0; process < processCount; ++process) {
        const ProcessIdentifier pid = 1000 + process;
        auto& snapshots = workload.snapshots[pid];
        for (int window = 0; window < windowsPerProcess; ++window) {
            const int serial = process * windowsPerProcess + window;
            const std::string stem =
                "Document " + std::to_string(window) + " — Project " + std::to_string(process);
            const bool accented = process % 5 == 0;
            const Rect frame{{40.0 + 13 * window, 60.0 + 11 * window}, {900, 700}};
            Rect bounds = frame;
            if (serial % 7 == 3) {
                bounds.origin.x += 150;
            } else {
                bounds.origin.y += 1.5;
            }
            CoreGraphicsWindowListEntry entry{
                .windowIdentifier = static_cast<WindowIdentifier>(10000 + serial),
                .owningProcessIdentifier = pid,
                .owningApplicationName = "Application " + std::to_string(process),
                .windowTitle = accented ? stem + " Caf\u00E9" : stem,
                .bounds = bounds,
            };
            if (serial % 50 == 7) {
                entry.windowLayer = 3;
            }
            workload.entries.push_back(std::move(entry));
            if (serial % 100 == 99) {
                continue;
            }
            snapshots.push_back({.elementHandle = serial,
                                 .windowTitle = accented ? stem + " Cafe\u0301" : stem,
                                 .frame = frame,
                                 .subrole = "AXStandardWindow",
                                 .isMinimized = false});
        }
    }
    return workload;
}

void BM_WindowCorrelation_CorrelateBusyDesktop(benchmark::State& state) {
    const Workload workload = busyDesktop();
    const WindowCorrelation<int> correlation(currentProcess);
    for (auto _ : state) {
        auto result = correlation.correlate(workload.entries, workload.snapshots);
        benchmark::DoNotOptimize(result);
    }
    const auto result = correlation.correlate(workload.entries, workload.snapshots);
    state.counters["correlated"] = static_cast<double>(result.correlatedWindows.size());
    state.counters["excluded"] = static_cast<double>(result.excludedEntries.size());
}
BENCHMARK(BM_WindowCorrelation_CorrelateBusyDesktop)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace orvane
