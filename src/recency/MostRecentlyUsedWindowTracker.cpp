#include "recency/MostRecentlyUsedWindowTracker.h"

#include <algorithm>
#include <utility>

namespace orvane {

MostRecentlyUsedWindowTracker::MostRecentlyUsedWindowTracker(
    std::shared_ptr<WindowFocusEventSource> focusEventSource,
    CurrentDateProvider currentDateProvider)
    : focusEventSource_(std::move(focusEventSource)),
      currentDateProvider_(std::move(currentDateProvider)) {}

void MostRecentlyUsedWindowTracker::startTracking() {
    focusEventSource_->startObserving();
    log_.debug("Started most-recently-used window tracking");
}

void MostRecentlyUsedWindowTracker::stopTracking() {
    focusEventSource_->stopObserving();
    log_.debug("Stopped most-recently-used window tracking");
}

void MostRecentlyUsedWindowTracker::windowFocusEventDidOccur(const WindowFocusEvent& event) {
    switch (event.kind) {
        case WindowFocusEvent::Kind::focusedWindowChanged:
            if (event.element) {
                handleFocusedWindowChanged(event.processIdentifier, *event.element);
            }
            return;
        case WindowFocusEvent::Kind::applicationActivated:
            applicationActivationTimestampsByProcessIdentifier_[event.processIdentifier] =
                currentDateProvider_();
            return;
        case WindowFocusEvent::Kind::windowDestroyed:
            if (event.element) {
                handleWindowDestroyed(*event.element);
            }
            return;
        case WindowFocusEvent::Kind::applicationTerminated:
            handleApplicationTerminated(event.processIdentifier);
            return;
        case WindowFocusEvent::Kind::windowCreated:
        case WindowFocusEvent::Kind::windowMiniaturized:
        case WindowFocusEvent::Kind::windowDeminiaturized:
            // Creation and minimizing are not uses of a window; its place stays as it was.
            return;
    }
}

void MostRecentlyUsedWindowTracker::handleFocusedWindowChanged(
    ProcessIdentifier processIdentifier, const AccessibilityWindowElement& element) {
    auto known = windowIdentifiersByAccessibilityElement_.find(element);
    if (known == windowIdentifiersByAccessibilityElement_.end()) {
        // Focus often lands on a window before any enumeration has shown it; keep the moment.
        enqueuePendingFocusObservation({element, processIdentifier, currentDateProvider_()});
        return;
    }
    const WindowIdentifier windowIdentifier = known->second;
    owningProcessIdentifiersByWindowIdentifier_[windowIdentifier] = processIdentifier;
    moveToFront(windowIdentifier, currentDateProvider_());
}

void MostRecentlyUsedWindowTracker::handleWindowDestroyed(
    const AccessibilityWindowElement& element) {
    std::erase_if(pendingFocusObservations_, [&](const PendingFocusObservation& observation) {
        return observation.windowElement == element;
    });
    auto known = windowIdentifiersByAccessibilityElement_.find(element);
    if (known == windowIdentifiersByAccessibilityElement_.end()) {
        return;
    }
    const WindowIdentifier windowIdentifier = known->second;
    windowIdentifiersByAccessibilityElement_.erase(known);
    forgetWindows({windowIdentifier});
    log_.debug("Purged destroyed window %u from the recency stack", windowIdentifier);
}

void MostRecentlyUsedWindowTracker::handleApplicationTerminated(
    ProcessIdentifier processIdentifier) {
    std::erase_if(pendingFocusObservations_, [&](const PendingFocusObservation& observation) {
        return observation.processIdentifier == processIdentifier;
    });
    applicationActivationTimestampsByProcessIdentifier_.erase(processIdentifier);

    std::unordered_set<WindowIdentifier> windowsOfProcess;
    for (const auto& [windowIdentifier, owner] : owningProcessIdentifiersByWindowIdentifier_) {
        if (owner == processIdentifier) {
            windowsOfProcess.insert(windowIdentifier);
        }
    }
    if (windowsOfProcess.empty()) {
        return;
    }
    forgetWindows(windowsOfProcess);
    forgetElementsOfWindows(windowsOfProcess);
    log_.debug("Purged %ld windows of terminated process %d",
               static_cast<long>(windowsOfProcess.size()), processIdentifier);
}

void MostRecentlyUsedWindowTracker::moveToFront(WindowIdentifier windowIdentifier, Date timestamp) {
    auto& stack = recencyOrderedWindowIdentifiers_;
    if (stack.empty() || stack.front() != windowIdentifier) {
        std::erase(stack, windowIdentifier);
        stack.insert(stack.begin(), windowIdentifier);
    }
    // Taken as given even when older than the current one: the clock may have been set back.
    lastFocusedTimestampsByWindowIdentifier_[windowIdentifier] = timestamp;
}

void MostRecentlyUsedWindowTracker::enqueuePendingFocusObservation(
    PendingFocusObservation observation) {
    std::erase_if(pendingFocusObservations_, [&](const PendingFocusObservation& queued) {
        return queued.windowElement == observation.windowElement;
    });
    pendingFocusObservations_.push_back(std::move(observation));
    while (pendingFocusObservations_.size() > maximumPendingFocusObservations) {
        pendingFocusObservations_.pop_front();
    }
}

std::vector<SwitchableWindow> MostRecentlyUsedWindowTracker::orderedByRecency(
    std::vector<SwitchableWindow> windows) {
    learn(windows);
    resolvePendingFocusObservations();
    reconcile(windows);

    std::unordered_map<WindowIdentifier, std::ptrdiff_t> stackIndexByWindowIdentifier;
    stackIndexByWindowIdentifier.reserve(recencyOrderedWindowIdentifiers_.size());
    for (std::size_t index = 0; index < recencyOrderedWindowIdentifiers_.size(); ++index) {
        stackIndexByWindowIdentifier.emplace(recencyOrderedWindowIdentifiers_[index],
                                             static_cast<std::ptrdiff_t>(index));
    }

    // Each group holds positions in `windows` with the key it sorts by.
    std::vector<std::pair<std::ptrdiff_t, std::size_t>> onStack;
    std::vector<std::pair<Date, std::size_t>> ofActivatedApplication;
    std::vector<std::size_t> unknown;
    for (std::size_t listIndex = 0; listIndex < windows.size(); ++listIndex) {
        auto& window = windows[listIndex];
        auto timestamp = lastFocusedTimestampsByWindowIdentifier_.find(window.windowIdentifier);
        if (timestamp != lastFocusedTimestampsByWindowIdentifier_.end()) {
            window.lastFocusedTimestamp = timestamp->second;
        }
        auto stackIndex = stackIndexByWindowIdentifier.find(window.windowIdentifier);
        if (stackIndex != stackIndexByWindowIdentifier.end()) {
            onStack.emplace_back(stackIndex->second, listIndex);
            continue;
        }
        auto activation = applicationActivationTimestampsByProcessIdentifier_.find(
            window.owningProcessIdentifier);
        if (activation != applicationActivationTimestampsByProcessIdentifier_.end()) {
            ofActivatedApplication.emplace_back(activation->second, listIndex);
            continue;
        }
        unknown.push_back(listIndex);
    }

    std::sort(onStack.begin(), onStack.end());
    std::sort(ofActivatedApplication.begin(), ofActivatedApplication.end(),
              [](const auto& left, const auto& right) {
                  if (left.first != right.first) {
                      return left.first > right.first;
                  }
                  return left.second < right.second;
              });

    std::vector<SwitchableWindow> ordered;
    ordered.reserve(windows.size());
    for (const auto& [stackIndex, listIndex] : onStack) {
        ordered.push_back(std::move(windows[listIndex]));
    }
    for (const auto& [activation, listIndex] : ofActivatedApplication) {
        ordered.push_back(std::move(windows[listIndex]));
    }
    for (auto listIndex : unknown) {
        ordered.push_back(std::move(windows[listIndex]));
    }
    return ordered;
}

void MostRecentlyUsedWindowTracker::learn(const std::vector<SwitchableWindow>& windows) {
    for (const auto& window : windows) {
        if (window.accessibilityElement) {
            windowIdentifiersByAccessibilityElement_.insert_or_assign(*window.accessibilityElement,
                                                                      window.windowIdentifier);
        }
        owningProcessIdentifiersByWindowIdentifier_[window.windowIdentifier] =
            window.owningProcessIdentifier;
    }
}

void MostRecentlyUsedWindowTracker::resolvePendingFocusObservations() {
    if (pendingFocusObservations_.empty()) {
        return;
    }
    std::deque<PendingFocusObservation> stillPending;
    for (auto& observation : pendingFocusObservations_) {
        auto known = windowIdentifiersByAccessibilityElement_.find(observation.windowElement);
        if (known == windowIdentifiersByAccessibilityElement_.end()) {
            stillPending.push_back(std::move(observation));
            continue;
        }
        const WindowIdentifier windowIdentifier = known->second;
        owningProcessIdentifiersByWindowIdentifier_[windowIdentifier] =
            observation.processIdentifier;
        // The moment of the focus, not of the enumeration that revealed the window.
        moveToFront(windowIdentifier, observation.observedTimestamp);
        log_.debug("Resolved pending focus observation to window %u", windowIdentifier);
    }
    pendingFocusObservations_ = std::move(stillPending);
}

void MostRecentlyUsedWindowTracker::reconcile(const std::vector<SwitchableWindow>& windows) {
    // An empty enumeration says more about the enumeration than about the windows.
    if (windows.empty()) {
        return;
    }
    std::unordered_set<WindowIdentifier> present;
    present.reserve(windows.size());
    for (const auto& window : windows) {
        present.insert(window.windowIdentifier);
    }

    std::unordered_set<WindowIdentifier> markedForPurge;
    for (const auto& [windowIdentifier, owner] : owningProcessIdentifiersByWindowIdentifier_) {
        if (present.contains(windowIdentifier)) {
            consecutiveAbsenceCountsByWindowIdentifier_.erase(windowIdentifier);
            continue;
        }
        auto& absences = consecutiveAbsenceCountsByWindowIdentifier_[windowIdentifier];
        ++absences;
        if (absences >= absenceCountBeforePurge) {
            markedForPurge.insert(windowIdentifier);
        }
    }
    if (markedForPurge.empty()) {
        return;
    }
    forgetWindows(markedForPurge);
    forgetElementsOfWindows(markedForPurge);
    log_.debug("Reconciliation purged %ld windows absent from %ld consecutive enumerations",
               static_cast<long>(markedForPurge.size()),
               static_cast<long>(absenceCountBeforePurge));
}

void MostRecentlyUsedWindowTracker::recordImmediateFocus(const SwitchableWindow& window) {
    if (window.accessibilityElement) {
        windowIdentifiersByAccessibilityElement_.insert_or_assign(*window.accessibilityElement,
                                                                  window.windowIdentifier);
    }
    owningProcessIdentifiersByWindowIdentifier_[window.windowIdentifier] =
        window.owningProcessIdentifier;
    moveToFront(window.windowIdentifier, currentDateProvider_());
    log_.debug("Recorded immediate focus of window %u", window.windowIdentifier);
}

void MostRecentlyUsedWindowTracker::forgetWindows(
    const std::unordered_set<WindowIdentifier>& windowIdentifiers) {
    std::erase_if(recencyOrderedWindowIdentifiers_, [&](WindowIdentifier windowIdentifier) {
        return windowIdentifiers.contains(windowIdentifier);
    });
    for (auto windowIdentifier : windowIdentifiers) {
        lastFocusedTimestampsByWindowIdentifier_.erase(windowIdentifier);
        owningProcessIdentifiersByWindowIdentifier_.erase(windowIdentifier);
        // A forgotten window counts as new if its identifier ever comes back.
        consecutiveAbsenceCountsByWindowIdentifier_.erase(windowIdentifier);
    }
}

void MostRecentlyUsedWindowTracker::forgetElementsOfWindows(
    const std::unordered_set<WindowIdentifier>& windowIdentifiers) {
    std::erase_if(windowIdentifiersByAccessibilityElement_,
                  [&](const auto& entry) { return windowIdentifiers.contains(entry.second); });
}

}  // namespace orvane
