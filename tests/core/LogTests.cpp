#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
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
        // A number that no integer holds reads as printf's %g reads it, whatever the conversion.
        {"ratio %d %u %x",
         {std::numeric_limits<double>::quiet_NaN(), 1e300,
          -std::numeric_limits<double>::infinity()},
         "ratio nan 1e+300 -inf"},
        {"fits %d %ld", {-2.75, 9.2e18}, "fits -2 9200000000000000000"},
        {"edge %ld", {9223372036854775808.0}, "edge 9.22337e+18"},
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

TEST(Logger, TwelveCategoriesEachWithItsNameAndItsOwnLogger) {
    std::vector<std::string> names;
    for (int index = 0; index <= static_cast<int>(LogCategory::preferences); ++index) {
        const auto category = static_cast<LogCategory>(index);
        names.emplace_back(logCategoryName(category));
        EXPECT_EQ(Logger::forCategory(category).category(), category) << names.back();
    }
    EXPECT_THAT(names,
                ElementsAre("lifecycle", "windowenumeration", "recencytracking", "windowactivation",
                            "shortcutinterception", "overlay", "thumbnailcapture", "launcher",
                            "permission", "softwareupdates", "diagnostics", "preferences"));
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
