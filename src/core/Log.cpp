#include "core/Log.h"

#include <utility>

#include "core/StandardErrorLogSink.h"

namespace orvane {

Log& Log::shared() {
    static Log log;
    return log;
}

Log::Log() {
    sinks_.push_back(std::make_shared<StandardErrorLogSink>());
}

void Log::write(const LogRecord& record) {
    std::lock_guard lock(mutex_);
    for (const auto& sink : sinks_) {
        sink->write(record);
    }
}

std::vector<std::shared_ptr<LogSink>> Log::replaceSinks(
    std::vector<std::shared_ptr<LogSink>> sinks) {
    std::lock_guard lock(mutex_);
    return std::exchange(sinks_, std::move(sinks));
}

}  // namespace orvane
