#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <memory>
#include <string>
#include <vector>

#include "activation/SkyLightEventRecord.h"
#include "activation/SkyLightPrivateWindowFocusService.h"
#include "core/ScopedLogCapture.h"
#include "platform/posix/PosixDynamicLibrary.h"
#include "platform/simulated/SimulatedDesktop.h"
#include "platform/simulated/SimulatedSkyLight.h"
#include "support/SimulatedDesktopBuilders.h"
#include "support/TakeLog.h"

namespace orvane {
namespace {

using Lines = std::vector<std::string>;
using Bytes = std::vector<std::uint8_t>;

const std::string framework = "/System/Library/PrivateFrameworks/SkyLight.framework/SkyLight";
const std::string unavailableLine =
    "SkyLight framework unavailable — private window focus disabled, public activation only";
const std::string missingLine =
    "SkyLight private symbols missing — private window focus disabled, public activation only";

// The wire format, offset by offset; every byte not set here is zero.
Bytes expectedRecord(std::uint8_t kind, std::array<std::uint8_t, 4> windowBytes) {
    Bytes bytes(0xF8, 0x00);
    bytes[0x04] = 0xF8;
    bytes[0x08] = kind;
    std::fill(bytes.begin() + 0x20, bytes.begin() + 0x30, 0xFF);
    bytes[0x3A] = 0x10;
    std::copy(windowBytes.begin(), windowBytes.end(), bytes.begin() + 0x3C);
    return bytes;
}

TEST(SkyLightEventRecord, IsTheWireFormatWithTheWindowLeastSignificantByteFirst) {
    const auto bytesOf = [](std::uint8_t kind, WindowIdentifier window) {
        const SkyLightEventRecord record(kind, window);
        return Bytes(record.bytes().begin(), record.bytes().end());
    };
    EXPECT_EQ(bytesOf(1, 0x12345678), expectedRecord(0x01, {0x78, 0x56, 0x34, 0x12}));
    EXPECT_EQ(bytesOf(2, 0x12345678), expectedRecord(0x02, {0x78, 0x56, 0x34, 0x12}));
    EXPECT_EQ(bytesOf(1, 0xA1B2C3D4), expectedRecord(0x01, {0xD4, 0xC3, 0xB2, 0xA1}));
}

// Every line must be an error of the activation category; each ends in a newline.
std::string takeLog(ScopedLogCapture& capture) {
    return takeLog(capture, LogCategory::windowactivation, LogLevel::error);
}

// Process 400 is frontmost with window 401; process 500 waits behind with window 501.
class SkyLightPrivateWindowFocusServiceTest : public ::testing::Test {
  protected:
    SkyLightPrivateWindowFocusServiceTest() {
        for (ProcessIdentifier process : {400, 500}) {
            desktop->launchApplication(simulatedApplication(process));
            desktop->createWindow(
                simulatedWindow(static_cast<WindowIdentifier>(process + 1), process));
        }
        desktop->focusWindow(401);
    }

