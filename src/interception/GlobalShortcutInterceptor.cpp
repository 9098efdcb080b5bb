#include "interception/GlobalShortcutInterceptor.h"

#include <algorithm>
#include <array>
#include <utility>

#include "interception/KeyCode.h"

namespace orvane {

namespace {

// The distributed notification of a locked screen.
constexpr const char* screenLockedNotification = "com.apple.screenIsLocked";

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
    std::shared_ptr<PreferencesProviding> preferencesProvider, Platform platform)
    : sessionDriver_(std::move(sessionDriver)),
      launcherSessionDriver_(std::move(launcherSessionDriver)),
      preferencesProvider_(std::move(preferencesProvider)),
      platform_(std::move(platform)) {}

bool GlobalShortcutInterceptor::installEventTap() {
    if (eventTap_) {
        return true;
    }
    std::optional<EventTapHandle> tap;
    if (platform_.eventTaps) {
        tap = platform_.eventTaps->createTap(
            event_tap::hidEventTapLocation, event_tap::headInsertPlacement,
            event_tap::defaultOptions, event_tap::keyboardEventMask,
            [this](KeyboardEventType type, const KeyboardEvent& event) {
                return handleEvent(type, event);
            });
    }
    if (!tap) {
        log_.error("event tap creation failed; accessibility trust is likely missing");
        return false;
    }
    auto source = platform_.eventTaps->createRunLoopSource(*tap);
    if (!source) {
        log_.error("event tap run-loop source creation failed");
        platform_.eventTaps->invalidate(*tap);
        return false;
    }
    eventTap_ = tap;
    eventTapRunLoopSource_ = source;
    platform_.runLoop->addSource(*source, RunLoopMode::commonModes);
    platform_.eventTaps->enableTap(*tap, true);
    installInterruptionObservers();
    log_.info("event tap created and enabled");
    return true;
}

void GlobalShortcutInterceptor::installInterruptionObservers() {
    std::weak_ptr<GlobalShortcutInterceptor> weakSelf = weak_from_this();
    auto observer = [weakSelf](const PlatformNotification& notification) {
        if (auto self = weakSelf.lock()) {
            self->resetInteractionState(notification.name);
        }
    };
    for (const char* name :
         {workspace_notification::willSleep, workspace_notification::screensDidSleep,
          workspace_notification::sessionDidResignActive}) {
        workspaceInterruptionObservationTokens_.push_back(
            platform_.workspaceNotifications->addObserver(name, observer));
    }
    distributedInterruptionObservationTokens_.push_back(
        platform_.distributedNotifications->addObserver(screenLockedNotification, observer));
}

void GlobalShortcutInterceptor::removeEventTap() {
    if (!eventTap_) {
        return;
    }
    for (auto token : workspaceInterruptionObservationTokens_) {
        platform_.workspaceNotifications->removeObserver(token);
    }
    workspaceInterruptionObservationTokens_.clear();
    for (auto token : distributedInterruptionObservationTokens_) {
        platform_.distributedNotifications->removeObserver(token);
    }
    distributedInterruptionObservationTokens_.clear();
    platform_.eventTaps->enableTap(*eventTap_, false);
    if (eventTapRunLoopSource_) {
        platform_.runLoop->removeSource(*eventTapRunLoopSource_, RunLoopMode::commonModes);
    }
    platform_.eventTaps->invalidate(*eventTap_);
    eventTap_.reset();
    eventTapRunLoopSource_.reset();
    clearGestureState();
    sessionDriver_->cancelSession();
    if (launcherSessionDriver_->isLauncherSessionActive()) {
        launcherSessionDriver_->endLauncherSession();
    }
    log_.info("event tap removed");
}

void GlobalShortcutInterceptor::resetInteractionState(const std::string& reason) {
    // A running session is dropped, never committed.
    sessionDriver_->cancelSession();
    if (launcherSessionDriver_->isLauncherSessionActive()) {
        launcherSessionDriver_->endLauncherSession();
    }
    clearGestureState();
    log_.info("interaction state reset (%{public}s)", reason);
}

void GlobalShortcutInterceptor::clearGestureState() {
    interactionStateMachine_.state = SwitcherInteractionStateMachine::State::idle;
    holdModifierIsPressed_ = false;
    keyCodesWithConsumedKeyDown_.clear();
}

bool GlobalShortcutInterceptor::isEventTapEnabled() const {
    return eventTap_ && platform_.eventTaps->isTapEnabled(*eventTap_);
}

void GlobalShortcutInterceptor::handleTapDisabled(KeyboardEventType type,
                                                  const SwitcherPreferences& preferences) {
    if (eventTap_) {
        platform_.eventTaps->enableTap(*eventTap_, true);
        log_.error("event tap disabled (type %{public}u); re-enabled", type);
    }
    // Key-ups that fell into the gap went to the applications; their key-downs' marks go too.
    keyCodesWithConsumedKeyDown_.clear();
    if (!holdModifierIsPressed_ || !platform_.eventTaps) {
        return;
    }
    const auto held = platform_.eventTaps->flagsState(event_tap::combinedSessionState);
    if (!hasFlag(held, holdModifierMask(preferences.shortcutConfiguration.holdModifier))) {
        resetInteractionState("hold modifier released while tap was disabled");
    }
}

bool GlobalShortcutInterceptor::handleEvent(KeyboardEventType type, const KeyboardEvent& event) {
    switch (type) {
        case keyboard_event_type::keyDown:
            return handleKeyDown(event, preferencesProvider_->preferences());
        case keyboard_event_type::keyUp:
            return handleKeyUp(event);
        case keyboard_event_type::flagsChanged:
            handleFlagsChanged(event, preferencesProvider_->preferences());
            return false;
        case keyboard_event_type::tapDisabledByTimeout:
        case keyboard_event_type::tapDisabledByUserInput:
            handleTapDisabled(type, preferencesProvider_->preferences());
            return false;
        default:
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
