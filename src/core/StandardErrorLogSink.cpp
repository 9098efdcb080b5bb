#include "core/StandardErrorLogSink.h"

#include <cstdio>

namespace orvane {

StandardErrorLogSink::StandardErrorLogSink(LogLevel minimumLevel) : minimumLevel_(minimumLevel) {}

void StandardErrorLogSink::write(const LogRecord& record) {
    if (record.level < minimumLevel_) {
        return;
    }
    auto subsystem = record.subsystem;
    auto category = logCategoryName(record.category);
    auto level = logLevelName(record.level);
    std::fprintf(stderr, "[%.*s:%.*s] %.*s: %s\n", static_cast<int>(subsystem.size()),
                 subsystem.data(), static_cast<int>(category.size()), category.data(),
                 static_cast<int>(level.size()), level.data(), record.message.c_str());
}

}  // namespace orvane
