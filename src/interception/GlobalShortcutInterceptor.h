// Decides, for every key-down, key-up and modifier change of the desktop, whether it belongs to a
// switcher or launcher gesture: drives the sessions and answers swallow or pass.
#pragma once

#include <memory>
#include <optional>
#include <unordered_set>

#include "core/Identifiers.h"
#include "core/LauncherSessionDriving.h"
#include "core/Logger.h"
#include "core/PreferencesProviding.h"
#include "core/SwitcherInteractionStateMachine.h"
#include "core/SwitcherSessionDriving.h"
#include "interception/TypedTextFilter.h"
#include "platform/KeyboardEvent.h"

namespace orvane {

class GlobalShortcutInterceptor {
  public:
    GlobalShortcutInterceptor(std::shared_ptr<SwitcherSessionDriving> sessionDriver,
                              std::shared_ptr<LauncherSessionDriving> launcherSessionDriver,
                              std::shared_ptr<PreferencesProviding> preferencesProvider);

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
    const Logger& log_ = Logger::forCategory(LogCategory::shortcutinterception);
    SwitcherInteractionStateMachine interactionStateMachine_;
    bool holdModifierIsPressed_ = false;
    std::unordered_set<EventKeyCode> keyCodesWithConsumedKeyDown_;
    TypedTextFilter typedTextFilter_;
};

}  // namespace orvane
