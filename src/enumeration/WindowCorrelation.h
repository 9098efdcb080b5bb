// Pairs the window server's window list with the Accessibility windows of each process and decides
// which windows the switcher offers. Pure: everything it needs comes in with each call.
#pragma once

#include <cmath>
#include <cstddef>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "core/Identifiers.h"
#include "enumeration/AccessibilityWindowSnapshot.h"
#include "enumeration/CoreGraphicsWindowListEntry.h"
#include "enumeration/WindowExclusionReason.h"
#include "enumeration/WindowTitleComparison.h"

namespace orvane {

// A window the switcher can offer: the window list's view of it and the Accessibility one.
template <typename Handle>
struct CorrelatedWindow {
    CoreGraphicsWindowListEntry windowListEntry;
    AccessibilityWindowSnapshot<Handle> accessibilitySnapshot;
    // The window list's title when it has one, else the Accessibility one, else empty.
    std::string resolvedWindowTitle;
    bool isMinimized = false;

    friend bool operator==(const CorrelatedWindow&, const CorrelatedWindow&) = default;
};

// An entry the switcher leaves out, with the first reason that applied to it.
struct ExcludedWindowListEntry {
    CoreGraphicsWindowListEntry windowListEntry;
    WindowExclusionReason exclusionReason = WindowExclusionReason::ownedByCurrentProcess;

    friend bool operator==(const ExcludedWindowListEntry&,
                           const ExcludedWindowListEntry&) = default;
};

// Every entry lands in exactly one of the two lists; both keep the window list's order.
template <typename Handle>
struct WindowCorrelationResult {
    std::vector<CorrelatedWindow<Handle>> correlatedWindows;
    std::vector<ExcludedWindowListEntry> excludedEntries;
};

template <typename Handle>
class WindowCorrelation {
  public:
    using Snapshot = AccessibilityWindowSnapshot<Handle>;
    using SnapshotsByProcessIdentifier =
        std::unordered_map<ProcessIdentifier, std::vector<Snapshot>>;
    using Result = WindowCorrelationResult<Handle>;

    static constexpr double defaultFrameMatchingTolerance = 2.0;
    static constexpr double defaultMinimumWindowSideLength = 40.0;

    explicit WindowCorrelation(ProcessIdentifier currentProcessIdentifier,
                               double frameMatchingTolerance = defaultFrameMatchingTolerance,
                               double minimumWindowSideLength = defaultMinimumWindowSideLength)
        : currentProcessIdentifier_(currentProcessIdentifier),
          frameMatchingTolerance_(frameMatchingTolerance),
          minimumWindowSideLength_(minimumWindowSideLength) {}

    ProcessIdentifier currentProcessIdentifier() const { return currentProcessIdentifier_; }
    double frameMatchingTolerance() const { return frameMatchingTolerance_; }
    double minimumWindowSideLength() const { return minimumWindowSideLength_; }

    // A process missing from the map has no Accessibility windows. Each snapshot pairs with at
    // most one entry, the first in window-list order to claim it.
    Result correlate(const std::vector<CoreGraphicsWindowListEntry>& entries,
                     const SnapshotsByProcessIdentifier& snapshotsByProcessIdentifier) const {
        Result result;
        result.correlatedWindows.reserve(entries.size());
        std::unordered_map<ProcessIdentifier, std::vector<bool>>
            consumedSnapshotIndicesByProcessIdentifier;
        consumedSnapshotIndicesByProcessIdentifier.reserve(snapshotsByProcessIdentifier.size());
        const std::vector<Snapshot> noSnapshots;

        for (const CoreGraphicsWindowListEntry& entry : entries) {
            if (const auto reason = reasonBeforePairing(entry)) {
                result.excludedEntries.push_back({entry, *reason});
                continue;
            }
            const auto found = snapshotsByProcessIdentifier.find(entry.owningProcessIdentifier);
            const std::vector<Snapshot>& snapshots =
                found == snapshotsByProcessIdentifier.end() ? noSnapshots : found->second;
            std::vector<bool>& consumed =
                consumedSnapshotIndicesByProcessIdentifier[entry.owningProcessIdentifier];
            consumed.resize(snapshots.size(), false);

            const std::optional<std::size_t> index =
                matchingSnapshotIndex(entry, snapshots, consumed);
            if (!index) {
                result.excludedEntries.push_back(
                    {entry, hasTitle(entry.windowTitle)
                                ? WindowExclusionReason::missingAccessibilityPairing
                                : WindowExclusionReason::untitledWithoutAccessibilityPairing});
                continue;
            }
            // Claimed even when the subrole then excludes the entry, so no later entry of the
            // process pairs with a panel or sheet.
            consumed[*index] = true;
            const Snapshot& snapshot = snapshots[*index];
            if (snapshot.subrole && *snapshot.subrole != "AXStandardWindow") {
                result.excludedEntries.push_back(
                    {entry, WindowExclusionReason::nonStandardSubrole});
                continue;
            }
            result.correlatedWindows.push_back({entry, snapshot, resolvedTitle(entry, snapshot),
                                                snapshot.isMinimized.value_or(false)});
        }
        return result;
    }

