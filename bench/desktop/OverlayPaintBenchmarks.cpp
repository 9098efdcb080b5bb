// Building and painting the switcher with the Qt measurer and renderer, as the overlay does: 6 and
// 30 cards with 16-pixel icons scaled up, the selection on the second card; the whole panel, and a
// Tab's step. Runs on Qt's offscreen platform, so it needs no display.

#include <benchmark/benchmark.h>

#include <QGuiApplication>
#include <QImage>
#include <QPainter>

#include "overlay/OverlayGeometry.h"
#include "overlay/OverlayViewBuilder.h"
#include "ui/qt/QtOverlayRenderer.h"
#include "ui/qt/QtTextMeasurer.h"

namespace orvane {
namespace {

// The switcher at `windowCount` cards, as the desktop program builds and paints it.
struct Switcher {
    explicit Switcher(int windowCount)
        : geometry(overlayGeometry(windowCount, 1280, model.cardSize.value())),
          builder(
              [](ProcessIdentifier process, const std::string&) -> std::optional<ImageHandle> {
                  return ImageHandle{static_cast<std::uint64_t>(process), 16, 16, "icon"};
              },
              std::make_shared<QtTextMeasurer>()),
          renderer([this](const ImageHandle&) { return icon; }),
          target(static_cast<int>(geometry.panelWidth), static_cast<int>(geometry.panelHeight),
                 QImage::Format_RGB32) {
        std::vector<SwitchableWindow> windows;
        for (int number = 0; number < windowCount; ++number) {
            SwitchableWindow window;
            window.windowIdentifier = static_cast<WindowIdentifier>(1000 + number);
            window.owningProcessIdentifier = 500 + number;
            window.owningApplicationName = "Application";
            window.windowTitle = "Window " + std::to_string(number + 1) + " - a document title";
            windows.push_back(window);
        }
        model.columnCount.set(geometry.columnCount);
        model.windows.set(std::move(windows));
        model.selectedIndex.set(1);
        model.thumbnailsEnabled.set(false);
        icon.fill(QColor(200, 40, 40));
    }
    OverlayViewData build() const {
        return builder.build(model, {geometry.panelWidth, geometry.panelHeight});
    }

    SwitcherOverlayViewModel model;
    OverlayGeometry geometry;
    QImage icon{16, 16, QImage::Format_ARGB32};
    OverlayViewBuilder builder;
    QtOverlayRenderer renderer;
    QImage target;
};

void BM_BuildSwitcher(benchmark::State& state) {
    Switcher switcher(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        benchmark::DoNotOptimize(switcher.build());
    }
}
BENCHMARK(BM_BuildSwitcher)->Arg(6)->Arg(30)->Unit(benchmark::kMicrosecond);

void BM_PaintSwitcher(benchmark::State& state) {
    Switcher switcher(static_cast<int>(state.range(0)));
    const auto data = switcher.build();
    for (auto _ : state) {
        QPainter painter(&switcher.target);
        switcher.renderer.paint(painter, data, true);
    }
}
BENCHMARK(BM_PaintSwitcher)->Arg(6)->Arg(30)->Unit(benchmark::kMicrosecond);

// What a Tab costs the program: the build with the selection one card on, the difference, and the
// paint of only that.
void BM_SelectionStep(benchmark::State& state) {
    Switcher switcher(static_cast<int>(state.range(0)));
    auto before = switcher.build();
    {
        QPainter painter(&switcher.target);
        switcher.renderer.paint(painter, before, true);
    }
    std::ptrdiff_t selected = 1;
    for (auto _ : state) {
        selected = selected % 4 + 1;
        switcher.model.selectedIndex.set(selected);
        auto after = switcher.build();
        const auto changed = QtOverlayRenderer::changedRegion(before, after);
        QPainter painter(&switcher.target);
        painter.setClipRegion(changed);
        switcher.renderer.paint(painter, after, true, &changed);
        before = std::move(after);
    }
}
BENCHMARK(BM_SelectionStep)->Arg(6)->Arg(30)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace orvane

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
