#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include "enumeration/AccessibilityWindowEnumerationService.h"
#include "platform/simulated/SimulatedAccessibilityElement.h"
#include "platform/simulated/SimulatedDesktop.h"
#include "support/ForwardingAccessibilityPort.h"
#include "support/SimulatedDesktopBuilders.h"
#include "support/TakeLog.h"

namespace orvane {
namespace {

using ::testing::_;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::Pair;
using Ids = std::vector<WindowIdentifier>;
using Lines = std::vector<std::string>;
using OptionalText = std::optional<std::string>;
using Dictionary = PropertyListValue::Dictionary;

constexpr ProcessIdentifier ownProcess = 100, editor = 200, browser = 300, troubled = 400;

const std::string emptyList =
    "error: CoreGraphics window list is empty; returning no switchable windows";
const std::string badEntry =
    "debug: Skipped a window list entry missing its identifier, owner, or bounds";
const std::string unpaired = "unpaired with any Accessibility window";
const std::string untitledUnpaired = "untitled and " + unpaired;

std::string listed(int windows, int entries, int skipped) {
    return "debug: Enumerated " + std::to_string(windows) + " switchable windows from " +
           std::to_string(entries) + " window list entries (" + std::to_string(skipped) +
           " skipped)";
}
std::string failed(std::uint32_t options) {
    return "error: CGWindowListCopyWindowInfo returned nothing for options " +
           std::to_string(options);
}
std::string skipped(WindowIdentifier window, ProcessIdentifier process, const std::string& why) {
    return "debug: Skipped window " + std::to_string(window) + " of process " +
           std::to_string(process) + ": " + why;
}

// A simulated desktop, the enumeration log, and the service over the desktop's ports, any of
// which a test may swap for its own.
struct Harness {
    std::shared_ptr<SimulatedDesktop> desktop = SimulatedDesktop::make(ownProcess);
    ScopedLogCapture capture;
    std::shared_ptr<WindowListPort> windowList = desktop->windowListPort();
    std::shared_ptr<AccessibilityPort> accessibility = desktop->accessibilityPort();
    std::shared_ptr<WorkspacePort> workspace = desktop->workspacePort();

    void launch(ProcessIdentifier process, OptionalText name, SimulatedApplication launched = {}) {
        launched.runningApplication = simulatedApplication(process, name).runningApplication;
        ASSERT_TRUE(desktop->launchApplication(std::move(launched)));
    }
    // Frames far enough apart that no two windows of a process pair by frame.
    void add(WindowIdentifier identifier, ProcessIdentifier process, OptionalText title,
             const std::function<void(SimulatedWindow&)>& change = {}) {
        auto created = simulatedWindow(identifier, process);
        created.bounds = Rect{{40.0 * identifier, 20.0 * identifier}, {600, 400}};
        created.listTitle = std::move(title);
        if (change) {
            change(created);
        }
        ASSERT_TRUE(desktop->createWindow(std::move(created)));
    }
    std::vector<SwitchableWindow> enumerate() {
        return AccessibilityWindowEnumerationService(ownProcess, windowList, accessibility,
                                                     workspace)
            .enumerateSwitchableWindows();
    }
    double now() const { return desktop->runLoop().now().secondsSinceReferenceDate; }
    std::size_t accessibilityReads() const { return desktop->accessibility().attributeReadCount(); }
    Lines lines() { return levelLines(capture.sink(), LogCategory::windowenumeration); }
};

// Answers each option mask with what it was given, and notes the masks asked for.
struct ScriptedWindowList final : WindowListPort {
    std::optional<PropertyListValue> copyWindowInfo(std::uint32_t options,
                                                    WindowIdentifier) override {
        requestedOptions.push_back(options);
        const auto found = answers.find(options);
        return found == answers.end() ? std::nullopt : std::optional(found->second);
    }
    std::map<std::uint32_t, PropertyListValue> answers;
    std::vector<std::uint32_t> requestedOptions;
};

// Knows only the applications it is given, and counts the questions per process.
struct ScriptedWorkspace final : WorkspacePort {
    std::vector<RunningApplication> runningApplications() const override { return {}; }
    std::optional<RunningApplication> runningApplication(ProcessIdentifier process) const override {
        ++lookups[process];
        const auto found = applications.find(process);
        return found == applications.end() ? std::nullopt : std::optional(found->second);
    }
    std::optional<RunningApplication> frontmostApplication() const override { return {}; }
    bool activateApplication(ProcessIdentifier, unsigned) override { return false; }
    std::map<ProcessIdentifier, RunningApplication> applications;
    mutable std::map<ProcessIdentifier, int> lookups;
};

// Notes per element ("application 200", "window 11") what was asked of it first, and slips a
// text and a null element into every "AXWindows" array.
struct RecordingAccessibility final : ForwardingAccessibilityPort {
    using ForwardingAccessibilityPort::ForwardingAccessibilityPort;

