// The main run loop over Qt's event loop: posted work as queued calls, timers as Qt timers. Run
// loop sources need nothing here: every source of this desktop is a descriptor the loop watches.
#pragma once

#include <QObject>
#include <QTimer>
#include <map>
#include <memory>

#include "platform/RunLoopPort.h"

namespace orvane {

class QtRunLoop final : public RunLoopPort {
  public:
    QtRunLoop();
    ~QtRunLoop() override;

    void post(std::function<void()> work) override;
    TimerToken scheduleTimer(double delay, bool repeats, double tolerance,
                             std::function<void()> work) override;
    void cancelTimer(TimerToken token) override;
    void addSource(RunLoopSourceHandle, RunLoopMode) override {}
    void removeSource(RunLoopSourceHandle, RunLoopMode) override {}

  private:
    // Parent of every timer and the receiver of posted work; gone with the run loop.
    std::unique_ptr<QObject> context_;
    std::map<TimerToken, QTimer*> timers_;
    TimerToken lastToken_ = 0;
};

}  // namespace orvane
