// An element of the desktop as the Accessibility port hands it out: an application (a process) or
// one of its client windows. Equal elements name the same thing.
#pragma once

#include "core/Identifiers.h"
#include "platform/AccessibilityElementObject.h"
#include "platform/linux/DesktopWindows.h"

namespace orvane {

class LinuxAccessibilityElement final : public AccessibilityElementObject {
  public:
    // A window of 0 is the application element.
    LinuxAccessibilityElement(ProcessIdentifier process, DesktopWindows::Handle window)
        : process_(process), window_(window) {}

    bool isEqualTo(const AccessibilityElementObject& other) const override {
        const auto* element = dynamic_cast<const LinuxAccessibilityElement*>(&other);
        return element != nullptr && element->process_ == process_ && element->window_ == window_;
    }
    std::size_t hashValue() const override {
        return (static_cast<std::size_t>(static_cast<std::uint32_t>(process_)) << 32) ^ window_;
    }

    ProcessIdentifier process() const { return process_; }
    DesktopWindows::Handle window() const { return window_; }
    bool isApplication() const { return window_ == 0; }

  private:
    ProcessIdentifier process_;
    DesktopWindows::Handle window_;
};

}  // namespace orvane
