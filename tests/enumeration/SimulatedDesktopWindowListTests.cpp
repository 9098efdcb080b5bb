#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/simulated/SimulatedDesktop.h"

namespace orvane {
namespace {

using ::testing::ElementsAre;
using Ids = std::vector<std::int64_t>;

constexpr ProcessIdentifier editor = 200;

SimulatedWindow window(WindowIdentifier identifier) {
    SimulatedWindow result;
    result.windowIdentifier = identifier;
    result.owningProcessIdentifier = editor;
    return result;
}

std::shared_ptr<SimulatedDesktop> desktopWithEditor(std::optional<std::string> name = "Editor") {
    auto desktop = SimulatedDesktop::make(100);
    SimulatedApplication application;
    application.runningApplication.processIdentifier = editor;
    application.runningApplication.localizedName = std::move(name);
    desktop->launchApplication(application);
    return desktop;
}

Ids identifiers(const std::optional<PropertyListValue>& list) {
    Ids result;
    for (const auto& entry : *list->array()) {
        result.push_back(std::get<std::int64_t>(entry.find(window_list_key::number)->storage));
    }
    return result;
}

std::vector<std::string> keys(const PropertyListValue& entry) {
    std::vector<std::string> result;
    for (const auto& [key, value] : *entry.dictionary()) {
        result.push_back(*key.text());
    }
    return result;
}

TEST(SimulatedDesktopWindowListTests, OnScreenReadsLeaveOutHiddenWindowsAndFaultsMatchTheMask) {
    auto desktop = desktopWithEditor();
    desktop->createWindow(window(1));
    auto minimized = window(2);
    minimized.isMinimized = true;
    desktop->createWindow(minimized);
    auto offScreen = window(3);
    offScreen.isOffScreen = true;
    desktop->createWindow(offScreen);
    desktop->createWindow(window(4));
    auto& list = desktop->windowList();

    EXPECT_EQ(identifiers(list.copyWindowInfo(17, 0)), (Ids{4, 1}));
    EXPECT_EQ(identifiers(list.copyWindowInfo(1, 0)), (Ids{4, 1}));
    EXPECT_EQ(identifiers(list.copyWindowInfo(16, 0)), (Ids{4, 3, 2, 1}));

    list.failingOptions = {17};
    EXPECT_FALSE(list.copyWindowInfo(17, 0).has_value());
    EXPECT_EQ(identifiers(list.copyWindowInfo(1, 0)), (Ids{4, 1}));
    list.answersMalformedList = true;
    EXPECT_EQ(list.copyWindowInfo(16, 0)->array()->front().dictionary(), nullptr);
    EXPECT_EQ(list.readCount(), 6u);
}

TEST(SimulatedDesktopWindowListTests, DictionaryHoldsEveryKeyNotLeftOut) {
    auto desktop = desktopWithEditor();
    auto full = window(1);
    full.bounds = Rect{{10, 20}, {300, 200}};
    full.listTitle = "Draft";
    full.layer = 3;
    full.alpha = 0.5;
    desktop->createWindow(full);
    auto sparse = window(2);
    sparse.missingWindowListKeys = {window_list_key::number, window_list_key::alpha};
    desktop->createWindow(sparse);

    const auto list = desktop->windowList().copyWindowInfo(16, 0);
    const auto& items = *list->array();
    ASSERT_EQ(items.size(), 2u);
    // Without a list title the name key is absent too.
    EXPECT_THAT(keys(items[0]), ElementsAre("kCGWindowOwnerPID", "kCGWindowBounds",
                                            "kCGWindowOwnerName", "kCGWindowLayer"));
    EXPECT_THAT(keys(items[1]), ElementsAre("kCGWindowNumber", "kCGWindowOwnerPID",
                                            "kCGWindowBounds", "kCGWindowOwnerName",
                                            "kCGWindowName", "kCGWindowLayer", "kCGWindowAlpha"));
    const auto& entry = items[1];
    EXPECT_EQ(rectFromDictionaryRepresentation(*entry.find(window_list_key::bounds)),
              (Rect{{10, 20}, {300, 200}}));
    EXPECT_EQ(*entry.find(window_list_key::ownerName)->text(), "Editor");
    EXPECT_EQ(*entry.find(window_list_key::name)->text(), "Draft");
    EXPECT_EQ(entry.find(window_list_key::layer)->exactInteger<int>(), 3);
    EXPECT_EQ(entry.find(window_list_key::alpha)->floatingPoint(), 0.5);

    auto unnamed = desktopWithEditor(std::nullopt);
    unnamed->createWindow(window(1));
    const auto unnamedList = unnamed->windowList().copyWindowInfo(16, 0);
    EXPECT_EQ(unnamedList->array()->front().find(window_list_key::ownerName), nullptr);
}

}  // namespace
}  // namespace orvane
