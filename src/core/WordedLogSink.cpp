#include "core/WordedLogSink.h"

#include <utility>

namespace orvane {

WordedLogSink::WordedLogSink(std::shared_ptr<LogSink> destination, Wording wording)
    : destination_(std::move(destination)), wording_(std::move(wording)) {}

void WordedLogSink::write(const LogRecord& record) {
    LogRecord worded = record;
    worded.message = wording_.apply(record.message);
    if (wording_.isExpectedAbsence(worded.message)) {
        worded.level = LogLevel::debug;
    }
    destination_->write(worded);
}

}  // namespace orvane
