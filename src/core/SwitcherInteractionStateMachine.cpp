#include "core/SwitcherInteractionStateMachine.h"

namespace orvane {

namespace {

using State = SwitcherInteractionStateMachine::State;
using Input = SwitcherInteractionInput::Kind;
using Action = SwitcherInteractionAction;

SwitcherInteractionResult passWith(Action action = {}) {
    return {action, false};
}
SwitcherInteractionResult swallowWith(Action action) {
    return {action, true};
}

Action startFor(const SwitcherInteractionInput& input) {
    Action action;
    action.kind = input.kind == Input::sameApplicationTriggerPressed
                      ? Action::Kind::startSameApplicationSession
                      : Action::Kind::startSession;
    action.backward = input.reversed;
    return action;
}

// `armed` and `sessionCancelled` answer alike; only the state they stay in differs.
SwitcherInteractionResult handleWaitingForTrigger(State& state,
                                                  const SwitcherInteractionInput& input) {
    switch (input.kind) {
        case Input::triggerPressed:
        case Input::sameApplicationTriggerPressed:
            state = State::sessionActive;
            return swallowWith(startFor(input));
        case Input::holdModifierReleased:
            state = State::idle;
            return passWith();
        case Input::directionPressed:
        case Input::holdModifierPressed:
        case Input::escapePressed:
            return passWith();
    }
    return passWith();
}

SwitcherInteractionResult handleSessionActive(State& state, const SwitcherInteractionInput& input) {
    Action action;
    switch (input.kind) {
        case Input::triggerPressed:
        case Input::sameApplicationTriggerPressed:
            action.kind = Action::Kind::moveSelectionByDelta;
            action.delta = input.reversed ? -1 : +1;
            return swallowWith(action);
        case Input::directionPressed:
            action.kind = Action::Kind::moveSelectionInDirection;
            action.direction = input.direction;
            return swallowWith(action);
        case Input::holdModifierPressed:
            return passWith();
        case Input::holdModifierReleased:
            state = State::idle;
            action.kind = Action::Kind::commit;
            return passWith(action);
        case Input::escapePressed:
            state = State::sessionCancelled;
            action.kind = Action::Kind::cancel;
            return swallowWith(action);
    }
    return passWith();
}

}  // namespace

SwitcherInteractionResult SwitcherInteractionStateMachine::handle(
    const SwitcherInteractionInput& input) {
    switch (state) {
        case State::idle:
            if (input.kind == Input::holdModifierPressed) {
                state = State::armed;
            }
            return passWith();
        case State::armed:
        case State::sessionCancelled:
            return handleWaitingForTrigger(state, input);
        case State::sessionActive:
            return handleSessionActive(state, input);
    }
    return passWith();
}

const char* switcherInteractionStateName(SwitcherInteractionStateMachine::State state) {
    switch (state) {
        case State::idle:
            return "idle";
        case State::armed:
            return "armed";
        case State::sessionActive:
            return "sessionActive";
        case State::sessionCancelled:
            return "sessionCancelled";
    }
    return "idle";
}

}  // namespace orvane
