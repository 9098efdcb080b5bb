#include "platform/x11/X11ScreenCapture.h"

namespace orvane {

void X11ScreenCapture::getShareableContent(bool excludingDesktopWindows, bool onScreenWindowsOnly,
                                           ShareableContentCompletion completion) {
    model_.refreshGeometry();
    ShareableContent content;
    for (auto identifier : model_.stackingFrontToBack()) {
        const auto* window = model_.window(identifier);
        if (window == nullptr ||
            (excludingDesktopWindows && window->kind == X11WindowModel::Kind::desktop) ||
            (onScreenWindowsOnly && window->isHidden)) {
            continue;
        }
        content.windows.push_back({static_cast<WindowIdentifier>(window->window), window->frame});
    }
    runLoop_->post([completion = std::move(completion), content] { completion(content); });
}

void X11ScreenCapture::captureImage(const ContentFilter&, const StreamConfiguration&,
                                    ImageCompletion completion) {
    runLoop_->post([completion = std::move(completion)] { completion(std::nullopt); });
}

std::optional<double> X11ScreenCapture::mainScreenBackingScaleFactor() const {
    return screens_.scaleFactor();
}

}  // namespace orvane