    AttributeReading copyAttributeValue(const AccessibilityElementHandle& element,
                                        std::string_view attribute) const override {
        firstCalls.try_emplace(describe(element), attribute);
        auto reading = inner_->copyAttributeValue(element, attribute);
        auto* items = reading.value
                          ? std::get_if<AccessibilityValue::Array>(&reading.value->storage)
                          : nullptr;
        if (attribute == "AXWindows" && items != nullptr) {
            items->insert(items->begin(), AccessibilityValue{std::string("not an element")});
            items->push_back(AccessibilityValue{AccessibilityElementHandle{}});
        }
        return reading;
    }
    AccessibilityError setMessagingTimeout(const AccessibilityElementHandle& element,
                                           float seconds) override {
        firstCalls.try_emplace(describe(element), "timeout " + std::to_string(seconds));
        return inner_->setMessagingTimeout(element, seconds);
    }
    static std::string describe(const AccessibilityElementHandle& element) {
        const auto& simulated = dynamic_cast<const SimulatedAccessibilityElement&>(*element);
        return simulated.isApplication()
                   ? "application " + std::to_string(simulated.processIdentifier())
                   : "window " + std::to_string(simulated.windowIdentifier());
    }

    mutable std::map<std::string, std::string> firstCalls;
};

TEST(AccessibilityWindowEnumerationServiceTests, MergesBothListsOnScreenFirstAndSurvivesBadLists) {
    enum Answer { real, nothing, notAnArray, nonDictionaryItem, nonTextKey, emptyArray };
    struct Case {
        const char* name;
        Answer onScreen, full;
        Ids expected;
        Lines lines;
    };
    // Front to back: 22 (on screen), 12 (minimized), 21 (off screen), 11 (on screen).
    const Ids fullOrder{22, 12, 21, 11}, onScreenOnly{22, 11};
    const Lines fullOnly{failed(17), listed(4, 4, 0)}, noFull{failed(16), listed(2, 2, 0)};
    const Case cases[] = {
        {"both real", real, real, {22, 11, 12, 21}, {listed(4, 4, 0)}},
        {"on-screen nothing", nothing, real, fullOrder, fullOnly},
        {"on-screen not an array", notAnArray, real, fullOrder, fullOnly},
        {"on-screen item not a dictionary", nonDictionaryItem, real, fullOrder, fullOnly},
        {"on-screen key not text", nonTextKey, real, fullOrder, fullOnly},
        {"full nothing", real, nothing, onScreenOnly, noFull},
        {"full key not text", real, nonTextKey, onScreenOnly, noFull},
        {"full empty", real, emptyArray, onScreenOnly, {listed(2, 2, 0)}},
        {"both nothing", nothing, nothing, {}, {failed(17), failed(16), emptyList}},
        {"both empty", emptyArray, emptyArray, {}, {emptyList}},
    };
    for (const auto& testCase : cases) {
        SCOPED_TRACE(testCase.name);
        Harness harness;
        harness.launch(editor, "Editor");
        harness.launch(browser, "Browser");
        harness.add(11, editor, "A");
        harness.add(21, browser, "B", [](auto& window) { window.isOffScreen = true; });
        harness.add(12, editor, "C", [](auto& window) { window.isMinimized = true; });
        harness.add(22, browser, "D");
        auto list = std::make_shared<ScriptedWindowList>();
        for (auto [options, answer] :
             {std::pair{17u, testCase.onScreen}, std::pair{16u, testCase.full}}) {
            auto items = *harness.desktop->windowList().copyWindowInfo(options, 0)->array();
            if (answer == nothing) {
                continue;
            } else if (answer == notAnArray) {
                list->answers[options] = items.front();
                continue;
            } else if (answer == nonDictionaryItem) {
                items.emplace_back("not a dictionary");
            } else if (answer == nonTextKey) {
                std::get<Dictionary>(items.front().storage).emplace_back(5, "five");
            } else if (answer == emptyArray) {
                items.clear();
            }
            list->answers[options] = PropertyListValue{items};
        }
        harness.windowList = list;

        EXPECT_EQ(windowIdentifiers(harness.enumerate()), testCase.expected);
        EXPECT_EQ(harness.lines(), testCase.lines);
        EXPECT_THAT(list->requestedOptions, ElementsAre(17u, 16u));
        if (testCase.expected.empty()) {
            EXPECT_EQ(harness.accessibilityReads(), 0u);
        }
    }
}

// Both lists carry the one entry, so a bad entry is skipped by each read and a good one is
// listed once.
TEST(AccessibilityWindowEnumerationServiceTests, ParsesEachWindowListKeyByItsRule) {
    struct Case {
        const char* name;
        const char* key;
        // Replaces the key's value; nothing removes the key.
        std::optional<PropertyListValue> value;
        Lines lines;
        // "title / application" of the window shown; empty when it is not.
        std::string shown;
    };
    const Lines skip{badEntry, badEntry, emptyList}, kept{listed(1, 1, 0)};
    const Lines layered{skipped(11, editor, "not on the standard window layer"), listed(0, 1, 1)};
    const Lines transparent{skipped(11, editor, "fully transparent"), listed(0, 1, 1)};
    const std::string fromList = "Draft / List Editor", unknown = "Draft / Unknown application";
    const PropertyListValue noHeight = Dictionary{{"X", 440.0}, {"Y", 220.0}, {"Width", 600.0}};
    const PropertyListValue textWidth =
        Dictionary{{"X", 440.0}, {"Y", 220.0}, {"Width", "600"}, {"Height", 400.0}};
    namespace key = window_list_key;
    const Case cases[] = {
        {"complete", key::number, 11, kept, fromList},
        {"number missing", key::number, std::nullopt, skip, ""},
        {"number is text", key::number, "11", skip, ""},
        {"number negative", key::number, -1, skip, ""},
        {"number past 32 bits", key::number, std::int64_t{1} << 32, skip, ""},
        {"owner missing", key::ownerProcessIdentifier, std::nullopt, skip, ""},
        {"owner is text", key::ownerProcessIdentifier, "200", skip, ""},
        {"owner past 31 bits", key::ownerProcessIdentifier, std::int64_t{1} << 31, skip, ""},
        {"bounds missing", key::bounds, std::nullopt, skip, ""},
        {"bounds is text", key::bounds, "440 220 600 400", skip, ""},
        {"bounds lacks height", key::bounds, noHeight, skip, ""},
        {"bounds width is text", key::bounds, textWidth, skip, ""},
        {"title missing", key::name, std::nullopt, kept, "AX Draft / List Editor"},
        {"title is a number", key::name, 7, kept, "AX Draft / List Editor"},
        {"owner name missing", key::ownerName, std::nullopt, kept, unknown},
        {"owner name is a number", key::ownerName, 7, kept, unknown},
        {"layer missing", key::layer, std::nullopt, kept, fromList},
        {"layer is text", key::layer, "25", kept, fromList},
        {"layer 25", key::layer, 25, layered, ""},
        {"alpha missing", key::alpha, std::nullopt, kept, fromList},
        {"alpha is text", key::alpha, "0", kept, fromList},
        {"alpha zero", key::alpha, 0.0, transparent, ""},
    };
    for (const auto& testCase : cases) {
        SCOPED_TRACE(testCase.name);
        Harness harness;
        harness.launch(editor, "List Editor");
        harness.add(11, editor, "Draft",
                    [](auto& window) { window.accessibilityTitle = "AX Draft"; });
        auto items = *harness.desktop->windowList().copyWindowInfo(17, 0)->array();
        auto& dictionary = std::get<Dictionary>(items.front().storage);
        std::erase_if(dictionary,
                      [&](const auto& entry) { return *entry.first.text() == testCase.key; });
        if (testCase.value) {
            dictionary.emplace_back(testCase.key, *testCase.value);
        }
        auto list = std::make_shared<ScriptedWindowList>();
        list->answers = {{17, PropertyListValue{items}}, {16, PropertyListValue{items}}};
        harness.windowList = list;
        // No running application: the list's owner name is all there is.
        harness.workspace = std::make_shared<ScriptedWorkspace>();

        std::string shown;
        for (const auto& window : harness.enumerate()) {
            shown += window.windowTitle + " / " + window.owningApplicationName;
        }
        EXPECT_EQ(shown, testCase.shown);
        EXPECT_EQ(harness.lines(), testCase.lines);
    }
}

TEST(AccessibilityWindowEnumerationServiceTests, FillsEachRecordFromBothViews) {
    Harness harness;
    harness.launch(editor, "Editor");
    harness.launch(browser, "Browser");
    // Paired by frame alone: the Accessibility tree places it 2 points off and titles it otherwise.
    harness.add(11, editor, "Draft", [](auto& window) {
        window.accessibilityTitle = "Draft (edited)";
        window.accessibilityFrame = Rect{{442, 218}, {602, 398}};
    });
    harness.add(12, editor, std::nullopt,
                [](auto& window) { window.accessibilityTitle = "Inbox"; });
    harness.add(13, editor, "Archive", [](auto& window) { window.isMinimized = true; });
    harness.add(14, editor, "Old", [](auto& window) {
        window.isMinimized = true;
        window.wronglyTypedAttributes = {"AXMinimized"};
    });
    harness.add(15, editor, std::nullopt, [](auto& window) {
        window.accessibilityTitle = "Hidden";
        window.wronglyTypedAttributes = {"AXTitle"};
    });
    harness.add(21, browser, "Docs", [](auto& window) {
        window.subrole = "AXDialog";
        window.wronglyTypedAttributes = {"AXSubrole"};
    });
    harness.add(22, browser, "Preferences", [](auto& window) { window.subrole = "AXDialog"; });
    harness.add(23, browser, "Tab", [](auto& window) { window.subrole = std::nullopt; });
    // Without a readable frame only the title pairs; 43's frame alone would pair it.
    harness.launch(troubled, "Troubled");
    harness.add(41, troubled, "Notes",
                [](auto& window) { window.wronglyTypedAttributes = {"AXSize"}; });
    harness.add(42, troubled, std::nullopt, [](auto& window) {
        window.accessibilityTitle = "Scratch";
        window.wronglyTypedAttributes = {"AXSize"};
    });
    harness.add(43, troubled, "Report", [](auto& window) {
        window.accessibilityTitle = "Summary";
        window.wronglyTypedAttributes = {"AXPosition"};
    });

    Lines shown;
    for (const auto& window : harness.enumerate()) {
        const Rect& frame = window.screenFrame;
        std::ostringstream line;
        line << window.windowIdentifier << " of " << window.owningProcessIdentifier << " \""
             << window.owningApplicationName << "\" \"" << window.windowTitle << "\" at ("
             << frame.minX() << ", " << frame.minY() << ", " << frame.width() << ", "
             << frame.height() << ")" << (window.isMinimized ? " minimized" : "");
        shown.push_back(line.str());
        EXPECT_EQ(window.lastFocusedTimestamp, Date::distantPast());
        ASSERT_NE(window.accessibilityElement, nullptr);
        EXPECT_EQ(*window.accessibilityElement,
                  AccessibilityWindowElement(SimulatedAccessibility::windowElement(
                      window.owningProcessIdentifier, window.windowIdentifier)));
    }
    EXPECT_EQ(shown, (Lines{R"(41 of 400 "Troubled" "Notes" at (1640, 820, 600, 400))",
                            R"(23 of 300 "Browser" "Tab" at (920, 460, 600, 400))",
                            R"(21 of 300 "Browser" "Docs" at (840, 420, 600, 400))",
                            R"(15 of 200 "Editor" "" at (600, 300, 600, 400))",
                            R"(12 of 200 "Editor" "Inbox" at (480, 240, 600, 400))",
                            R"(11 of 200 "Editor" "Draft" at (440, 220, 600, 400))",
                            R"(14 of 200 "Editor" "Old" at (560, 280, 600, 400))",
                            R"(13 of 200 "Editor" "Archive" at (520, 260, 600, 400) minimized)"}));
    EXPECT_EQ(harness.lines(),
              (Lines{skipped(43, troubled, unpaired), skipped(42, troubled, untitledUnpaired),
                     skipped(22, browser, "Accessibility subrole is not a standard window"),
                     listed(8, 11, 3)}));
}

TEST(AccessibilityWindowEnumerationServiceTests, ProcessWithoutReadableWindowsLosesOnlyItsOwn) {
    struct Case {
        const char* name;
        std::optional<AccessibilityError> windowsError;
        bool windowsNotArray;
        double responseDelay;
        bool inAccessibilityTree;
        OptionalText faultLine;
        double secondsTaken;
    };
    const std::string noWindows = "debug: Process 400 exposed no readable Accessibility windows ";
    const Case cases[] = {
        {"refuses", accessibility_error::apiDisabled, false, 0, true,
         noWindows + "(AXError -25211)", 0},
        {"answers a text", std::nullopt, true, 0, true,
         "debug: Process 400 returned a non-array Accessibility windows attribute", 0},
        // Only its application element is asked, and gives up at the timeout.
        {"hangs", std::nullopt, false, 10, true, noWindows + "(AXError -25204)", 0.25},
        {"lists no windows", std::nullopt, false, 0, false, std::nullopt, 0},
    };
    for (const auto& testCase : cases) {
        SCOPED_TRACE(testCase.name);
        Harness harness;
        harness.launch(editor, "Editor");
        harness.add(11, editor, "Draft");
        SimulatedApplication application;
        application.windowsAttributeError = testCase.windowsError;
        application.windowsAttributeIsNotArray = testCase.windowsNotArray;
        application.accessibilityResponseDelay = testCase.responseDelay;
        harness.launch(troubled, "Troubled", application);
        const auto inTree = [&](auto& window) {
            window.isInAccessibilityTree = testCase.inAccessibilityTree;
        };
        harness.add(41, troubled, "Secret", inTree);
        harness.add(42, troubled, std::nullopt, inTree);
        const double start = harness.now();

        EXPECT_EQ(windowIdentifiers(harness.enumerate()), (Ids{11}));
        EXPECT_EQ(harness.now() - start, testCase.secondsTaken);
        Lines expected{skipped(42, troubled, untitledUnpaired), skipped(41, troubled, unpaired),
                       listed(1, 3, 2)};
        if (testCase.faultLine) {
            expected.insert(expected.begin(), *testCase.faultLine);
        }
        EXPECT_EQ(harness.lines(), expected);
    }
}

TEST(AccessibilityWindowEnumerationServiceTests, SetsTimeoutBeforeReadingOtherProcessesOnly) {
    Harness harness;
    // Any read of the program's own tree would cost time or fail.
    SimulatedApplication self;
    self.accessibilityResponseDelay = 10;
    harness.launch(ownProcess, "Orvane", self);
    harness.launch(editor, "Editor");
    harness.launch(browser, "Browser");
    harness.add(1, ownProcess, "Switcher");
    harness.add(11, editor, "Draft");
    harness.add(12, editor, std::nullopt);
    // The browser's only entry is a menu, yet its tree is still read.
    harness.add(21, browser, "Menu", [](auto& window) { window.layer = 25; });
    auto recording = std::make_shared<RecordingAccessibility>(harness.accessibility);
    harness.accessibility = recording;
    const double start = harness.now();

    EXPECT_EQ(windowIdentifiers(harness.enumerate()), (Ids{12, 11}));

    EXPECT_EQ(harness.now(), start);
    const std::string timeout = "timeout 0.250000";
    EXPECT_EQ(recording->firstCalls,
              (std::map<std::string, std::string>{{"application 200", timeout},
                                                  {"application 300", timeout},
                                                  {"window 11", timeout},
                                                  {"window 12", timeout},
                                                  {"window 21", timeout}}));
    // "AXWindows" of each application, then title, position, size, subrole and minimized state.
    EXPECT_EQ(harness.accessibilityReads(), 2u + 3 * 5);
    EXPECT_EQ(harness.desktop->accessibility().messagingTimeoutsSet(),
              std::vector<float>(5, 0.25f));
    EXPECT_EQ(harness.lines(),
              (Lines{skipped(21, browser, "not on the standard window layer"),
                     skipped(1, ownProcess, "owned by the current process"), listed(2, 4, 2)}));
}

// The workspace's name, else the window list's owner name, else a default; looked up once per
// process and enumeration, so a renamed application shows its new name at the next one.
TEST(AccessibilityWindowEnumerationServiceTests, NamesEachApplicationOncePerEnumeration) {
    struct Case {
        ProcessIdentifier process;
        bool running;
        OptionalText runningName, ownerName;
    };
    const Case cases[] = {
        {201, true, "Workspace Mail", "List Mail"}, {202, true, std::nullopt, "List Mail"},
        {203, false, std::nullopt, "List Mail"},    {204, false, std::nullopt, ""},
        {205, false, std::nullopt, std::nullopt},   {206, true, std::nullopt, std::nullopt},
    };
    Harness harness;
    auto workspace = std::make_shared<ScriptedWorkspace>();
    for (const auto& testCase : cases) {
        // The simulated list takes the owner name from the simulated application.
        harness.launch(testCase.process, testCase.ownerName);
        harness.add(testCase.process - 200, testCase.process, "Draft");
        if (testCase.running) {
            auto& application = workspace->applications[testCase.process];
            application.processIdentifier = testCase.process;
            application.localizedName = testCase.runningName;
        }
    }
    harness.add(7, 201, "Second");
    AccessibilityWindowEnumerationService service(ownProcess, harness.windowList,
                                                  harness.accessibility, workspace);
    const auto names = [&] {
        std::vector<std::string> result;
        for (const auto& window : service.enumerateSwitchableWindows()) {
            result.push_back(window.owningApplicationName);
        }
        return result;
    };
    const std::string unknown = "Unknown application";

    EXPECT_THAT(names(), ElementsAre("Workspace Mail", unknown, unknown, "", "List Mail",
                                     "List Mail", "Workspace Mail"));
    EXPECT_THAT(workspace->lookups, Each(Pair(_, 1)));
    workspace->applications[201].localizedName = "Renamed";
    EXPECT_THAT(names(),
                ElementsAre("Renamed", unknown, unknown, "", "List Mail", "List Mail", "Renamed"));
    EXPECT_THAT(workspace->lookups, Each(Pair(_, 2)));
    EXPECT_EQ(workspace->lookups.size(), 6u);
}

// Forwards to the simulated list, under a revision the test sets, and counts the reads.
struct RevisedWindowList final : WindowListPort {
    explicit RevisedWindowList(std::shared_ptr<WindowListPort> inner) : inner(std::move(inner)) {}
    std::optional<PropertyListValue> copyWindowInfo(std::uint32_t options,
                                                    WindowIdentifier relativeToWindow) override {
        ++reads;
        return inner->copyWindowInfo(options, relativeToWindow);
    }
    std::optional<std::uint64_t> revision() const override { return current; }
    std::shared_ptr<WindowListPort> inner;
    std::optional<std::uint64_t> current;
    int reads = 0;
};

TEST(AccessibilityWindowEnumerationServiceTests, KeepsItsReadExactlyWhileTheRevisionHolds) {
    Harness harness;
    harness.launch(editor, "Editor");
    harness.add(1, editor, "Draft");
    auto list = std::make_shared<RevisedWindowList>(harness.windowList);
    AccessibilityWindowEnumerationService service(ownProcess, list, harness.accessibility,
                                                  harness.workspace);
    const auto identifiers = [&] {
        Ids result;
        for (const auto& window : service.enumerateSwitchableWindows()) {
            result.push_back(window.windowIdentifier);
        }
        std::sort(result.begin(), result.end());
        return result;
    };

    // A platform that cannot tell is read at every enumeration.
    EXPECT_THAT(identifiers(), ElementsAre(1));
    harness.add(2, editor, "Notes");
    EXPECT_THAT(identifiers(), ElementsAre(1, 2));
    EXPECT_EQ(list->reads, 4);

    list->current = 7;
    EXPECT_THAT(identifiers(), ElementsAre(1, 2));
    harness.add(3, editor, "Plan");
    EXPECT_THAT(identifiers(), ElementsAre(1, 2));
    EXPECT_EQ(list->reads, 6);

    list->current = 8;
    EXPECT_THAT(identifiers(), ElementsAre(1, 2, 3));
    EXPECT_EQ(list->reads, 8);
    list->current.reset();
    ASSERT_TRUE(harness.desktop->destroyWindow(3));
    EXPECT_THAT(identifiers(), ElementsAre(1, 2));
}

}  // namespace
}  // namespace orvane