    ScopedLogCapture logCapture;
    std::shared_ptr<SimulatedDesktop> desktop = SimulatedDesktop::make(100);
    std::shared_ptr<SimulatedSkyLight> skyLight = std::make_shared<SimulatedSkyLight>(desktop);
};

TEST_F(SkyLightPrivateWindowFocusServiceTest, FocusesThroughTheFrontProcessThenPostsBothKinds) {
    SkyLightPrivateWindowFocusService service(skyLight);
    EXPECT_EQ(skyLight->libraryLog(),
              (Lines{"open " + framework + " mode 1",
                     "symbol _SLPSSetFrontProcessWithOptions in " + framework,
                     "symbol SLPSPostEventRecordTo in " + framework, "open program mode 1",
                     "symbol GetProcessForPID in program"}));
    EXPECT_TRUE(service.focusWindow(501, 500));
    // 66036 is the serial number the simulation gives process 500.
    EXPECT_EQ(skyLight->calls(),
              (Lines{"GetProcessForPID(500)",
                     "_SLPSSetFrontProcessWithOptions(psn 0/66036, window 501, mode 512)",
                     "SLPSPostEventRecordTo(psn 0/66036, kind 1)",
                     "SLPSPostEventRecordTo(psn 0/66036, kind 2)"}));
    EXPECT_EQ(skyLight->postedRecords(),
              (std::vector<Bytes>{expectedRecord(0x01, {0xF5, 0x01, 0, 0}),
                                  expectedRecord(0x02, {0xF5, 0x01, 0, 0})}));
    EXPECT_EQ(desktop->frontmostProcessIdentifier(), 500);
    EXPECT_EQ(desktop->focusedWindow(), 501u);
    EXPECT_EQ(takeLog(logCapture), "");
}

TEST_F(SkyLightPrivateWindowFocusServiceTest, OnlyTheLookupAndFrontProcessStepsDecide) {
    // A fault of 0 is none.
    struct Case {
        ProcessIdentifier process;
        std::int32_t lookupStatus, frontError, firstPostError, secondPostError;
        bool answer;
        std::size_t calls;
        std::string log;
    };
    const std::string noSerial = "private focus: no process serial number for process ";
    const std::string postFailed = "private focus: SLPSPostEventRecordTo (kind ";
    const std::vector<Case> cases{
        {999, 0, 0, 0, 0, false, 1, noSerial + "999 (status -600)\n"},
        {500, 7, 0, 0, 0, false, 1, noSerial + "500 (status 7)\n"},
        {500, 0, -1000, 0, 0, false, 2,
         "private focus: _SLPSSetFrontProcessWithOptions failed for window 501 (error -1000)\n"},
        {500, 0, 0, -50, 0, true, 4, postFailed + "1) failed for window 501 (error -50)\n"},
        {500, 0, 0, 4, 5, true, 4,
         postFailed + "1) failed for window 501 (error 4)\n" + postFailed +
             "2) failed for window 501 (error 5)\n"},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(each.log);
        auto faulty = std::make_shared<SimulatedSkyLight>(desktop);
        faulty->processLookupStatus = each.lookupStatus;
        faulty->frontProcessError = each.frontError;
        faulty->postErrorsByKind = {{1, each.firstPostError}, {2, each.secondPostError}};
        SkyLightPrivateWindowFocusService service(faulty);
        EXPECT_EQ(service.focusWindow(501, each.process), each.answer);
        EXPECT_EQ(faulty->calls().size(), each.calls);
        EXPECT_EQ(takeLog(logCapture), each.log);
        EXPECT_EQ(desktop->focusedWindow(), each.answer ? 501u : 401u);
        desktop->focusWindow(401);
    }
}

TEST_F(SkyLightPrivateWindowFocusServiceTest, AnAbsentEntryPointDisablesEveryCallAfterOneLine) {
    for (std::string missing :
         {"GetProcessForPID", "_SLPSSetFrontProcessWithOptions", "SLPSPostEventRecordTo", ""}) {
        SCOPED_TRACE(missing);
        auto faulty = std::make_shared<SimulatedSkyLight>(desktop);
        faulty->missingSymbols = {missing};
        faulty->frameworkMissing = missing.empty();
        SkyLightPrivateWindowFocusService service(faulty);
        EXPECT_EQ(takeLog(logCapture), (missing.empty() ? unavailableLine : missingLine) + "\n");
        EXPECT_EQ(faulty->libraryLog().size(), missing.empty() ? 1u : 5u);
        EXPECT_FALSE(service.focusWindow(501, 500));
        EXPECT_FALSE(service.focusWindow(501, 500));
        EXPECT_EQ(faulty->calls(), Lines{});
        EXPECT_EQ(takeLog(logCapture), "");
    }
}

// The real port on this machine: the program opens, the framework does not.
TEST(PosixDynamicLibrary, FindsWhatIsThereAndLeavesTheServiceUnavailable) {
    auto libraries = std::make_shared<PosixDynamicLibrary>();
    const auto program = libraries->open(std::nullopt, 1);
    ASSERT_TRUE(program);
    EXPECT_NE(libraries->symbol(*program, "dlopen"), nullptr);
    EXPECT_EQ(libraries->symbol(*program, "GetProcessForPID"), nullptr);

    ScopedLogCapture logCapture;
    SkyLightPrivateWindowFocusService service(libraries);
    for (int call = 0; call < 3; ++call) {
        EXPECT_FALSE(service.focusWindow(1, static_cast<ProcessIdentifier>(getpid())));
    }
    EXPECT_EQ(takeLog(logCapture), unavailableLine + "\n");
}

}  // namespace
}  // namespace orvane
