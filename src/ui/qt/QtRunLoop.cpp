#include "ui/qt/QtRunLoop.h"

#include <QMetaObject>
#include <cmath>

namespace orvane {

QtRunLoop::QtRunLoop() : context_(std::make_unique<QObject>()) {}

QtRunLoop::~QtRunLoop() = default;

void QtRunLoop::post(std::function<void()> work) {
    QMetaObject::invokeMethod(context_.get(), std::move(work), Qt::QueuedConnection);
}

TimerToken QtRunLoop::scheduleTimer(double delay, bool repeats, double tolerance,
                                    std::function<void()> work) {
    const auto token = ++lastToken_;
    auto* timer = new QTimer(context_.get());
    timer->setSingleShot(!repeats);
    // A loose timer may be grouped with others, which saves wake-ups.
    timer->setTimerType(tolerance > 0 ? Qt::CoarseTimer : Qt::PreciseTimer);
    timer->setInterval(static_cast<int>(std::lround(std::max(delay, 0.0) * 1000)));
    QObject::connect(timer, &QTimer::timeout, context_.get(), [this, token, repeats, work] {
        if (!repeats) {
            cancelTimer(token);
        }
        work();
    });
    timers_.emplace(token, timer);
    timer->start();
    return token;
}

void QtRunLoop::cancelTimer(TimerToken token) {
    auto found = timers_.find(token);
    if (found == timers_.end()) {
        return;
    }
    found->second->stop();
    found->second->deleteLater();
    timers_.erase(found);
}

}  // namespace orvane
