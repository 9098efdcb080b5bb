// One rendered log line with where it belongs: subsystem, category and level.
#pragma once

#include <string>
#include <string_view>

namespace orvane {

enum class LogLevel { debug, info, error };

// The twelve categories of the program's log.
enum class LogCategory {
    lifecycle,
    windowenumeration,
    recencytracking,
    windowactivation,
    shortcutinterception,
    overlay,
    thumbnailcapture,
    launcher,
    permission,
    softwareupdates,
    diagnostics,
    preferences,
};

inline constexpr std::string_view logSubsystem = "brimcote.orvane";

std::string_view logCategoryName(LogCategory category);
std::string_view logLevelName(LogLevel level);

struct LogRecord {
    std::string_view subsystem = logSubsystem;
    LogCategory category = LogCategory::lifecycle;
    LogLevel level = LogLevel::info;
    std::string message;
};

}  // namespace orvane
