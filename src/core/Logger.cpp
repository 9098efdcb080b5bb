#include "core/Logger.h"

#include <array>
#include <span>

#include "core/Log.h"
#include "core/LogMessageFormatter.h"

namespace orvane {

const Logger& Logger::forCategory(LogCategory category) {
    static const std::array<Logger, 12> loggers{
        Logger(LogCategory::lifecycle),
        Logger(LogCategory::windowenumeration),
        Logger(LogCategory::recencytracking),
        Logger(LogCategory::windowactivation),
        Logger(LogCategory::shortcutinterception),
        Logger(LogCategory::overlay),
        Logger(LogCategory::thumbnailcapture),
        Logger(LogCategory::launcher),
        Logger(LogCategory::permission),
        Logger(LogCategory::softwareupdates),
        Logger(LogCategory::diagnostics),
        Logger(LogCategory::preferences),
    };
    return loggers[static_cast<std::size_t>(category)];
}

void Logger::emit(LogLevel level, std::string_view format,
                  std::initializer_list<LogArgument> arguments) const {
    LogRecord record;
    record.category = category_;
    record.level = level;
    record.message = LogMessageFormatter::format(
        format, std::span<const LogArgument>(arguments.begin(), arguments.size()));
    Log::shared().write(record);
}

}  // namespace orvane
