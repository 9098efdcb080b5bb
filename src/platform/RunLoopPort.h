// The main run loop: work posted to it, timers on it, and the sources that feed it. Everything the
// logic schedules runs here, on the main thread.
#pragma once

#include <cstdint>
#include <functional>

namespace orvane {

using TimerToken = std::uint64_t;
// A source of events on the run loop, such as an Accessibility observer's.
using RunLoopSourceHandle = std::uint64_t;

enum class RunLoopMode { defaultMode, commonModes };

class RunLoopPort {
  public:
    virtual ~RunLoopPort() = default;

    // Runs `work` on the main run loop soon, after what is already waiting.
    virtual void post(std::function<void()> work) = 0;
    // Runs `work` once after `delay` seconds, or every `delay` seconds when repeating, give or take
    // `tolerance`. The token cancels it.
    virtual TimerToken scheduleTimer(double delay, bool repeats, double tolerance,
                                     std::function<void()> work) = 0;
    // No effect for a timer that has fired (when not repeating) or was cancelled.
    virtual void cancelTimer(TimerToken token) = 0;

    virtual void addSource(RunLoopSourceHandle source, RunLoopMode mode) = 0;
    virtual void removeSource(RunLoopSourceHandle source, RunLoopMode mode) = 0;
};

}  // namespace orvane
