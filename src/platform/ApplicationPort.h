// The application object and its windows: the activation policy, activation, the windows it owns,
// and the operations on a window that the program opens itself. Window closings are posted to the
// application's notification centre as `windowWillCloseNotification` with the window as object.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/HostedView.h"
#include "platform/ImageHandle.h"
#include "platform/RunningApplication.h"

namespace orvane {

using PlatformWindowHandle = std::uint64_t;

namespace window_style_mask {
inline constexpr std::uint64_t titled = 1;
inline constexpr std::uint64_t closable = 2;
inline constexpr std::uint64_t miniaturizable = 4;
inline constexpr std::uint64_t resizable = 8;
}  // namespace window_style_mask

inline constexpr const char* windowWillCloseNotification = "NSWindowWillCloseNotification";
inline constexpr const char* applicationDidBecomeActiveNotification =
    "NSApplicationDidBecomeActiveNotification";

class ApplicationPort {
  public:
    virtual ~ApplicationPort() = default;

    // Every window of the application, panels and invisible ones included.
    virtual std::vector<PlatformWindowHandle> windows() const = 0;
    virtual void setActivationPolicy(ApplicationActivationPolicy policy) = 0;
    virtual void activate() = 0;
    // Sends the show-settings action; answers whether a responder handled it.
    virtual bool showSettingsWindow() = 0;
    // The standard About panel, with `applicationIcon` as its image when given.
    virtual void orderFrontStandardAboutPanel(std::optional<ImageHandle> applicationIcon) = 0;
    // One of the program's own images by name; nothing when it has none of that name.
    virtual std::optional<ImageHandle> imageNamed(const std::string& name) const = 0;
    // Asks the application to quit; the program's termination follows on a later turn.
    virtual void terminate() = 0;

    // A new, not yet visible window hosting `content`.
    virtual PlatformWindowHandle makeWindow(std::shared_ptr<HostedView> content) = 0;
    virtual void setTitle(PlatformWindowHandle window, const std::string& title) = 0;
    virtual void setStyleMask(PlatformWindowHandle window, std::uint64_t styleMask) = 0;
    virtual void setReleasedWhenClosed(PlatformWindowHandle window, bool released) = 0;
    virtual void center(PlatformWindowHandle window) = 0;
    virtual void makeKeyAndOrderFront(PlatformWindowHandle window) = 0;
    // Posts the will-close notification, then hides the window. Closing twice does nothing.
    virtual void close(PlatformWindowHandle window) = 0;
    virtual bool isVisible(PlatformWindowHandle window) const = 0;
    virtual std::uint64_t styleMask(PlatformWindowHandle window) const = 0;
    virtual bool isPanel(PlatformWindowHandle window) const = 0;
};

}  // namespace orvane
