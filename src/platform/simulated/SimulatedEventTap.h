// The keyboard event taps of the simulated desktop: created only with the Accessibility
// permission, fed every key event before any application, and disabled by the system on demand.
#pragma once

#include <map>
#include <optional>

#include "platform/EventTapPort.h"

namespace orvane {

class SimulatedDesktop;

class SimulatedEventTap final : public EventTapPort {
  public:
    explicit SimulatedEventTap(SimulatedDesktop& desktop) : desktop_(desktop) {}

    std::optional<EventTapHandle> createTap(std::uint32_t location, std::uint32_t placement,
                                            std::uint32_t options, std::uint64_t eventMask,
                                            Callback callback) override;
    std::optional<RunLoopSourceHandle> createRunLoopSource(EventTapHandle tap) override;
    void enableTap(EventTapHandle tap, bool enabled) override;
    bool isTapEnabled(EventTapHandle tap) const override;
    void invalidate(EventTapHandle tap) override;
    KeyboardEventFlags flagsState(std::int32_t stateIdentifier) const override;

    // Offers the event to every live, enabled tap on the run loop; true when one swallowed it.
    bool deliver(KeyboardEventType type, const KeyboardEvent& event);
    // The system disables every enabled tap and tells each with the pseudo-event of `type`, at
    // once or, with a delay, after that many seconds of run-loop time: the keys in between pass
    // the tap by.
    void disableTaps(KeyboardEventType type, double noticeDelay = 0);

    std::size_t liveTapCount() const { return taps_.size(); }

    // Fault knob: the run-loop source of a tap cannot be created.
    bool runLoopSourceCreationFails = false;

  private:
    struct Tap {
        Callback callback;
        bool isEnabled = false;
        std::optional<RunLoopSourceHandle> source;
    };

    SimulatedDesktop& desktop_;
    std::map<EventTapHandle, Tap> taps_;
    EventTapHandle lastHandle_ = 0;
};

}  // namespace orvane
