// Keeps the stack of recently focused windows from the desktop's focus events and puts each
// enumeration of windows in most-recently-used order.
#pragma once

#include <cstddef>
#include <deque>
#include <functional>
#include <memory>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "core/AccessibilityWindowElement.h"
#include "core/Date.h"
#include "core/Identifiers.h"
#include "core/Logger.h"
#include "core/MostRecentlyUsedWindowOrdering.h"
#include "core/SwitchableWindow.h"
#include "core/WindowFocusEventObserving.h"
#include "core/WindowFocusEventSource.h"

namespace orvane {

class MostRecentlyUsedWindowTracker final : public MostRecentlyUsedWindowOrdering,
                                            public WindowFocusEventObserving {
  public:
    using CurrentDateProvider = std::function<Date()>;

    // A focus on an element no enumeration has shown yet; it waits for one that does.
    struct PendingFocusObservation {
        AccessibilityWindowElement windowElement;
        ProcessIdentifier processIdentifier = 0;
        Date observedTimestamp;
    };

    static constexpr std::size_t maximumPendingFocusObservations = 32;
    // How many consecutive non-empty enumerations may miss a window before it is forgotten.
    static constexpr std::ptrdiff_t absenceCountBeforePurge = 10;

    MostRecentlyUsedWindowTracker(std::shared_ptr<WindowFocusEventSource> focusEventSource,
                                  CurrentDateProvider currentDateProvider);

    void startTracking() override;
    void stopTracking() override;
    std::vector<SwitchableWindow> orderedByRecency(std::vector<SwitchableWindow> windows) override;
    void recordImmediateFocus(const SwitchableWindow& window) override;

    void windowFocusEventDidOccur(const WindowFocusEvent& event) override;

    // Index 0 is the most recently focused window.
    const std::vector<WindowIdentifier>& recencyOrderedWindowIdentifiers() const {
        return recencyOrderedWindowIdentifiers_;
    }
    const std::unordered_map<WindowIdentifier, Date>& lastFocusedTimestampsByWindowIdentifier()
        const {
        return lastFocusedTimestampsByWindowIdentifier_;
    }
    const std::unordered_map<ProcessIdentifier, Date>&
    applicationActivationTimestampsByProcessIdentifier() const {
        return applicationActivationTimestampsByProcessIdentifier_;
    }
    const std::unordered_map<AccessibilityWindowElement, WindowIdentifier>&
    windowIdentifiersByAccessibilityElement() const {
        return windowIdentifiersByAccessibilityElement_;
    }
    const std::unordered_map<WindowIdentifier, ProcessIdentifier>&
    owningProcessIdentifiersByWindowIdentifier() const {
        return owningProcessIdentifiersByWindowIdentifier_;
    }
    // Oldest first.
    const std::deque<PendingFocusObservation>& pendingFocusObservations() const {
        return pendingFocusObservations_;
    }
    const std::unordered_map<WindowIdentifier, std::ptrdiff_t>&
    consecutiveAbsenceCountsByWindowIdentifier() const {
        return consecutiveAbsenceCountsByWindowIdentifier_;
    }

  private:
    void handleFocusedWindowChanged(ProcessIdentifier processIdentifier,
                                    const AccessibilityWindowElement& element);
    void handleWindowDestroyed(const AccessibilityWindowElement& element);
    void handleApplicationTerminated(ProcessIdentifier processIdentifier);
    void moveToFront(WindowIdentifier windowIdentifier, Date timestamp);
    void enqueuePendingFocusObservation(PendingFocusObservation observation);
    void learn(const std::vector<SwitchableWindow>& windows);
    void resolvePendingFocusObservations();
    void reconcile(const std::vector<SwitchableWindow>& windows);
    // Leaves the element map alone: a destroyed window loses only the element it was destroyed by.
    void forgetWindows(const std::unordered_set<WindowIdentifier>& windowIdentifiers);
    void forgetElementsOfWindows(const std::unordered_set<WindowIdentifier>& windowIdentifiers);

    std::shared_ptr<WindowFocusEventSource> focusEventSource_;
    CurrentDateProvider currentDateProvider_;
    std::vector<WindowIdentifier> recencyOrderedWindowIdentifiers_;
    std::unordered_map<WindowIdentifier, Date> lastFocusedTimestampsByWindowIdentifier_;
    std::unordered_map<ProcessIdentifier, Date> applicationActivationTimestampsByProcessIdentifier_;
    std::unordered_map<AccessibilityWindowElement, WindowIdentifier>
        windowIdentifiersByAccessibilityElement_;
    std::unordered_map<WindowIdentifier, ProcessIdentifier>
        owningProcessIdentifiersByWindowIdentifier_;
    std::deque<PendingFocusObservation> pendingFocusObservations_;
    std::unordered_map<WindowIdentifier, std::ptrdiff_t>
        consecutiveAbsenceCountsByWindowIdentifier_;
    const Logger& log_ = Logger::forCategory(LogCategory::recencytracking);
};

}  // namespace orvane
