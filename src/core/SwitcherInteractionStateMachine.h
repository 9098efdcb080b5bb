// The rule book of the switcher gesture: turns hold-modifier, trigger, arrow and Escape inputs into
// one session action and whether the causing key event is swallowed. A plain value; touches
// nothing.
#pragma once

#include <cstddef>

#include "core/SwitcherSelectionDirection.h"

namespace orvane {

struct SwitcherInteractionInput {
    enum class Kind {
        triggerPressed,
        sameApplicationTriggerPressed,
        directionPressed,
        holdModifierPressed,
        holdModifierReleased,
        escapePressed,
    };

    Kind kind = Kind::holdModifierPressed;
    // For the two trigger inputs: Shift asked for the reverse direction.
    bool reversed = false;
    // For `directionPressed`.
    SwitcherSelectionDirection direction = SwitcherSelectionDirection::right;

    static SwitcherInteractionInput triggerPressed(bool reversed) {
        return {Kind::triggerPressed, reversed, SwitcherSelectionDirection::right};
    }
    static SwitcherInteractionInput sameApplicationTriggerPressed(bool reversed) {
        return {Kind::sameApplicationTriggerPressed, reversed, SwitcherSelectionDirection::right};
    }
    static SwitcherInteractionInput directionPressed(SwitcherSelectionDirection direction) {
        return {Kind::directionPressed, false, direction};
    }
    static SwitcherInteractionInput holdModifierPressed() { return {Kind::holdModifierPressed}; }
    static SwitcherInteractionInput holdModifierReleased() { return {Kind::holdModifierReleased}; }
    static SwitcherInteractionInput escapePressed() { return {Kind::escapePressed}; }
};

struct SwitcherInteractionAction {
    enum class Kind {
        startSession,
        startSameApplicationSession,
        moveSelectionByDelta,
        moveSelectionInDirection,
        none,
        commit,
        cancel,
    };

    Kind kind = Kind::none;
    // For the two starts.
    bool backward = false;
    // For `moveSelectionByDelta`: -1 or +1.
    std::ptrdiff_t delta = 0;
    // For `moveSelectionInDirection`.
    SwitcherSelectionDirection direction = SwitcherSelectionDirection::right;

    friend bool operator==(const SwitcherInteractionAction&,
                           const SwitcherInteractionAction&) = default;
};

struct SwitcherInteractionResult {
    SwitcherInteractionAction action;
    bool consumesEvent = false;

    friend bool operator==(const SwitcherInteractionResult&,
                           const SwitcherInteractionResult&) = default;
};

struct SwitcherInteractionStateMachine {
    enum class State { idle, armed, sessionActive, sessionCancelled };

    State state = State::idle;

    // Moves to the next state and answers the action with the swallow decision. Pure: reads
    // nothing but the state and the input.
    SwitcherInteractionResult handle(const SwitcherInteractionInput& input);
};

const char* switcherInteractionStateName(SwitcherInteractionStateMachine::State state);

}  // namespace orvane