  private:
    static bool hasTitle(const std::optional<std::string>& title) {
        return title && !title->empty();
    }

    static std::string resolvedTitle(const CoreGraphicsWindowListEntry& entry,
                                     const Snapshot& snapshot) {
        if (hasTitle(entry.windowTitle)) {
            return *entry.windowTitle;
        }
        if (hasTitle(snapshot.windowTitle)) {
            return *snapshot.windowTitle;
        }
        return {};
    }

    static bool titleMatches(const std::string& entryTitle, const Snapshot& snapshot) {
        return snapshot.windowTitle &&
               WindowTitleComparison::areCanonicallyEquivalent(entryTitle, *snapshot.windowTitle);
    }

    std::optional<WindowExclusionReason> reasonBeforePairing(
        const CoreGraphicsWindowListEntry& entry) const {
        if (entry.owningProcessIdentifier == currentProcessIdentifier_) {
            return WindowExclusionReason::ownedByCurrentProcess;
        }
        if (entry.windowLayer != 0) {
            return WindowExclusionReason::nonZeroWindowLayer;
        }
        if (entry.alphaValue == 0.0) {
            return WindowExclusionReason::fullyTransparent;
        }
        if (entry.bounds.width() < minimumWindowSideLength_ ||
            entry.bounds.height() < minimumWindowSideLength_) {
            return WindowExclusionReason::belowMinimumSize;
        }
        return std::nullopt;
    }

    bool framesMatch(const Rect& bounds, const Rect& frame) const {
        return std::abs(bounds.minX() - frame.minX()) <= frameMatchingTolerance_ &&
               std::abs(bounds.minY() - frame.minY()) <= frameMatchingTolerance_ &&
               std::abs(bounds.width() - frame.width()) <= frameMatchingTolerance_ &&
               std::abs(bounds.height() - frame.height()) <= frameMatchingTolerance_;
    }

    // A lone frame match wins outright, since titles may differ between the two views. Several
    // matches (tabs, stacked windows) are told apart by title, else taken in list order. Without
    // a frame match, as while a window moves, the title alone may pair it.
    std::optional<std::size_t> matchingSnapshotIndex(const CoreGraphicsWindowListEntry& entry,
                                                     const std::vector<Snapshot>& snapshots,
                                                     const std::vector<bool>& consumed) const {
        const bool entryHasTitle = hasTitle(entry.windowTitle);
        std::optional<std::size_t> firstCandidate;
        std::optional<std::size_t> firstCandidateWithTitle;
        std::size_t candidateCount = 0;
        for (std::size_t index = 0; index < snapshots.size(); ++index) {
            const Snapshot& snapshot = snapshots[index];
            if (consumed[index] || !snapshot.frame || !framesMatch(entry.bounds, *snapshot.frame)) {
                continue;
            }
            ++candidateCount;
            if (candidateCount == 1) {
                firstCandidate = index;
                continue;
            }
            // Titles are compared only once a second candidate shows up, and the first match
            // settles it.
            if (!entryHasTitle) {
                break;
            }
            if (candidateCount == 2 &&
                titleMatches(*entry.windowTitle, snapshots[*firstCandidate])) {
                firstCandidateWithTitle = firstCandidate;
                break;
            }
            if (titleMatches(*entry.windowTitle, snapshot)) {
                firstCandidateWithTitle = index;
                break;
            }
        }
        if (candidateCount == 1) {
            return firstCandidate;
        }
        if (candidateCount > 1) {
            return firstCandidateWithTitle ? firstCandidateWithTitle : firstCandidate;
        }
        if (!entryHasTitle) {
            return std::nullopt;
        }
        for (std::size_t index = 0; index < snapshots.size(); ++index) {
            if (!consumed[index] && titleMatches(*entry.windowTitle, snapshots[index])) {
                return index;
            }
        }
        return std::nullopt;
    }

    ProcessIdentifier currentProcessIdentifier_;
    double frameMatchingTolerance_;
    double minimumWindowSideLength_;
};

}  // namespace orvane
