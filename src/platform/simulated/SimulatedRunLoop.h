// The simulated desktop's main run loop with virtual time: posted work, timers and sources, and a
// clock that moves only when the run loop is told to advance (or a blocking call spends time).
#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <set>
#include <utility>
#include <vector>

#include "platform/ClockPort.h"
#include "platform/RunLoopPort.h"

namespace orvane {

class SimulatedRunLoop final : public RunLoopPort, public ClockPort {
  public:
    // 2026-11-01 00:00 UTC, in seconds since the reference date.
    static constexpr double defaultStartTime = 815184000.0;

    explicit SimulatedRunLoop(Date start = Date{defaultStartTime});

    void post(std::function<void()> work) override;
    TimerToken scheduleTimer(double delay, bool repeats, double tolerance,
                             std::function<void()> work) override;
    void cancelTimer(TimerToken token) override;
    void addSource(RunLoopSourceHandle source, RunLoopMode mode) override;
    void removeSource(RunLoopSourceHandle source, RunLoopMode mode) override;

    Date now() const override { return now_; }

    // Whether a source is on the run loop in the default mode (the common modes include it).
    bool isSourceScheduled(RunLoopSourceHandle source) const;
    // A fresh handle for a source of the simulated platform.
    RunLoopSourceHandle makeSourceHandle() { return ++lastSourceHandle_; }

    // Runs posted work and due timers until nothing is left at the present moment.
    void runUntilIdle();
    // Moves the clock forward by `seconds`, firing timers at their moments on the way.
    void advance(double seconds);
    // Moves the clock without running anything: time spent inside a blocking call.
    void spendTime(double seconds);

    std::size_t scheduledTimerCount() const { return timers_.size(); }
    // The delays of the timers scheduled so far, in scheduling order, with their tolerances.
    const std::vector<std::pair<double, double>>& scheduledTimerHistory() const {
        return scheduledTimerHistory_;
    }

  private:
    struct Timer {
        double fireAt = 0;
        double interval = 0;
        bool repeats = false;
        std::function<void()> work;
    };

    bool runOnePostedWork();
    bool fireOneDueTimer(double limit);

    Date now_;
    std::deque<std::function<void()>> posted_;
    std::map<TimerToken, Timer> timers_;
    TimerToken lastTimerToken_ = 0;
    std::multiset<std::pair<RunLoopSourceHandle, RunLoopMode>> sources_;
    RunLoopSourceHandle lastSourceHandle_ = 0;
    std::vector<std::pair<double, double>> scheduledTimerHistory_;
};

}  // namespace orvane
