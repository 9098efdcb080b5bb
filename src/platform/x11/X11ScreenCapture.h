// Window listing for previews over the window model. Taking window contents needs the Composite
// extension's named pixmaps, which this backend does not read yet: until it does, access is not
// granted and every capture answers nothing.
#pragma once

#include <memory>

#include "platform/RunLoopPort.h"
#include "platform/ScreenCapturePort.h"
#include "platform/x11/X11Screens.h"
#include "platform/x11/X11WindowModel.h"

namespace orvane {

class X11ScreenCapture final : public ScreenCapturePort {
  public:
    X11ScreenCapture(X11WindowModel& model, X11Screens& screens,
                     std::shared_ptr<RunLoopPort> runLoop)
        : model_(model), screens_(screens), runLoop_(std::move(runLoop)) {}

    bool preflightScreenCaptureAccess() const override { return false; }
    void getShareableContent(bool excludingDesktopWindows, bool onScreenWindowsOnly,
                             ShareableContentCompletion completion) override;
    void captureImage(const ContentFilter& filter, const StreamConfiguration& configuration,
                      ImageCompletion completion) override;
    std::optional<double> mainScreenBackingScaleFactor() const override;

  private:
    X11WindowModel& model_;
    X11Screens& screens_;
    std::shared_ptr<RunLoopPort> runLoop_;
};

}  // namespace orvane
