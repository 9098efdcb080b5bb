#include <benchmark/benchmark.h>

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "overlay/FixedAdvanceOverlayTextMeasurer.h"
#include "overlay/OverlayGeometry.h"
#include "overlay/OverlayViewBuilder.h"

namespace orvane {
namespace {

// One redraw of a full switcher: 50 cards on a 1440 wide screen, every third window minimized,
// half of them with a thumbnail, and one application that has quit.
void BM_OverlayViewDataForFiftyCards(benchmark::State& state) {
    constexpr int windowCount = 50;
    SwitcherOverlayViewModel model;
    std::vector<SwitchableWindow> windows;
    std::map<WindowIdentifier, ImageHandle> thumbnails;
    for (int number = 0; number < windowCount; ++number) {
        SwitchableWindow window;
        window.windowIdentifier = static_cast<WindowIdentifier>(1000 + number);
        window.owningProcessIdentifier = 500 + number % 10;
        window.owningApplicationName = "Application " + std::to_string(number % 10);
        window.windowTitle = number % 7 == 0 ? "" : "Document number " + std::to_string(number);
        window.isMinimized = number % 3 == 0;
        windows.push_back(window);
        if (number % 2 == 0) {
            thumbnails[window.windowIdentifier] = {static_cast<std::uint64_t>(number), 1600, 1000,
                                                   "thumbnail"};
        }
    }
    const auto geometry = overlayGeometry(windowCount, 1440, model.cardSize.value());
    model.columnCount.set(geometry.columnCount);
    model.windows.set(std::move(windows));
    model.thumbnailsByWindowIdentifier.set(std::move(thumbnails));
    model.selectedIndex.set(1);

    const ImageHandle icon{1, 128, 128, "icon"};
    const OverlayViewBuilder builder(
        [&icon](ProcessIdentifier process, const std::string&) -> std::optional<ImageHandle> {
            if (process == 509) {
                return std::nullopt;
            }
            return icon;
        },
        std::make_shared<FixedAdvanceOverlayTextMeasurer>());
    for (auto _ : state) {
        auto data = builder.build(model, {geometry.panelWidth, geometry.panelHeight});
        benchmark::DoNotOptimize(data.elements.data());
    }
}
BENCHMARK(BM_OverlayViewDataForFiftyCards)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace orvane
