#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <vector>

#include "core/SwitcherInteractionStateMachine.h"

namespace orvane {

// Internal linkage: other test files of this executable may print actions their own way.
static void PrintTo(const SwitcherInteractionAction& action, std::ostream* out) {
    *out << "kind=" << static_cast<int>(action.kind) << " backward=" << action.backward
         << " delta=" << action.delta << " direction=" << static_cast<int>(action.direction);
}

namespace {

using State = SwitcherInteractionStateMachine::State;
using Input = SwitcherInteractionInput;
using Action = SwitcherInteractionAction;
using Kind = Action::Kind;
using Direction = SwitcherSelectionDirection;

const Action none{};
const Action commit{.kind = Kind::commit};
const Action cancel{.kind = Kind::cancel};
Action start(bool backward) {
    return {.kind = Kind::startSession, .backward = backward};
}
Action startSame(bool backward) {
    return {.kind = Kind::startSameApplicationSession, .backward = backward};
}
Action moveBy(std::ptrdiff_t delta) {
    return {.kind = Kind::moveSelectionByDelta, .delta = delta};
}

struct Transition {
    State from;
    Input input;
    State to;
    Action action;
    bool consumes;
};

std::vector<Transition> transitionTable() {
    std::vector<Transition> table;
    for (bool reversed : {false, true}) {
        for (auto trigger :
             {Input::triggerPressed(reversed), Input::sameApplicationTriggerPressed(reversed)}) {
            const bool same = trigger.kind == Input::Kind::sameApplicationTriggerPressed;
            table.push_back({State::idle, trigger, State::idle, none, false});
            for (State waiting : {State::armed, State::sessionCancelled}) {
                table.push_back({waiting, trigger, State::sessionActive,
                                 same ? startSame(reversed) : start(reversed), true});
            }
            table.push_back({State::sessionActive, trigger, State::sessionActive,
                             moveBy(reversed ? -1 : +1), true});
        }
    }
    for (Direction direction :
         {Direction::left, Direction::right, Direction::up, Direction::down}) {
        for (State passive : {State::idle, State::armed, State::sessionCancelled}) {
            table.push_back({passive, Input::directionPressed(direction), passive, none, false});
        }
        table.push_back({State::sessionActive,
                         Input::directionPressed(direction),
                         State::sessionActive,
                         {.kind = Kind::moveSelectionInDirection, .direction = direction},
                         true});
    }
    const auto down = Input::holdModifierPressed(), up = Input::holdModifierReleased(),
               escape = Input::escapePressed();
    table.insert(table.end(),
                 {
                     {State::idle, down, State::armed, none, false},
                     {State::idle, up, State::idle, none, false},
                     {State::idle, escape, State::idle, none, false},
                     {State::armed, down, State::armed, none, false},
                     {State::armed, up, State::idle, none, false},
                     {State::armed, escape, State::armed, none, false},
                     {State::sessionActive, down, State::sessionActive, none, false},
                     {State::sessionActive, up, State::idle, commit, false},
                     {State::sessionActive, escape, State::sessionCancelled, cancel, true},
                     {State::sessionCancelled, down, State::sessionCancelled, none, false},
                     {State::sessionCancelled, up, State::idle, none, false},
                     {State::sessionCancelled, escape, State::sessionCancelled, none, false},
                 });
    return table;
}

TEST(SwitcherInteractionStateMachine, EveryStateAndInputGivesTheTabledTransition) {
    const auto table = transitionTable();
    // 4 states x (2 triggers x 2 reversals + 4 directions + hold down, hold up, Escape).
    ASSERT_EQ(table.size(), 4u * 11u);
    for (const auto& row : table) {
        SCOPED_TRACE(testing::Message()
                     << switcherInteractionStateName(row.from) << " + input "
                     << static_cast<int>(row.input.kind) << " reversed " << row.input.reversed
                     << " direction " << static_cast<int>(row.input.direction));
        SwitcherInteractionStateMachine machine{row.from};
        const auto result = machine.handle(row.input);
        EXPECT_STREQ(switcherInteractionStateName(machine.state),
                     switcherInteractionStateName(row.to));
        EXPECT_EQ(result.action, row.action);
        EXPECT_EQ(result.consumesEvent, row.consumes);
    }
}

// From idle, the actions other than `none` that a run of inputs gives; every run ends idle.
TEST(SwitcherInteractionStateMachine, GesturesFromIdleGiveTheirActionsInOrder) {
    const auto hold = Input::holdModifierPressed(), release = Input::holdModifierReleased(),
               escape = Input::escapePressed(), tap = Input::triggerPressed(false);
    const std::pair<std::vector<Input>, std::vector<Action>> runs[] = {
        {{hold, tap, tap, release}, {start(false), moveBy(+1), commit}},
        {{hold, release}, {}},
        {{hold, tap, escape, Input::triggerPressed(true), release},
         {start(false), cancel, start(true), commit}},
        {{hold, tap, escape, release}, {start(false), cancel}},
    };
    for (const auto& [inputs, expected] : runs) {
        SwitcherInteractionStateMachine machine;
        std::vector<Action> actions;
        for (const auto& input : inputs) {
            if (const auto result = machine.handle(input); result.action.kind != Kind::none) {
                actions.push_back(result.action);
            }
        }
        EXPECT_EQ(actions, expected);
        EXPECT_EQ(machine.state, State::idle);
    }
}

}  // namespace
}  // namespace orvane
