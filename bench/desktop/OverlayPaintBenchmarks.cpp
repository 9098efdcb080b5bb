// Painting the switcher with the Qt renderer into an image, as the overlay's paint does: 6 and 30
// cards with 16-pixel icons scaled up, the selection on the second card. Runs on Qt's offscreen
// platform, so it needs no display.

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

void BM_PaintSwitcher(benchmark::State& state) {
    const int windowCount = static_cast<int>(state.range(0));
    SwitcherOverlayViewModel model;
    std::vector<SwitchableWindow> windows;
    for (int number = 0; number < windowCount; ++number) {
        SwitchableWindow window;
        window.windowIdentifier = static_cast<WindowIdentifier>(1000 + number);
        window.owningProcessIdentifier = 500 + number;
        window.owningApplicationName = "Application";
        window.windowTitle = "Window " + std::to_string(number + 1);
        windows.push_back(window);
    }
    const auto geometry = overlayGeometry(windowCount, 1280, model.cardSize.value());
    model.columnCount.set(geometry.columnCount);
    model.windows.set(std::move(windows));
    model.selectedIndex.set(1);
    model.thumbnailsEnabled.set(false);

    QImage icon(16, 16, QImage::Format_ARGB32);
    icon.fill(QColor(200, 40, 40));
    const OverlayViewBuilder builder(
        [](ProcessIdentifier process, const std::string&) -> std::optional<ImageHandle> {
            return ImageHandle{static_cast<std::uint64_t>(process), 16, 16, "icon"};
        },
        std::make_shared<QtTextMeasurer>());
    const QtOverlayRenderer renderer([&icon](const ImageHandle&) { return icon; });
    const auto data = builder.build(model, {geometry.panelWidth, geometry.panelHeight});
    QImage target(static_cast<int>(geometry.panelWidth), static_cast<int>(geometry.panelHeight),
                  QImage::Format_RGB32);
    for (auto _ : state) {
        QPainter painter(&target);
        renderer.paint(painter, data, true);
    }
}
BENCHMARK(BM_PaintSwitcher)->Arg(6)->Arg(30)->Unit(benchmark::kMicrosecond);

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
