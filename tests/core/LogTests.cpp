#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "core/LogMessageFormatter.h"
#include "core/Logger.h"
#include "core/ScopedLogCapture.h"

namespace orvane {
namespace {

using ::testing::ElementsAre;

struct FormatCase {
    const char* format;
    std::vector<LogArgument> arguments;
    const char* expected;
};

TEST(LogMessageFormatter, RendersThePlatformNotation) {
    const FormatCase cases[] = {
        {"app %{public}s pid %{public}d", {"Mail", std::int32_t{-12}}, "app Mail pid -12"},
        {"offset %{public}ld", {std::int64_t{-5000000000}}, "offset -5000000000"},
        {"granted %{bool}d denied %{bool}d", {true, false}, "granted true denied false"},
        {"count %{bool}d", {3}, "count true"},
        // The platform's printf narrows to the conversion's width.
        {"byte %{public}hhu", {300}, "byte 44"},
        {"short %hd", {70000}, "short 4464"},
        {"wrapped %d", {4294967294u}, "wrapped -2"},
        {"plain %u %d %ld %s",
         {7u, -7, std::int64_t{1} << 40, "text"},
         "plain 7 -7 1099511627776 text"},
        {"100%% of %d", {3}, "100% of 3"},
        {"%s and %s", {"one"}, "one and <missing>"},
        {"%d then %{public}s", {}, "<missing> then <missing>"},
        {"odd %q then %d", {5}, "odd %q then 5"},
        {"open %{public", {1}, "open %{public"},
        {"tail %", {}, "tail %"},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(each.format);
        EXPECT_EQ(LogMessageFormatter::format(each.format, each.arguments), each.expected);
    }
}

TEST(Logger, WritesOneRecordWithSubsystemCategoryAndLevel) {
    ScopedLogCapture capture;
    Logger::forCategory(LogCategory::shortcutinterception).error("type %{public}u", 4294967294u);
    Logger::forCategory(LogCategory::permission).debug("trusted %{bool}d", false);
    Logger::forCategory(LogCategory::overlay).info("cards %{public}ld", std::ptrdiff_t{3});

    std::vector<std::string> written;
    for (const auto& record : capture.sink().records()) {
        written.push_back(std::string(record.subsystem) + " " +
                          std::string(logCategoryName(record.category)) + " " +
                          std::string(logLevelName(record.level)) + ": " + record.message);
    }
    EXPECT_THAT(written, ElementsAre("brimcote.orvane shortcutinterception error: type 4294967294",
                                     "brimcote.orvane permission debug: trusted false",
                                     "brimcote.orvane overlay info: cards 3"));
}

TEST(Logger, EachCategoryHasOneSharedLoggerOfThatCategory) {
    for (int index = 0; index <= static_cast<int>(LogCategory::preferences); ++index) {
        const auto category = static_cast<LogCategory>(index);
        SCOPED_TRACE(std::string(logCategoryName(category)));
        EXPECT_EQ(&Logger::forCategory(category), &Logger::forCategory(category));
        EXPECT_EQ(Logger::forCategory(category).category(), category);
    }
}

TEST(ScopedLogCapture, NestedCaptureHandsTheLogBackWhenItEnds) {
    ScopedLogCapture outer;
    const auto& log = Logger::forCategory(LogCategory::lifecycle);
    log.info("before");
    {
        ScopedLogCapture inner;
        log.info("during");
        EXPECT_THAT(inner.sink().messages(), ElementsAre("during"));
    }
    log.info("after");
    EXPECT_THAT(outer.sink().messages(), ElementsAre("before", "after"));
}

}  // namespace
}  // namespace orvane
