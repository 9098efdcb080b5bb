// Lists the switchable windows of this moment: reads the window server's two lists and every
// process's Accessibility windows, pairs them, and makes `SwitchableWindow` records.
#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "core/Logger.h"
#include "core/WindowEnumerationService.h"
#include "enumeration/CoreGraphicsWindowListEntry.h"
#include "enumeration/WindowCorrelation.h"
#include "platform/AccessibilityPort.h"
#include "platform/WindowListPort.h"
#include "platform/WorkspacePort.h"

namespace orvane {

class AccessibilityWindowEnumerationService final : public WindowEnumerationService {
  public:
    using ElementHandle = std::shared_ptr<const AccessibilityWindowElement>;
    using Correlation = WindowCorrelation<ElementHandle>;

    // Every element is given this messaging timeout before anything is read from it, so that a
    // hung application costs at most this much per element.
    static constexpr float messagingTimeoutSeconds = 0.25f;

    AccessibilityWindowEnumerationService(ProcessIdentifier currentProcessIdentifier,
                                          std::shared_ptr<WindowListPort> windowList,
                                          std::shared_ptr<AccessibilityPort> accessibility,
                                          std::shared_ptr<WorkspacePort> workspace);

    // Synchronous, on the main thread; never fails, each fault only narrows the result. Read anew
    // unless the window list's revision says nothing changed since the last read.
    std::vector<SwitchableWindow> enumerateSwitchableWindows() override;

  private:
    std::vector<SwitchableWindow> readSwitchableWindows();

    std::vector<CoreGraphicsWindowListEntry> readEntries();
    std::vector<CoreGraphicsWindowListEntry> readList(std::uint32_t options,
                                                      bool isPresentInOnScreenList);
    std::vector<Correlation::Snapshot> readSnapshots(ProcessIdentifier process);
    Correlation::Snapshot readSnapshot(const AccessibilityElementHandle& element);

    ProcessIdentifier currentProcessIdentifier_;
    Correlation windowCorrelation_;
    std::shared_ptr<WindowListPort> windowList_;
    std::shared_ptr<AccessibilityPort> accessibility_;
    std::shared_ptr<WorkspacePort> workspace_;
    // The last read and the revision it holds for.
    std::vector<SwitchableWindow> kept_;
    std::optional<std::uint64_t> keptRevision_;
    const Logger& log_ = Logger::forCategory(LogCategory::windowenumeration);
};

}  // namespace orvane
