#include "TranscriptLogSink.h"

#include <string>

namespace orvane::simulator {

void TranscriptLogSink::write(const LogRecord& record) {
    if (muted_ || record.level < minimumLevel_) {
        return;
    }
    std::string subject = "log ";
    subject += logLevelName(record.level);
    subject += ' ';
    subject += logCategoryName(record.category);
    transcript_.effect(subject, record.message);
}

}  // namespace orvane::simulator
