#include "platform/wayland/WaylandScreens.h"

#include <algorithm>

namespace orvane {

WaylandScreens::WaylandScreens(WaylandConnection& connection, DesktopWindows& windows)
    : connection_(connection), windows_(windows) {}

std::vector<const WaylandConnection::Output*> WaylandScreens::described() const {
    std::vector<const WaylandConnection::Output*> result;
    for (const auto& output : connection_.outputs()) {
        if (output->width > 0 && output->height > 0) {
            result.push_back(output.get());
        }
    }
    return result;
}

double WaylandScreens::pivot() const {
    const auto all = described();
    return all.empty() ? 0.0 : static_cast<double>(all.front()->y + all.front()->height);
}

ScreenDescription WaylandScreens::describe(const WaylandConnection::Output& output) const {
    ScreenDescription description;
    description.frame = {{static_cast<double>(output.x), pivot() - output.y - output.height},
                         {static_cast<double>(output.width), static_cast<double>(output.height)}};
    description.visibleFrame = description.frame;
    description.backingScaleFactor = output.scale;
    return description;
}

std::vector<ScreenDescription> WaylandScreens::screens() const {
    std::vector<ScreenDescription> result;
    for (const auto* output : described()) {
        result.push_back(describe(*output));
    }
    return result;
}

const WaylandConnection::Output* WaylandScreens::outputAt(const Rect& frame) const {
    const WaylandConnection::Output* best = nullptr;
    double bestArea = -1;
    for (const auto* output : described()) {
        const double width =
            std::min(frame.maxX(), static_cast<double>(output->x + output->width)) -
            std::max(frame.minX(), static_cast<double>(output->x));
        const double height =
            std::min(frame.maxY(), static_cast<double>(output->y + output->height)) -
            std::max(frame.minY(), static_cast<double>(output->y));
        const double area = std::max(0.0, width) * std::max(0.0, height);
        if (area > bestArea) {
            best = output;
            bestArea = area;
        }
    }
    return best;
}

std::optional<ScreenDescription> WaylandScreens::mainScreen() const {
    const auto active = windows_.activeWindow();
    const auto* window = active ? windows_.window(*active) : nullptr;
    if (const auto* output =
            outputAt(window != nullptr && window->isFrameKnown ? window->frame : Rect{})) {
        return describe(*output);
    }
    return std::nullopt;
}

Point WaylandScreens::mouseLocation() const {
    const auto main = mainScreen();
    if (!main) {
        return {};
    }
    return {main->frame.origin.x + main->frame.size.width / 2,
            main->frame.origin.y + main->frame.size.height / 2};
}

Rect WaylandScreens::toCompositor(const Rect& frame) const {
    return {{frame.origin.x, pivot() - frame.origin.y - frame.size.height}, frame.size};
}

}  // namespace orvane
