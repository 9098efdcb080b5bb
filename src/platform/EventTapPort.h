// The system-wide keyboard event tap: created over the keyboard events of the whole desktop, it
// sees each key-down, key-up and modifier change before any application and may swallow it.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>

#include "platform/KeyboardEvent.h"
#include "platform/RunLoopPort.h"

namespace orvane {

using EventTapHandle = std::uint64_t;

namespace event_tap {
// Where and how the tap is created: at the device level, first in line, able to swallow.
inline constexpr std::uint32_t hidEventTapLocation = 0;
inline constexpr std::uint32_t headInsertPlacement = 0;
inline constexpr std::uint32_t defaultOptions = 0;
// Key down, key up and flags changed.
inline constexpr std::uint64_t keyboardEventMask = 0x1C00;
// The combined state of all event sources, for the modifier keys held right now.
inline constexpr std::int32_t combinedSessionState = 0;
}  // namespace event_tap

class EventTapPort {
  public:
    // Answers true to swallow the event, false to let it pass on unchanged.
    using Callback = std::function<bool(KeyboardEventType type, const KeyboardEvent& event)>;

    virtual ~EventTapPort() = default;

    // Nothing when the tap can't be created (the Accessibility permission is missing).
    virtual std::optional<EventTapHandle> createTap(std::uint32_t location, std::uint32_t placement,
                                                    std::uint32_t options, std::uint64_t eventMask,
                                                    Callback callback) = 0;
    // Nothing when it can't be created.
    virtual std::optional<RunLoopSourceHandle> createRunLoopSource(EventTapHandle tap) = 0;
    virtual void enableTap(EventTapHandle tap, bool enabled) = 0;
    virtual bool isTapEnabled(EventTapHandle tap) const = 0;
    // The tap sees nothing more and is released.
    virtual void invalidate(EventTapHandle tap) = 0;
    // The modifier flags held right now, whatever the tap has seen.
    virtual KeyboardEventFlags flagsState(std::int32_t stateIdentifier) const = 0;
};

}  // namespace orvane
