// Hands over what a log capture holds as one text, a line per record, checking that every record
// is of the expected category and level.
#pragma once

#include <gtest/gtest.h>

#include <string>

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

}  // namespace orvane
