// Decides, for every key-down, key-up and modifier change of the desktop, whether it belongs to a
// switcher or launcher gesture: drives the sessions and answers swallow or pass.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <unordered_set>
#include <vector>

#include "core/Identifiers.h"
#include "core/LauncherSessionDriving.h"
#include "core/Logger.h"
#include "core/PreferencesProviding.h"
#include "core/SwitcherInteractionStateMachine.h"
#include "core/SwitcherSessionDriving.h"
#include "interception/TypedTextFilter.h"
#include "platform/EventTapPort.h"
#include "platform/KeyboardEvent.h"
#include "platform/NotificationCenterPort.h"
#include "platform/RunLoopPort.h"

namespace orvane {

class GlobalShortcutInterceptor : public std::enable_shared_from_this<GlobalShortcutInterceptor> {
  public:
    // The platform pieces the tap's lifecycle needs; without them no tap can be installed.
    struct Platform {
        std::shared_ptr<EventTapPort> eventTaps;
        std::shared_ptr<NotificationCenterPort> workspaceNotifications;
        std::shared_ptr<NotificationCenterPort> distributedNotifications;
        std::shared_ptr<RunLoopPort> runLoop;
    };

    // Held by a `std::shared_ptr` when a tap is to be installed: the interruption observers hold
    // it weakly. It must outlive its tap; the tap's callback holds no reference of its own. With
    // an empty `platform` only the decision on events works; installing a tap fails, logged.
    GlobalShortcutInterceptor(std::shared_ptr<SwitcherSessionDriving> sessionDriver,
                              std::shared_ptr<LauncherSessionDriving> launcherSessionDriver,
                              std::shared_ptr<PreferencesProviding> preferencesProvider,
                              Platform platform);

    // Creates and enables the tap if there is none; true when a tap exists afterwards.
    bool installEventTap();
    // Takes the tap away and ends every gesture.
    void removeEventTap();
    // Ends every gesture but keeps the tap; `reason` is for the log.
    void resetInteractionState(const std::string& reason);
    bool hasEventTap() const { return eventTap_.has_value(); }
    const std::optional<EventTapHandle>& eventTap() const { return eventTap_; }
    bool isEventTapEnabled() const;

    // True when the event is to be swallowed. Main thread only; every key event of the desktop
    // passes through here, so outside a gesture it does only a preferences read, the
    // classification and one set lookup.
    bool handleEvent(KeyboardEventType type, const KeyboardEvent& event);

    const SwitcherInteractionStateMachine& interactionStateMachine() const {
        return interactionStateMachine_;
    }
    bool holdModifierIsPressed() const { return holdModifierIsPressed_; }
    const std::unordered_set<EventKeyCode>& keyCodesWithConsumedKeyDown() const {
        return keyCodesWithConsumedKeyDown_;
    }

  private:
    void handleTapDisabled(KeyboardEventType type, const SwitcherPreferences& preferences);
    void installInterruptionObservers();
    void clearGestureState();
    bool handleKeyDown(const KeyboardEvent& event, const SwitcherPreferences& preferences);
    bool handleKeyUp(const KeyboardEvent& event);
    void handleFlagsChanged(const KeyboardEvent& event, const SwitcherPreferences& preferences);
    std::optional<SwitcherInteractionInput> classify(EventKeyCode keyCode, KeyboardEventFlags flags,
                                                     const SwitcherPreferences& preferences) const;
    void perform(const SwitcherInteractionAction& action);
    void handleLauncherKey(EventKeyCode keyCode, const KeyboardEvent& event,
                           KeyboardEventFlags flags, bool isAutorepeat);

    std::shared_ptr<SwitcherSessionDriving> sessionDriver_;
    std::shared_ptr<LauncherSessionDriving> launcherSessionDriver_;
    std::shared_ptr<PreferencesProviding> preferencesProvider_;
    Platform platform_;
    std::optional<EventTapHandle> eventTap_;
    std::optional<RunLoopSourceHandle> eventTapRunLoopSource_;
    std::vector<NotificationObservationToken> workspaceInterruptionObservationTokens_;
    std::vector<NotificationObservationToken> distributedInterruptionObservationTokens_;
    const Logger& log_ = Logger::forCategory(LogCategory::shortcutinterception);
    SwitcherInteractionStateMachine interactionStateMachine_;
    bool holdModifierIsPressed_ = false;
    std::unordered_set<EventKeyCode> keyCodesWithConsumedKeyDown_;
    TypedTextFilter typedTextFilter_;
};

}  // namespace orvane
