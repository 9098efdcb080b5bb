#include "enumeration/AccessibilityWindowEnumerationService.h"

#include <algorithm>
#include <unordered_map>
#include <unordered_set>
#include <utility>

namespace orvane {

namespace {

constexpr std::uint32_t onScreenListOptions =
    window_list_option::onScreenOnly | window_list_option::excludeDesktopElements;
constexpr std::uint32_t fullListOptions = window_list_option::excludeDesktopElements;

bool isArrayOfDictionariesWithTextKeys(const PropertyListValue& value) {
    const auto* items = value.array();
    if (items == nullptr) {
        return false;
    }
    return std::all_of(items->begin(), items->end(), [](const PropertyListValue& item) {
        const auto* entries = item.dictionary();
        return entries != nullptr &&
               std::all_of(entries->begin(), entries->end(),
                           [](const auto& entry) { return entry.first.text() != nullptr; });
    });
}

std::optional<CoreGraphicsWindowListEntry> parseEntry(const PropertyListValue& dictionary,
                                                      bool isPresentInOnScreenList) {
    const auto* number = dictionary.find(window_list_key::number);
    const auto identifier = number ? number->exactInteger<WindowIdentifier>() : std::nullopt;
    if (!identifier) {
        return std::nullopt;
    }
    const auto* owner = dictionary.find(window_list_key::ownerProcessIdentifier);
    const auto process = owner ? owner->exactInteger<ProcessIdentifier>() : std::nullopt;
    if (!process) {
        return std::nullopt;
    }
    const auto* boundsValue = dictionary.find(window_list_key::bounds);
    if (boundsValue == nullptr || boundsValue->dictionary() == nullptr) {
        return std::nullopt;
    }
    const auto bounds = rectFromDictionaryRepresentation(*boundsValue);
    if (!bounds) {
        return std::nullopt;
    }

    CoreGraphicsWindowListEntry entry;
    entry.windowIdentifier = *identifier;
    entry.owningProcessIdentifier = *process;
    entry.bounds = *bounds;
    entry.isPresentInOnScreenList = isPresentInOnScreenList;
    if (const auto* ownerName = dictionary.find(window_list_key::ownerName)) {
        if (const auto* text = ownerName->text()) {
            entry.owningApplicationName = *text;
        }
    }
    if (const auto* name = dictionary.find(window_list_key::name)) {
        if (const auto* text = name->text()) {
            entry.windowTitle = *text;
        }
    }
    entry.windowLayer = 0;
    if (const auto* layer = dictionary.find(window_list_key::layer)) {
        entry.windowLayer = layer->exactInteger<std::ptrdiff_t>().value_or(0);
    }
    entry.alphaValue = 1.0;
    if (const auto* alpha = dictionary.find(window_list_key::alpha)) {
        entry.alphaValue = alpha->floatingPoint().value_or(1.0);
    }
    return entry;
}

template <typename Value>
std::optional<Value> readAttribute(const AccessibilityPort& accessibility,
                                   const AccessibilityElementHandle& element,
                                   std::string_view attribute) {
    auto reading = accessibility.copyAttributeValue(element, attribute);
    if (reading.error != accessibility_error::success || !reading.value) {
        return std::nullopt;
    }
    if (const auto* value = std::get_if<Value>(&reading.value->storage)) {
        return *value;
    }
    return std::nullopt;
}

}  // namespace

AccessibilityWindowEnumerationService::AccessibilityWindowEnumerationService(
    ProcessIdentifier currentProcessIdentifier, std::shared_ptr<WindowListPort> windowList,
    std::shared_ptr<AccessibilityPort> accessibility, std::shared_ptr<WorkspacePort> workspace)
    : currentProcessIdentifier_(currentProcessIdentifier),
      windowCorrelation_(currentProcessIdentifier),
      windowList_(std::move(windowList)),
      accessibility_(std::move(accessibility)),
      workspace_(std::move(workspace)) {}

std::vector<SwitchableWindow> AccessibilityWindowEnumerationService::enumerateSwitchableWindows() {
    if (keptRevision_ && keptRevision_ == windowList_->revision()) {
        return kept_;
    }
    auto windows = readSwitchableWindows();
    // Taken after the read, which may itself have learnt something (a frame it had to ask for).
    keptRevision_ = windowList_->revision();
    if (keptRevision_) {
        kept_ = windows;
    }
    return windows;
}

std::vector<SwitchableWindow> AccessibilityWindowEnumerationService::readSwitchableWindows() {
    const auto entries = readEntries();
    if (entries.empty()) {
        log_.error("CoreGraphics window list is empty; returning no switchable windows");
        return {};
    }

    // Every process with an entry is read, whatever its entries look like: judging comes later.
    Correlation::SnapshotsByProcessIdentifier snapshotsByProcessIdentifier;
    std::unordered_set<ProcessIdentifier> processesRead;
    for (const auto& entry : entries) {
        const auto process = entry.owningProcessIdentifier;
        if (process == currentProcessIdentifier_ || !processesRead.insert(process).second) {
            continue;
        }
        auto snapshots = readSnapshots(process);
        if (!snapshots.empty()) {
            snapshotsByProcessIdentifier.emplace(process, std::move(snapshots));
        }
    }

    auto correlation = windowCorrelation_.correlate(entries, snapshotsByProcessIdentifier);
    for (const auto& excluded : correlation.excludedEntries) {
        log_.debug("Skipped window %u of process %d: %{public}s",
                   excluded.windowListEntry.windowIdentifier,
                   excluded.windowListEntry.owningProcessIdentifier,
                   description(excluded.exclusionReason));
    }

    // A process's name is looked up once; its later windows take the name of its first.
    std::unordered_map<ProcessIdentifier, std::string> applicationNamesByProcessIdentifier;
    std::vector<SwitchableWindow> windows;
    windows.reserve(correlation.correlatedWindows.size());
    for (auto& correlated : correlation.correlatedWindows) {
        const auto& entry = correlated.windowListEntry;
        auto name = applicationNamesByProcessIdentifier.find(entry.owningProcessIdentifier);
        if (name == applicationNamesByProcessIdentifier.end()) {
            std::string resolved = "Unknown application";
            auto running = workspace_->runningApplication(entry.owningProcessIdentifier);
            if (running && running->localizedName) {
                resolved = *running->localizedName;
            } else if (entry.owningApplicationName) {
                resolved = *entry.owningApplicationName;
            }
            name = applicationNamesByProcessIdentifier
                       .emplace(entry.owningProcessIdentifier, std::move(resolved))
                       .first;
        }
        SwitchableWindow window;
        window.windowIdentifier = entry.windowIdentifier;
        window.owningProcessIdentifier = entry.owningProcessIdentifier;
        window.owningApplicationName = name->second;
        window.windowTitle = std::move(correlated.resolvedWindowTitle);
        window.accessibilityElement = correlated.accessibilitySnapshot.elementHandle;
        window.isMinimized = correlated.isMinimized;
        window.screenFrame = entry.bounds;
        window.lastFocusedTimestamp = Date::distantPast();
        windows.push_back(std::move(window));
    }

    log_.debug("Enumerated %ld switchable windows from %ld window list entries (%ld skipped)",
               windows.size(), entries.size(), correlation.excludedEntries.size());
    return windows;
}

std::vector<CoreGraphicsWindowListEntry> AccessibilityWindowEnumerationService::readEntries() {
    auto entries = readList(onScreenListOptions, true);
    auto fullList = readList(fullListOptions, false);
    // A window on screen keeps its on-screen entry and its place in front-to-back order.
    std::unordered_set<WindowIdentifier> onScreenIdentifiers;
    for (const auto& entry : entries) {
        onScreenIdentifiers.insert(entry.windowIdentifier);
    }
    for (auto& entry : fullList) {
        if (!onScreenIdentifiers.contains(entry.windowIdentifier)) {
            entries.push_back(std::move(entry));
        }
    }
    return entries;
}

std::vector<CoreGraphicsWindowListEntry> AccessibilityWindowEnumerationService::readList(
    std::uint32_t options, bool isPresentInOnScreenList) {
    auto list = windowList_->copyWindowInfo(options, 0);
    if (!list || !isArrayOfDictionariesWithTextKeys(*list)) {
        log_.error("CGWindowListCopyWindowInfo returned nothing for options %u", options);
        return {};
    }
    std::vector<CoreGraphicsWindowListEntry> entries;
    entries.reserve(list->array()->size());
    for (const auto& dictionary : *list->array()) {
        auto entry = parseEntry(dictionary, isPresentInOnScreenList);
        if (!entry) {
            log_.debug("Skipped a window list entry missing its identifier, owner, or bounds");
            continue;
        }
        entries.push_back(std::move(*entry));
    }
    return entries;
}

std::vector<AccessibilityWindowEnumerationService::Correlation::Snapshot>
AccessibilityWindowEnumerationService::readSnapshots(ProcessIdentifier process) {
    auto application = accessibility_->createApplicationElement(process);
    accessibility_->setMessagingTimeout(application, messagingTimeoutSeconds);
    auto reading = accessibility_->copyAttributeValue(application, "AXWindows");
    if (reading.error != accessibility_error::success || !reading.value) {
        log_.debug("Process %d exposed no readable Accessibility windows (AXError %d)", process,
                   reading.error);
        return {};
    }
    const auto* items = std::get_if<AccessibilityValue::Array>(&reading.value->storage);
    if (items == nullptr) {
        log_.debug("Process %d returned a non-array Accessibility windows attribute", process);
        return {};
    }
    std::vector<Correlation::Snapshot> snapshots;
    snapshots.reserve(items->size());
    for (const auto& item : *items) {
        const auto* element = std::get_if<AccessibilityElementHandle>(&item.storage);
        if (element == nullptr || !*element) {
            continue;
        }
        snapshots.push_back(readSnapshot(*element));
    }
    return snapshots;
}

AccessibilityWindowEnumerationService::Correlation::Snapshot
AccessibilityWindowEnumerationService::readSnapshot(const AccessibilityElementHandle& element) {
    accessibility_->setMessagingTimeout(element, messagingTimeoutSeconds);
    Correlation::Snapshot snapshot;
    snapshot.elementHandle = std::make_shared<const AccessibilityWindowElement>(element);
    snapshot.windowTitle = readAttribute<std::string>(*accessibility_, element, "AXTitle");
    snapshot.frame = snapshot.elementHandle->readScreenFrame(*accessibility_);
    snapshot.subrole = readAttribute<std::string>(*accessibility_, element, "AXSubrole");
    snapshot.isMinimized = readAttribute<bool>(*accessibility_, element, "AXMinimized");
    return snapshot;
}

}  // namespace orvane
