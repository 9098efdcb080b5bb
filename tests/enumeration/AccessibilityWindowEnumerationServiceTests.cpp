#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "core/ScopedLogCapture.h"
#include "enumeration/AccessibilityWindowEnumerationService.h"
#include "platform/simulated/SimulatedAccessibilityElement.h"
#include "platform/simulated/SimulatedDesktop.h"

namespace orvane {
namespace {

using ::testing::ElementsAre;
using ::testing::UnorderedElementsAre;
using Ids = std::vector<WindowIdentifier>;
using Lines = std::vector<std::string>;
using OptionalText = std::optional<std::string>;
using Dictionary = PropertyListValue::Dictionary;

constexpr ProcessIdentifier ownProcess = 100;
constexpr ProcessIdentifier editor = 200;
constexpr ProcessIdentifier browser = 300;
constexpr ProcessIdentifier troubled = 400;

const std::string emptyListLine =
    "error: CoreGraphics window list is empty; returning no switchable windows";
const std::string unpaired = "unpaired with any Accessibility window";
const std::string untitledUnpaired = "untitled and unpaired with any Accessibility window";
const std::string skippedEntryLine =
    "debug: Skipped a window list entry missing its identifier, owner, or bounds";

// Far enough apart that no two windows of a process pair by frame.
Rect frameOf(WindowIdentifier identifier) {
    const double offset = 40.0 * identifier;
    return Rect{{offset, offset / 2}, {600, 400}};
}

SimulatedWindow window(WindowIdentifier identifier, ProcessIdentifier process, OptionalText title) {
    SimulatedWindow result;
    result.windowIdentifier = identifier;
    result.owningProcessIdentifier = process;
    result.bounds = frameOf(identifier);
    result.listTitle = std::move(title);
    return result;
}

Ids identifiers(const std::vector<SwitchableWindow>& windows) {
    Ids result;
    for (const auto& shown : windows) {
        result.push_back(shown.windowIdentifier);
    }
    return result;
}

std::string listed(int windows, int entries, int skipped) {
    return "debug: Enumerated " + std::to_string(windows) + " switchable windows from " +
           std::to_string(entries) + " window list entries (" + std::to_string(skipped) +
           " skipped)";
}

std::string failed(std::uint32_t options) {
    return "error: CGWindowListCopyWindowInfo returned nothing for options " +
           std::to_string(options);
}

std::string skippedWindow(WindowIdentifier window, ProcessIdentifier process,
                          const std::string& reason) {
    return "debug: Skipped window " + std::to_string(window) + " of process " +
           std::to_string(process) + ": " + reason;
}

std::string unreadable(ProcessIdentifier process, AccessibilityError error) {
    return "debug: Process " + std::to_string(process) +
           " exposed no readable Accessibility windows (AXError " + std::to_string(error) + ")";
}

std::string describe(const AccessibilityElementHandle& element) {
    const auto* simulated = dynamic_cast<const SimulatedAccessibilityElement*>(element.get());
    if (simulated == nullptr) {
        return "other element";
    }
    if (simulated->isApplication()) {
        return "application " + std::to_string(simulated->processIdentifier());
    }
    return "window " + std::to_string(simulated->windowIdentifier());
}

// A simulated desktop, the enumeration log, and the service over the desktop's ports, any of
// which a test may swap for its own.
struct Harness {
    std::shared_ptr<SimulatedDesktop> desktop = SimulatedDesktop::make(ownProcess);
    ScopedLogCapture capture;
    std::shared_ptr<WindowListPort> windowList;
    std::shared_ptr<AccessibilityPort> accessibility;
    std::shared_ptr<WorkspacePort> workspace;

    void launch(ProcessIdentifier process, OptionalText name, SimulatedApplication launched = {}) {
        launched.runningApplication.processIdentifier = process;
        launched.runningApplication.localizedName = std::move(name);
        ASSERT_TRUE(desktop->launchApplication(std::move(launched)));
    }
    void add(SimulatedWindow created) { ASSERT_TRUE(desktop->createWindow(std::move(created))); }

