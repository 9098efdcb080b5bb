#include "interception/GlobalShortcutInterceptor.h"

#include <algorithm>
#include <array>
#include <utility>

#include "interception/KeyCode.h"

namespace orvane {

namespace {

// The launcher reads no more of a key's text than a composed character needs.
constexpr std::size_t maximumTypedTextLength = 4;

KeyboardEventFlags holdModifierMask(SwitcherHoldModifier modifier) {
    return modifier == SwitcherHoldModifier::control ? keyboard_event_flag::control
                                                     : keyboard_event_flag::option;
}

bool hasFlag(KeyboardEventFlags flags, KeyboardEventFlags mask) {
    return (flags & mask) != 0;
}

bool hasCommandOrControl(KeyboardEventFlags flags) {
    return hasFlag(flags, keyboard_event_flag::command | keyboard_event_flag::control);
}

}  // namespace

GlobalShortcutInterceptor::GlobalShortcutInterceptor(
    std::shared_ptr<SwitcherSessionDriving> sessionDriver,
    std::shared_ptr<LauncherSessionDriving> launcherSessionDriver,
    std::shared_ptr<PreferencesProviding> preferencesProvider)
    : sessionDriver_(std::move(sessionDriver)),
      launcherSessionDriver_(std::move(launcherSessionDriver)),
      preferencesProvider_(std::move(preferencesProvider)) {}

bool GlobalShortcutInterceptor::handleEvent(KeyboardEventType type, const KeyboardEvent& event) {
    switch (type) {
        case keyboard_event_type::keyDown:
            return handleKeyDown(event, preferencesProvider_->preferences());
        case keyboard_event_type::keyUp:
            return handleKeyUp(event);
        case keyboard_event_type::flagsChanged:
            handleFlagsChanged(event, preferencesProvider_->preferences());
            return false;
        default:
            // The tap's own disabled notices included: the tap's lifecycle re-enables it.
            return false;
    }
}

bool GlobalShortcutInterceptor::handleKeyUp(const KeyboardEvent& event) {
    const EventKeyCode keyCode = event.integerValueField(KeyboardEventField::keycode);
    return keyCodesWithConsumedKeyDown_.erase(keyCode) > 0;
}

void GlobalShortcutInterceptor::handleFlagsChanged(const KeyboardEvent& event,
                                                   const SwitcherPreferences& preferences) {
    const bool isPressed =
        hasFlag(event.flags(), holdModifierMask(preferences.shortcutConfiguration.holdModifier));
    if (isPressed == holdModifierIsPressed_) {
        return;
    }
    holdModifierIsPressed_ = isPressed;
    const auto result = interactionStateMachine_.handle(
        isPressed ? SwitcherInteractionInput::holdModifierPressed()
                  : SwitcherInteractionInput::holdModifierReleased());
    // Modifier events always reach the system, even the release that commits.
    perform(result.action);
}

bool GlobalShortcutInterceptor::handleKeyDown(const KeyboardEvent& event,
                                              const SwitcherPreferences& preferences) {
    const EventKeyCode keyCode = event.integerValueField(KeyboardEventField::keycode);
    const bool isAutorepeat = event.integerValueField(KeyboardEventField::autorepeat) != 0;
    const KeyboardEventFlags flags = event.flags();

    if (launcherSessionDriver_->isLauncherSessionActive()) {
        if (!hasCommandOrControl(flags)) {
            handleLauncherKey(keyCode, event, flags, isAutorepeat);
            keyCodesWithConsumedKeyDown_.insert(keyCode);
            return true;
        }
        // Command-Space closes the launcher and still reaches whoever owns that shortcut.
        if (keyCode == key_code::space && hasFlag(flags, keyboard_event_flag::command)) {
            launcherSessionDriver_->endLauncherSession();
        }
        return false;
    }

    if (keyCode == key_code::space && hasFlag(flags, keyboard_event_flag::option) &&
        !sessionDriver_->isSessionActive()) {
        if (!isAutorepeat) {
            launcherSessionDriver_->beginLauncherSession();
        }
        keyCodesWithConsumedKeyDown_.insert(key_code::space);
        return true;
    }

    if (auto input = classify(keyCode, flags, preferences)) {
        const auto result = interactionStateMachine_.handle(*input);
        perform(result.action);
        if (result.consumesEvent) {
            keyCodesWithConsumedKeyDown_.insert(keyCode);
            return true;
        }
    } else if (!hasCommandOrControl(flags) && sessionDriver_->isSessionActive()) {
        // Keys without meaning reach nobody during a session.
        keyCodesWithConsumedKeyDown_.insert(keyCode);
        return true;
    }

    // Repeats of a key swallowed earlier stay swallowed until its key-up, even after the gesture.
    return keyCodesWithConsumedKeyDown_.contains(keyCode);
}

std::optional<SwitcherInteractionInput> GlobalShortcutInterceptor::classify(
    EventKeyCode keyCode, KeyboardEventFlags flags, const SwitcherPreferences& preferences) const {
    const bool reversed =
        preferences.reverseCyclingEnabled && hasFlag(flags, keyboard_event_flag::shift);
    // The configured trigger wins over every fixed key.
    if (keyCode == static_cast<EventKeyCode>(preferences.shortcutConfiguration.triggerKeyCode)) {
        return SwitcherInteractionInput::triggerPressed(reversed);
    }
    switch (keyCode) {
        case key_code::graveAccent:
            if (holdModifierIsPressed_ && preferences.sameApplicationCyclingEnabled) {
                return SwitcherInteractionInput::sameApplicationTriggerPressed(reversed);
            }
            return std::nullopt;
        case key_code::escape:
            return SwitcherInteractionInput::escapePressed();
        case key_code::leftArrow:
            return SwitcherInteractionInput::directionPressed(SwitcherSelectionDirection::left);
        case key_code::rightArrow:
            return SwitcherInteractionInput::directionPressed(SwitcherSelectionDirection::right);
        case key_code::downArrow:
            return SwitcherInteractionInput::directionPressed(SwitcherSelectionDirection::down);
        case key_code::upArrow:
            return SwitcherInteractionInput::directionPressed(SwitcherSelectionDirection::up);
        default:
            return std::nullopt;
    }
}

void GlobalShortcutInterceptor::perform(const SwitcherInteractionAction& action) {
    using Kind = SwitcherInteractionAction::Kind;
    using State = SwitcherInteractionStateMachine::State;
    switch (action.kind) {
        case Kind::startSession:
            if (!sessionDriver_->startSession(action.backward) &&
                interactionStateMachine_.state == State::sessionActive) {
                // Nothing to switch to: stay armed so the next tap tries a fresh enumeration.
                interactionStateMachine_.state = State::armed;
            }
            return;
        case Kind::startSameApplicationSession:
            if (!sessionDriver_->startSameApplicationSession(action.backward) &&
                interactionStateMachine_.state == State::sessionActive) {
                interactionStateMachine_.state = State::armed;
            }
            return;
        case Kind::moveSelectionByDelta:
            sessionDriver_->moveSelection(action.delta);
            return;
        case Kind::moveSelectionInDirection:
            sessionDriver_->moveSelection(action.direction);
            return;
        case Kind::none:
            return;
        case Kind::commit:
            sessionDriver_->commitSession();
            return;
        case Kind::cancel:
            sessionDriver_->cancelSession();
            return;
    }
}

void GlobalShortcutInterceptor::handleLauncherKey(EventKeyCode keyCode, const KeyboardEvent& event,
                                                  KeyboardEventFlags flags, bool isAutorepeat) {
    switch (keyCode) {
        case key_code::returnKey:
        case key_code::keypadEnter:
            launcherSessionDriver_->commitLauncherSession();
            return;
        case key_code::tab:
            launcherSessionDriver_->moveLauncherSelection(
                hasFlag(flags, keyboard_event_flag::shift) ? -1 : +1);
            return;
        case key_code::rightArrow:
        case key_code::downArrow:
            launcherSessionDriver_->moveLauncherSelection(+1);
            return;
        case key_code::leftArrow:
        case key_code::upArrow:
            launcherSessionDriver_->moveLauncherSelection(-1);
            return;
        case key_code::deleteKey:
            launcherSessionDriver_->deleteLastSearchCharacter();
            return;
        case key_code::escape:
            launcherSessionDriver_->endLauncherSession();
            return;
        case key_code::space:
            if (hasFlag(flags, keyboard_event_flag::option)) {
                // Holding Option-Space switches once; its repeats do nothing.
                if (!isAutorepeat) {
                    launcherSessionDriver_->switchLauncherMode();
                }
                return;
            }
            break;
        default:
            break;
    }
    std::array<char16_t, maximumTypedTextLength> buffer{};
    const std::size_t length =
        std::min(event.keyboardUnicodeString(buffer.size(), buffer.data()), buffer.size());
    if (length == 0) {
        return;
    }
    auto text = typedTextFilter_.filter(std::u16string_view(buffer.data(), length));
    if (!text.empty()) {
        launcherSessionDriver_->appendToSearchQuery(text);
    }
}

}  // namespace orvane
