#include "platform/simulated/SimulatedRunLoop.h"

#include <algorithm>
#include <limits>

namespace orvane {

namespace {

// A repeating timer fires at most this often, so that a zero interval cannot stall the clock.
constexpr double minimumRepeatInterval = 0.001;

}  // namespace

SimulatedRunLoop::SimulatedRunLoop(Date start) : now_(start) {}

void SimulatedRunLoop::post(std::function<void()> work) {
    posted_.push_back(std::move(work));
}

TimerToken SimulatedRunLoop::scheduleTimer(double delay, bool repeats, double tolerance,
                                           std::function<void()> work) {
    delay = std::max(delay, 0.0);
    const TimerToken token = ++lastTimerToken_;
    timers_.emplace(token, Timer{now_.secondsSinceReferenceDate + delay,
                                 std::max(delay, minimumRepeatInterval), repeats, std::move(work)});
    scheduledTimerHistory_.emplace_back(delay, tolerance);
    return token;
}

void SimulatedRunLoop::cancelTimer(TimerToken token) {
    timers_.erase(token);
}

void SimulatedRunLoop::addSource(RunLoopSourceHandle source, RunLoopMode mode) {
    sources_.emplace(source, mode);
}

void SimulatedRunLoop::removeSource(RunLoopSourceHandle source, RunLoopMode mode) {
    auto found = sources_.find({source, mode});
    if (found != sources_.end()) {
        sources_.erase(found);
    }
}

bool SimulatedRunLoop::isSourceScheduled(RunLoopSourceHandle source) const {
    return sources_.contains({source, RunLoopMode::defaultMode}) ||
           sources_.contains({source, RunLoopMode::commonModes});
}

bool SimulatedRunLoop::runOnePostedWork() {
    if (posted_.empty()) {
        return false;
    }
    auto work = std::move(posted_.front());
    posted_.pop_front();
    work();
    return true;
}

bool SimulatedRunLoop::fireOneDueTimer(double limit) {
    // The earliest due timer; among equal moments the one scheduled first.
    auto due = timers_.end();
    for (auto entry = timers_.begin(); entry != timers_.end(); ++entry) {
        if (entry->second.fireAt <= limit &&
            (due == timers_.end() || entry->second.fireAt < due->second.fireAt)) {
            due = entry;
        }
    }
    if (due == timers_.end()) {
        return false;
    }
    now_.secondsSinceReferenceDate = std::max(now_.secondsSinceReferenceDate, due->second.fireAt);
    auto work = due->second.work;
    if (due->second.repeats) {
        due->second.fireAt += due->second.interval;
    } else {
        timers_.erase(due);
    }
    // The timer's work may cancel or schedule timers, so it runs on a copy.
    work();
    return true;
}

void SimulatedRunLoop::runUntilIdle() {
    while (runOnePostedWork() || fireOneDueTimer(now_.secondsSinceReferenceDate)) {
    }
}

void SimulatedRunLoop::advance(double seconds) {
    const double target = now_.secondsSinceReferenceDate + std::max(seconds, 0.0);
    runUntilIdle();
    while (fireOneDueTimer(target)) {
        runUntilIdle();
    }
    now_.secondsSinceReferenceDate = std::max(now_.secondsSinceReferenceDate, target);
    runUntilIdle();
}

void SimulatedRunLoop::spendTime(double seconds) {
    now_.secondsSinceReferenceDate += std::max(seconds, 0.0);
}

}  // namespace orvane