    std::vector<SwitchableWindow> enumerate() {
        AccessibilityWindowEnumerationService service(
            ownProcess, windowList ? windowList : desktop->windowListPort(),
            accessibility ? accessibility : desktop->accessibilityPort(),
            workspace ? workspace : desktop->workspacePort());
        return service.enumerateSwitchableWindows();
    }

    double now() const { return desktop->runLoop().now().secondsSinceReferenceDate; }
    std::size_t accessibilityReads() const { return desktop->accessibility().attributeReadCount(); }

    Lines lines() {
        Lines result;
        for (const auto& record : capture.sink().records()) {
            if (record.category != LogCategory::windowenumeration) {
                continue;
            }
            const char* level = record.level == LogLevel::error  ? "error: "
                                : record.level == LogLevel::info ? "info: "
                                                                 : "debug: ";
            result.push_back(level + record.message);
        }
        return result;
    }
};

// Answers each option mask with what it was given, and notes the masks asked for.
class ScriptedWindowList final : public WindowListPort {
  public:
    std::optional<PropertyListValue> copyWindowInfo(std::uint32_t options,
                                                    WindowIdentifier) override {
        requestedOptions.push_back(options);
        const auto found = answers.find(options);
        return found == answers.end() ? std::nullopt : found->second;
    }

    std::map<std::uint32_t, std::optional<PropertyListValue>> answers;
    std::vector<std::uint32_t> requestedOptions;
};

RunningApplication running(ProcessIdentifier process, OptionalText name) {
    RunningApplication application;
    application.processIdentifier = process;
    application.localizedName = std::move(name);
    return application;
}

// Knows only the applications it is given, and counts the questions per process.
class ScriptedWorkspace final : public WorkspacePort {
  public:
    std::vector<RunningApplication> runningApplications() const override { return {}; }
    std::optional<RunningApplication> runningApplication(ProcessIdentifier process) const override {
        ++lookups[process];
        const auto found = applications.find(process);
        return found == applications.end() ? std::nullopt : std::optional(found->second);
    }
    std::optional<RunningApplication> frontmostApplication() const override { return {}; }

    std::map<ProcessIdentifier, RunningApplication> applications;
    mutable std::map<ProcessIdentifier, int> lookups;
};

// Passes everything to the desktop, noting per element what was asked of it in order, and slips
// a text and a null element into every "AXWindows" array.
class RecordingAccessibility final : public AccessibilityPort {
  public:
    explicit RecordingAccessibility(std::shared_ptr<AccessibilityPort> inner)
        : inner_(std::move(inner)) {}

