// Reads what a log capture holds: as one text, a line per record, checking that every record is of
// the expected category and level; or as "level: message" lines of one category.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "core/ScopedLogCapture.h"

namespace orvane {

inline std::string takeLog(ScopedLogCapture& capture, LogCategory category, LogLevel level) {
    std::string log;
    for (const auto& record : capture.sink().takeRecords()) {
        EXPECT_EQ(record.category, category) << record.message;
        EXPECT_EQ(record.level, level) << record.message;
        log += record.message + "\n";
    }
    return log;
}

inline std::vector<std::string> levelLines(const CapturingLogSink& sink, LogCategory category) {
    std::vector<std::string> lines;
    for (const auto& record : sink.records()) {
        if (record.category == category) {
            lines.push_back(std::string(logLevelName(record.level)) + ": " + record.message);
        }
    }
    return lines;
}

}  // namespace orvane
