#include "platform/simulated/SimulatedEventTap.h"

#include <vector>

#include "platform/simulated/SimulatedDesktop.h"
#include "platform/simulated/SimulatedKeyboardEvent.h"

namespace orvane {

std::optional<EventTapHandle> SimulatedEventTap::createTap(std::uint32_t, std::uint32_t,
                                                           std::uint32_t, std::uint64_t,
                                                           Callback callback) {
    if (!desktop_.isAccessibilityTrusted() || !callback) {
        return std::nullopt;
    }
    const auto handle = ++lastHandle_;
    taps_.emplace(handle, Tap{std::move(callback), false, std::nullopt});
    return handle;
}

std::optional<RunLoopSourceHandle> SimulatedEventTap::createRunLoopSource(EventTapHandle tap) {
    auto found = taps_.find(tap);
    if (found == taps_.end() || runLoopSourceCreationFails) {
        return std::nullopt;
    }
    found->second.source = desktop_.runLoop().makeSourceHandle();
    return found->second.source;
}

void SimulatedEventTap::enableTap(EventTapHandle tap, bool enabled) {
    if (auto found = taps_.find(tap); found != taps_.end()) {
        found->second.isEnabled = enabled;
    }
}

bool SimulatedEventTap::isTapEnabled(EventTapHandle tap) const {
    auto found = taps_.find(tap);
    return found != taps_.end() && found->second.isEnabled;
}

void SimulatedEventTap::invalidate(EventTapHandle tap) {
    taps_.erase(tap);
}

KeyboardEventFlags SimulatedEventTap::flagsState(std::int32_t) const {
    return desktop_.heldModifierFlags();
}

bool SimulatedEventTap::deliver(KeyboardEventType type, const KeyboardEvent& event) {
    if (!desktop_.isAccessibilityTrusted()) {
        return false;
    }
    // A callback may remove taps, so the receivers are fixed first.
    std::vector<EventTapHandle> receivers;
    for (const auto& [handle, tap] : taps_) {
        if (tap.isEnabled && tap.source && desktop_.runLoop().isSourceScheduled(*tap.source)) {
            receivers.push_back(handle);
        }
    }
    for (auto handle : receivers) {
        auto found = taps_.find(handle);
        if (found == taps_.end()) {
            continue;
        }
        auto callback = found->second.callback;
        if (callback(type, event)) {
            return true;
        }
    }
    return false;
}

void SimulatedEventTap::disableTaps(KeyboardEventType type, double noticeDelay) {
    std::vector<EventTapHandle> disabled;
    for (auto& [handle, tap] : taps_) {
        if (tap.isEnabled) {
            tap.isEnabled = false;
            disabled.push_back(handle);
        }
    }
    auto notify = [this, type, disabled] {
        const SimulatedKeyboardEvent notice;
        for (auto handle : disabled) {
            // A tap removed in the meantime hears nothing.
            auto found = taps_.find(handle);
            if (found != taps_.end()) {
                auto callback = found->second.callback;
                callback(type, notice);
            }
        }
    };
    if (noticeDelay <= 0) {
        notify();
        return;
    }
    desktop_.runLoop().scheduleTimer(noticeDelay, false, 0, std::move(notify));
}

}  // namespace orvane