    AttributeReading copyAttributeValue(const AccessibilityElementHandle& element,
                                        std::string_view attribute) const override {
        calls[describe(element)].emplace_back(attribute);
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
    AccessibilityElementHandle createApplicationElement(ProcessIdentifier process) override {
        return inner_->createApplicationElement(process);
    }
    AccessibilityError setMessagingTimeout(const AccessibilityElementHandle& element,
                                           float seconds) override {
        std::ostringstream text;
        text << "timeout " << seconds;
        calls[describe(element)].push_back(text.str());
        return inner_->setMessagingTimeout(element, seconds);
    }
    ProcessReading processIdentifier(const AccessibilityElementHandle& element) const override {
        return inner_->processIdentifier(element);
    }
    ObserverCreation createObserver(ProcessIdentifier process, ObserverCallback callback) override {
        return inner_->createObserver(process, std::move(callback));
    }
    AccessibilityError addNotification(const AccessibilityObserverHandle& observer,
                                       const AccessibilityElementHandle& element,
                                       std::string_view notification, void* reference) override {
        return inner_->addNotification(observer, element, notification, reference);
    }
    AccessibilityError removeNotification(const AccessibilityObserverHandle& observer,
                                          const AccessibilityElementHandle& element,
                                          std::string_view notification) override {
        return inner_->removeNotification(observer, element, notification);
    }
    RunLoopSourceHandle observerRunLoopSource(
        const AccessibilityObserverHandle& observer) override {
        return inner_->observerRunLoopSource(observer);
    }

    mutable std::map<std::string, std::vector<std::string>> calls;

  private:
    std::shared_ptr<AccessibilityPort> inner_;
};

// What the switcher shows of each window, one line apiece.
Lines shown(const std::vector<SwitchableWindow>& windows) {
    Lines result;
    for (const auto& window : windows) {
        const Rect& frame = window.screenFrame;
        std::ostringstream line;
        line << window.windowIdentifier << " of " << window.owningProcessIdentifier << " \""
             << window.owningApplicationName << "\" \"" << window.windowTitle << "\" at ("
             << frame.minX() << ", " << frame.minY() << ", " << frame.width() << ", "
             << frame.height() << ")" << (window.isMinimized ? " minimized" : "");
        result.push_back(line.str());
    }
    return result;
}

// Front to back: window 22 (on screen), 12 (minimized), 21 (off screen), 11 (on screen).
void addInterleavedWindows(Harness& harness) {
    harness.launch(editor, "Editor");
    harness.launch(browser, "Browser");
    harness.add(window(11, editor, "A"));
    auto offScreen = window(21, browser, "B");
    offScreen.isOffScreen = true;
    harness.add(offScreen);
    auto minimized = window(12, editor, "C");
    minimized.isMinimized = true;
    harness.add(minimized);
    harness.add(window(22, browser, "D"));
}

TEST(AccessibilityWindowEnumerationServiceTests, OrdersOnScreenWindowsFirstAndSurvivesListFaults) {
    struct Case {
        const char* name;
        std::set<std::uint32_t> failingOptions;
        bool malformed;
        Ids expected;
        Lines lines;
    };
    const Lines nothingListed = {failed(17), failed(16), emptyListLine};
    const Case cases[] = {
        {"both reads answer", {}, false, {22, 11, 12, 21}, {listed(4, 4, 0)}},
        {"on-screen read fails", {17}, false, {22, 12, 21, 11}, {failed(17), listed(4, 4, 0)}},
        {"full read fails", {16}, false, {22, 11}, {failed(16), listed(2, 2, 0)}},
        {"both reads fail", {17, 16}, false, {}, nothingListed},
        {"both lists malformed", {}, true, {}, nothingListed},
    };
    for (const auto& testCase : cases) {
        SCOPED_TRACE(testCase.name);
        Harness harness;
        addInterleavedWindows(harness);
        harness.desktop->windowList().failingOptions = testCase.failingOptions;
        harness.desktop->windowList().answersMalformedList = testCase.malformed;

        EXPECT_EQ(identifiers(harness.enumerate()), testCase.expected);
        EXPECT_EQ(harness.lines(), testCase.lines);
        EXPECT_EQ(harness.desktop->windowList().readCount(), 2u);
        if (testCase.expected.empty()) {
            EXPECT_EQ(harness.accessibilityReads(), 0u);
        }
    }
}

TEST(AccessibilityWindowEnumerationServiceTests, ReadsBothListsInOrderWhateverTheyAnswer) {
    enum class Answer { real, nothing, notAnArray, nonDictionaryItem, nonTextKey, emptyArray };
    using enum Answer;
    struct Case {
        const char* name;
        Answer onScreen;
        Answer full;
        Ids expected;
        Lines lines;
    };
    const Case cases[] = {
        {"both real", real, real, {11, 12}, {listed(2, 2, 0)}},
        {"on-screen nothing", nothing, real, {12, 11}, {failed(17), listed(2, 2, 0)}},
        {"on-screen not an array", notAnArray, real, {12, 11}, {failed(17), listed(2, 2, 0)}},
        {"on-screen non-dictionary",
         nonDictionaryItem,
         real,
         {12, 11},
         {failed(17), listed(2, 2, 0)}},
        {"on-screen key not text", nonTextKey, real, {12, 11}, {failed(17), listed(2, 2, 0)}},
        {"full nothing", real, nothing, {11}, {failed(16), listed(1, 1, 0)}},
        {"full key not text", real, nonTextKey, {11}, {failed(16), listed(1, 1, 0)}},
        {"full empty", real, emptyArray, {11}, {listed(1, 1, 0)}},
        {"both nothing", nothing, nothing, {}, {failed(17), failed(16), emptyListLine}},
        {"both empty", emptyArray, emptyArray, {}, {emptyListLine}},
    };
    for (const auto& testCase : cases) {
        SCOPED_TRACE(testCase.name);
        Harness harness;
        harness.launch(editor, "Editor");
        harness.add(window(11, editor, "Draft"));
        auto minimized = window(12, editor, "Notes");
        minimized.isMinimized = true;
        harness.add(minimized);
        auto list = std::make_shared<ScriptedWindowList>();
        for (const auto& [options, answer] :
             {std::pair{17u, testCase.onScreen}, std::pair{16u, testCase.full}}) {
            auto simulated = harness.desktop->windowList().copyWindowInfo(options, 0);
            auto items = *simulated->array();
            auto& first = items.front();
            switch (answer) {
                case real:
                    list->answers[options] = simulated;
                    break;
                case nothing:
                    break;
                case notAnArray:
                    list->answers[options] = first;
                    break;
                case nonDictionaryItem:
                    items.emplace_back("not a dictionary");
                    list->answers[options] = PropertyListValue{items};
                    break;
                case nonTextKey:
                    std::get<Dictionary>(first.storage).emplace_back(PropertyListValue{5}, "five");
                    list->answers[options] = PropertyListValue{items};
                    break;
                case emptyArray:
                    list->answers[options] = PropertyListValue{PropertyListValue::Array{}};
                    break;
            }
        }
        harness.windowList = list;

        EXPECT_EQ(identifiers(harness.enumerate()), testCase.expected);
        EXPECT_EQ(harness.lines(), testCase.lines);
        EXPECT_THAT(list->requestedOptions, ElementsAre(17u, 16u));
        if (testCase.expected.empty()) {
            EXPECT_EQ(harness.accessibilityReads(), 0u);
        }
    }
}

TEST(AccessibilityWindowEnumerationServiceTests, ParsesEachWindowListKeyByItsRule) {
    struct Case {
        const char* name;
        const char* key;
        // Replaces the key's value; nothing removes the key.
        std::optional<PropertyListValue> value;
        Lines lines;
        // "title / application" of the one window shown, if it is.
        std::vector<std::string> windows;
    };
    const Lines skipped = {skippedEntryLine, emptyListLine};
    const Lines included = {listed(1, 1, 0)};
    const std::vector<std::string> fromList = {"Draft / List Editor"};
    const PropertyListValue boundsWithoutHeight =
        Dictionary{{"X", 440.0}, {"Y", 220.0}, {"Width", 600.0}};
    const PropertyListValue boundsWithTextWidth =
        Dictionary{{"X", 440.0}, {"Y", 220.0}, {"Width", "600"}, {"Height", 400.0}};
    namespace key = window_list_key;
    const Case cases[] = {
        {"complete", key::number, 11, included, fromList},
        {"number missing", key::number, std::nullopt, skipped, {}},
        {"number is text", key::number, "11", skipped, {}},
        {"number negative", key::number, -1, skipped, {}},
        {"number past 32 bits", key::number, std::int64_t{1} << 32, skipped, {}},
        {"owner missing", key::ownerProcessIdentifier, std::nullopt, skipped, {}},
        {"owner is text", key::ownerProcessIdentifier, "200", skipped, {}},
        {"owner past 31 bits", key::ownerProcessIdentifier, std::int64_t{1} << 31, skipped, {}},
        {"bounds missing", key::bounds, std::nullopt, skipped, {}},
        {"bounds is text", key::bounds, "440 220 600 400", skipped, {}},
        {"bounds lacks height", key::bounds, boundsWithoutHeight, skipped, {}},
        {"bounds width is text", key::bounds, boundsWithTextWidth, skipped, {}},
        {"title missing", key::name, std::nullopt, included, {"AX Draft / List Editor"}},
        {"title is a number", key::name, 7, included, {"AX Draft / List Editor"}},
        {"owner name missing",
         key::ownerName,
         std::nullopt,
         included,
         {"Draft / Unknown application"}},
        {"owner name is a number", key::ownerName, 7, included, {"Draft / Unknown application"}},
        {"layer missing", key::layer, std::nullopt, included, fromList},
        {"layer is text", key::layer, "25", included, fromList},
        {"layer 25",
         key::layer,
         25,
         {skippedWindow(11, 200, "not on the standard window layer"), listed(0, 1, 1)},
         {}},
        {"alpha missing", key::alpha, std::nullopt, included, fromList},
        {"alpha is text", key::alpha, "0", included, fromList},
        {"alpha zero",
         key::alpha,
         0.0,
         {skippedWindow(11, 200, "fully transparent"), listed(0, 1, 1)},
         {}},
    };
    for (const auto& testCase : cases) {
        SCOPED_TRACE(testCase.name);
        Harness harness;
        harness.launch(editor, "List Editor");
        auto draft = window(11, editor, "Draft");
        draft.accessibilityTitle = "AX Draft";
        harness.add(draft);
        auto items = *harness.desktop->windowList().copyWindowInfo(17, 0)->array();
        auto& dictionary = std::get<Dictionary>(items.front().storage);
        std::erase_if(dictionary,
                      [&](const auto& entry) { return *entry.first.text() == testCase.key; });
        if (testCase.value) {
            dictionary.emplace_back(testCase.key, *testCase.value);
        }
        auto list = std::make_shared<ScriptedWindowList>();
        list->answers[17] = PropertyListValue{items};
        list->answers[16] = PropertyListValue{PropertyListValue::Array{}};
        harness.windowList = list;
        // No running application: the list's owner name is all there is.
        harness.workspace = std::make_shared<ScriptedWorkspace>();

        std::vector<std::string> windows;
        for (const auto& window : harness.enumerate()) {
            windows.push_back(window.windowTitle + " / " + window.owningApplicationName);
        }
        EXPECT_EQ(windows, testCase.windows);
        EXPECT_EQ(harness.lines(), testCase.lines);
    }
}

TEST(AccessibilityWindowEnumerationServiceTests, SkipsEntriesMissingRequiredKeysInEachList) {
    Harness harness;
    harness.launch(editor, "Editor");
    auto offScreen = window(11, editor, "Hidden");
    offScreen.isOffScreen = true;
    offScreen.missingWindowListKeys = {window_list_key::bounds};
    harness.add(offScreen);
    auto onScreen = window(12, editor, "Shown");
    onScreen.missingWindowListKeys = {window_list_key::number};
    harness.add(onScreen);
    auto nameless = window(13, editor, "Kept");
    nameless.accessibilityTitle = "Nameless";
    nameless.missingWindowListKeys = {window_list_key::name, window_list_key::ownerName};
    harness.add(nameless);

    const auto windows = harness.enumerate();
    EXPECT_EQ(identifiers(windows), (Ids{13}));
    EXPECT_EQ(windows.front().windowTitle, "Nameless");
    // The on-screen window is skipped by both reads, the off-screen one by the full read alone.
    EXPECT_EQ(harness.lines(),
              (Lines{skippedEntryLine, skippedEntryLine, skippedEntryLine, listed(1, 1, 0)}));
}

TEST(AccessibilityWindowEnumerationServiceTests, FillsEachRecordFromBothViews) {
    Harness harness;
    harness.launch(editor, "Editor");
    harness.launch(browser, "Browser");
    // Paired by frame alone: the Accessibility tree places it 2 points off and titles it otherwise.
    auto shifted = window(11, editor, "Draft");
    shifted.accessibilityTitle = "Draft (edited)";
    shifted.accessibilityFrame = Rect{{442, 218}, {602, 398}};
    harness.add(shifted);
    auto withheldTitle = window(12, editor, std::nullopt);
    withheldTitle.accessibilityTitle = "Inbox";
    harness.add(withheldTitle);
    auto minimized = window(13, editor, "Archive");
    minimized.isMinimized = true;
    harness.add(minimized);
    auto unreadableMinimized = window(14, editor, "Old");
    unreadableMinimized.isMinimized = true;
    unreadableMinimized.wronglyTypedAttributes = {"AXMinimized"};
    harness.add(unreadableMinimized);
    auto unreadableTitle = window(15, editor, std::nullopt);
    unreadableTitle.accessibilityTitle = "Hidden";
    unreadableTitle.wronglyTypedAttributes = {"AXTitle"};
    harness.add(unreadableTitle);
    auto unreadableSubrole = window(21, browser, "Docs");
    unreadableSubrole.subrole = "AXDialog";
    unreadableSubrole.wronglyTypedAttributes = {"AXSubrole"};
    harness.add(unreadableSubrole);
    auto dialog = window(22, browser, "Preferences");
    dialog.subrole = "AXDialog";
    harness.add(dialog);
    auto noSubrole = window(23, browser, "Tab");
    noSubrole.subrole = std::nullopt;
    harness.add(noSubrole);

    const auto windows = harness.enumerate();

    EXPECT_EQ(shown(windows),
              (Lines{R"(23 of 300 "Browser" "Tab" at (920, 460, 600, 400))",
                     R"(21 of 300 "Browser" "Docs" at (840, 420, 600, 400))",
                     R"(15 of 200 "Editor" "" at (600, 300, 600, 400))",
                     R"(12 of 200 "Editor" "Inbox" at (480, 240, 600, 400))",
                     R"(11 of 200 "Editor" "Draft" at (440, 220, 600, 400))",
                     R"(14 of 200 "Editor" "Old" at (560, 280, 600, 400))",
                     R"(13 of 200 "Editor" "Archive" at (520, 260, 600, 400) minimized)"}));
    for (const auto& window : windows) {
        SCOPED_TRACE(window.windowIdentifier);
        EXPECT_EQ(window.lastFocusedTimestamp, Date::distantPast());
        ASSERT_NE(window.accessibilityElement, nullptr);
        EXPECT_EQ(*window.accessibilityElement,
                  AccessibilityWindowElement(SimulatedAccessibility::windowElement(
                      window.owningProcessIdentifier, window.windowIdentifier)));
    }
    EXPECT_EQ(harness.lines(),
              (Lines{skippedWindow(22, browser, "Accessibility subrole is not a standard window"),
                     listed(7, 8, 1)}));
}

TEST(AccessibilityWindowEnumerationServiceTests, WindowWithoutReadableFramePairsByTitleAlone) {
    Harness harness;
    harness.launch(editor, "Editor");
    auto titled = window(11, editor, "Notes");
    titled.wronglyTypedAttributes = {"AXSize"};
    harness.add(titled);
    auto untitled = window(12, editor, std::nullopt);
    untitled.accessibilityTitle = "Scratch";
    untitled.wronglyTypedAttributes = {"AXSize"};
    harness.add(untitled);
    // Its frame alone would pair it, despite the differing titles.
    auto retitled = window(13, editor, "Report");
    retitled.accessibilityTitle = "Summary";
    retitled.wronglyTypedAttributes = {"AXPosition"};
    harness.add(retitled);

    EXPECT_EQ(identifiers(harness.enumerate()), (Ids{11}));
    EXPECT_EQ(harness.lines(),
              (Lines{skippedWindow(13, editor, unpaired),
                     skippedWindow(12, editor, untitledUnpaired), listed(1, 3, 2)}));
}

TEST(AccessibilityWindowEnumerationServiceTests, ProcessWithoutReadableWindowsLosesOnlyItsOwn) {
    struct Case {
        const char* name;
        std::optional<AccessibilityError> windowsError;
        bool windowsNotArray;
        double responseDelay;
        bool inAccessibilityTree;
        Lines faultLines;
    };
    const Case cases[] = {
        {"refuses",
         accessibility_error::apiDisabled,
         false,
         0,
         true,
         {unreadable(troubled, -25211)}},
        {"answers a text",
         std::nullopt,
         true,
         0,
         true,
         {"debug: Process 400 returned a non-array Accessibility windows attribute"}},
        {"hangs", std::nullopt, false, 10, true, {unreadable(troubled, -25204)}},
        {"lists no windows", std::nullopt, false, 0, false, {}},
    };
    for (const auto& testCase : cases) {
        SCOPED_TRACE(testCase.name);
        Harness harness;
        harness.launch(editor, "Editor");
        harness.add(window(11, editor, "Draft"));
        SimulatedApplication application;
        application.windowsAttributeError = testCase.windowsError;
        application.windowsAttributeIsNotArray = testCase.windowsNotArray;
        application.accessibilityResponseDelay = testCase.responseDelay;
        harness.launch(troubled, "Troubled", application);
        for (auto created : {window(41, troubled, "Secret"), window(42, troubled, std::nullopt)}) {
            created.isInAccessibilityTree = testCase.inAccessibilityTree;
            harness.add(created);
        }

        EXPECT_EQ(identifiers(harness.enumerate()), (Ids{11}));
        Lines expected = testCase.faultLines;
        expected.insert(expected.end(), {skippedWindow(42, troubled, untitledUnpaired),
                                         skippedWindow(41, troubled, unpaired), listed(1, 3, 2)});
        EXPECT_EQ(harness.lines(), expected);
    }
}

TEST(AccessibilityWindowEnumerationServiceTests, ElementReadsAreBoundByTheMessagingTimeout) {
    Harness hung;
    hung.launch(editor, "Editor");
    hung.add(window(11, editor, "Draft"));
    SimulatedApplication frozen;
    frozen.accessibilityResponseDelay = 10;
    hung.launch(troubled, "Frozen", frozen);
    hung.add(window(41, troubled, "One"));
    hung.add(window(42, troubled, "Two"));
    const double hungStart = hung.now();
    EXPECT_EQ(identifiers(hung.enumerate()), (Ids{11}));
    // Only its application element was asked, and gave up at the timeout.
    EXPECT_EQ(hung.now() - hungStart, 0.25);

    Harness slow;
    SimulatedApplication sluggish;
    sluggish.accessibilityResponseDelay = 0.125;
    slow.launch(editor, "Editor", sluggish);
    slow.add(window(11, editor, "Draft"));
    const double slowStart = slow.now();
    EXPECT_EQ(identifiers(slow.enumerate()), (Ids{11}));
    EXPECT_EQ(slow.accessibilityReads(), 6u);
    EXPECT_EQ(slow.now() - slowStart, 0.75);
}

TEST(AccessibilityWindowEnumerationServiceTests,
     SetsTimeoutBeforeReadingAnyElementOfOtherProcesses) {
    Harness harness;
    // Any read of the program's own tree would cost time or fail.
    SimulatedApplication self;
    self.accessibilityResponseDelay = 10;
    harness.launch(ownProcess, "Orvane", self);
    harness.launch(editor, "Editor");
    harness.launch(browser, "Browser");
    harness.add(window(1, ownProcess, "Switcher"));
    harness.add(window(11, editor, "Draft"));
    harness.add(window(12, editor, std::nullopt));
    // The browser's only entry is a menu, yet its tree is still read.
    auto menu = window(21, browser, "Menu");
    menu.layer = 25;
    harness.add(menu);
    auto recording = std::make_shared<RecordingAccessibility>(harness.desktop->accessibilityPort());
    harness.accessibility = recording;
    const double start = harness.now();

    EXPECT_EQ(identifiers(harness.enumerate()), (Ids{12, 11}));

    EXPECT_EQ(harness.now(), start);
    std::vector<std::string> elements;
    for (const auto& [element, calls] : recording->calls) {
        elements.push_back(element);
    }
    EXPECT_THAT(elements, ElementsAre("application 200", "application 300", "window 11",
                                      "window 12", "window 21"));
    const std::vector<std::string> applicationCalls = {"timeout 0.25", "AXWindows"};
    EXPECT_EQ(recording->calls["application 200"], applicationCalls);
    EXPECT_EQ(recording->calls["application 300"], applicationCalls);
    for (const char* element : {"window 11", "window 12", "window 21"}) {
        SCOPED_TRACE(element);
        auto calls = recording->calls[element];
        ASSERT_FALSE(calls.empty());
        EXPECT_EQ(calls.front(), "timeout 0.25");
        calls.erase(calls.begin());
        EXPECT_THAT(calls, UnorderedElementsAre("AXTitle", "AXPosition", "AXSize", "AXSubrole",
                                                "AXMinimized"));
    }
    EXPECT_EQ(harness.desktop->accessibility().messagingTimeoutsSet(),
              std::vector<float>(5, 0.25f));
    EXPECT_EQ(
        harness.lines(),
        (Lines{skippedWindow(21, browser, "not on the standard window layer"),
               skippedWindow(1, ownProcess, "owned by the current process"), listed(2, 4, 2)}));
}

TEST(AccessibilityWindowEnumerationServiceTests,
     OwnWindowsAloneAreSkippedWithoutAnyAccessibilityCall) {
    Harness harness;
    harness.launch(ownProcess, "Orvane");
    harness.add(window(7, ownProcess, "Switcher"));

    EXPECT_TRUE(harness.enumerate().empty());
    EXPECT_EQ(harness.accessibilityReads(), 0u);
    EXPECT_TRUE(harness.desktop->accessibility().messagingTimeoutsSet().empty());
    EXPECT_EQ(harness.lines(),
              (Lines{"debug: Skipped window 7 of process 100: owned by the current process",
                     listed(0, 1, 1)}));
}

TEST(AccessibilityWindowEnumerationServiceTests, NamesApplicationByWorkspaceThenListThenDefault) {
    struct Case {
        const char* name;
        std::optional<RunningApplication> running;
        OptionalText ownerName;
        std::string expected;
    };
    const auto named = running(editor, "Workspace Mail");
    const auto unnamed = running(editor, std::nullopt);
    const Case cases[] = {
        {"running with a name", named, "List Mail", "Workspace Mail"},
        {"running without a name", unnamed, "List Mail", "List Mail"},
        {"not running", std::nullopt, "List Mail", "List Mail"},
        {"not running, empty owner name", std::nullopt, "", ""},
        {"not running, no owner name", std::nullopt, std::nullopt, "Unknown application"},
        {"running without a name, no owner name", unnamed, std::nullopt, "Unknown application"},
    };
    for (const auto& testCase : cases) {
        SCOPED_TRACE(testCase.name);
        Harness harness;
        // The simulated list takes the owner name from the simulated application.
        harness.launch(editor, testCase.ownerName);
        harness.add(window(11, editor, "Draft"));
        auto workspace = std::make_shared<ScriptedWorkspace>();
        if (testCase.running) {
            workspace->applications[editor] = *testCase.running;
        }
        harness.workspace = workspace;

        const auto windows = harness.enumerate();
        ASSERT_EQ(windows.size(), 1u);
        EXPECT_EQ(windows.front().owningApplicationName, testCase.expected);
    }
}

TEST(AccessibilityWindowEnumerationServiceTests, LooksUpEachApplicationOncePerEnumeration) {
    Harness harness;
    harness.launch(editor, "Editor");
    harness.launch(browser, "Browser");
    harness.add(window(11, editor, "One"));
    harness.add(window(21, browser, "Two"));
    harness.add(window(12, editor, "Three"));
    harness.add(window(13, editor, "Four"));
    auto workspace = std::make_shared<ScriptedWorkspace>();
    workspace->applications[editor] = running(editor, "Editor");
    workspace->applications[browser] = running(browser, "Browser");
    AccessibilityWindowEnumerationService service(ownProcess, harness.desktop->windowListPort(),
                                                  harness.desktop->accessibilityPort(), workspace);

    service.enumerateSwitchableWindows();
    EXPECT_EQ(workspace->lookups, (std::map<ProcessIdentifier, int>{{editor, 1}, {browser, 1}}));

    // A renamed application shows its new name at the next enumeration.
    workspace->applications[editor].localizedName = "Renamed";
    std::vector<std::string> names;
    for (const auto& window : service.enumerateSwitchableWindows()) {
        names.push_back(window.owningApplicationName);
    }
    EXPECT_THAT(names, ElementsAre("Renamed", "Renamed", "Browser", "Renamed"));
    EXPECT_EQ(workspace->lookups, (std::map<ProcessIdentifier, int>{{editor, 2}, {browser, 2}}));
}

}  // namespace
}  // namespace orvane
