#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "core/SwitcherInteractionStateMachine.h"

namespace orvane {
namespace {

using State = SwitcherInteractionStateMachine::State;
using Input = SwitcherInteractionInput;
using Action = SwitcherInteractionAction;
using Direction = SwitcherSelectionDirection;

Action none() {
    return {};
}
Action start(bool backward) {
    return {.kind = Action::Kind::startSession, .backward = backward};
}
Action startSame(bool backward) {
    return {.kind = Action::Kind::startSameApplicationSession, .backward = backward};
}
Action moveBy(std::ptrdiff_t delta) {
    return {.kind = Action::Kind::moveSelectionByDelta, .delta = delta};
}
Action moveIn(Direction direction) {
    return {.kind = Action::Kind::moveSelectionInDirection, .direction = direction};
}
Action commit() {
    return {.kind = Action::Kind::commit};
}
Action cancel() {
    return {.kind = Action::Kind::cancel};
}

std::string describe(const Input& input) {
    static const char* const kinds[] = {"trigger",  "sameAppTrigger", "direction",
                                        "holdDown", "holdUp",         "escape"};
    return std::string(kinds[static_cast<int>(input.kind)]) +
           " reversed=" + std::to_string(input.reversed) +
           " direction=" + std::to_string(static_cast<int>(input.direction));
}

std::string describe(const Action& action) {
    return "kind=" + std::to_string(static_cast<int>(action.kind)) +
           " backward=" + std::to_string(action.backward) +
           " delta=" + std::to_string(action.delta) +
           " direction=" + std::to_string(static_cast<int>(action.direction));
}

struct Transition {
    State from;
    Input input;
    State to;
    Action action;
    bool consumes;
};

constexpr Direction allDirections[] = {Direction::left, Direction::right, Direction::up,
                                       Direction::down};

std::vector<Transition> transitionTable() {
    std::vector<Transition> table;
    for (bool reversed : {false, true}) {
        table.push_back({State::idle, Input::triggerPressed(reversed), State::idle, none(), false});
        table.push_back({State::idle, Input::sameApplicationTriggerPressed(reversed), State::idle,
                         none(), false});
        for (State waiting : {State::armed, State::sessionCancelled}) {
            table.push_back({waiting, Input::triggerPressed(reversed), State::sessionActive,
                             start(reversed), true});
            table.push_back({waiting, Input::sameApplicationTriggerPressed(reversed),
                             State::sessionActive, startSame(reversed), true});
        }
        table.push_back({State::sessionActive, Input::triggerPressed(reversed),
                         State::sessionActive, moveBy(reversed ? -1 : +1), true});
        table.push_back({State::sessionActive, Input::sameApplicationTriggerPressed(reversed),
                         State::sessionActive, moveBy(reversed ? -1 : +1), true});
    }
    for (Direction direction : allDirections) {
        for (State passive : {State::idle, State::armed, State::sessionCancelled}) {
            table.push_back({passive, Input::directionPressed(direction), passive, none(), false});
        }
        table.push_back({State::sessionActive, Input::directionPressed(direction),
                         State::sessionActive, moveIn(direction), true});
    }
    table.insert(
        table.end(),
        {
            {State::idle, Input::holdModifierPressed(), State::armed, none(), false},
            {State::idle, Input::holdModifierReleased(), State::idle, none(), false},
            {State::idle, Input::escapePressed(), State::idle, none(), false},
            {State::armed, Input::holdModifierPressed(), State::armed, none(), false},
            {State::armed, Input::holdModifierReleased(), State::idle, none(), false},
            {State::armed, Input::escapePressed(), State::armed, none(), false},
            {State::sessionActive, Input::holdModifierPressed(), State::sessionActive, none(),
             false},
            {State::sessionActive, Input::holdModifierReleased(), State::idle, commit(), false},
            {State::sessionActive, Input::escapePressed(), State::sessionCancelled, cancel(), true},
            {State::sessionCancelled, Input::holdModifierPressed(), State::sessionCancelled, none(),
             false},
            {State::sessionCancelled, Input::holdModifierReleased(), State::idle, none(), false},
            {State::sessionCancelled, Input::escapePressed(), State::sessionCancelled, none(),
             false},
        });
    return table;
}

TEST(SwitcherInteractionStateMachine, EveryStateAndInputGivesTheTabledTransition) {
    const auto table = transitionTable();
    // 4 states x (2 triggers x 2 reversals + 4 directions + hold down, hold up, Escape).
    ASSERT_EQ(table.size(), 4u * 11u);
    for (const auto& row : table) {
        SCOPED_TRACE(std::string(switcherInteractionStateName(row.from)) + " + " +
                     describe(row.input));
        SwitcherInteractionStateMachine machine{row.from};
        const auto result = machine.handle(row.input);
        EXPECT_STREQ(switcherInteractionStateName(machine.state),
                     switcherInteractionStateName(row.to));
        EXPECT_EQ(describe(result.action), describe(row.action));
        EXPECT_EQ(result.consumesEvent, row.consumes);
    }
}

// Feeds inputs from idle and keeps every action that is not `none`.
std::vector<std::string> run(SwitcherInteractionStateMachine& machine,
                             const std::vector<Input>& inputs) {
    std::vector<std::string> actions;
    for (const auto& input : inputs) {
        const auto result = machine.handle(input);
        if (result.action.kind != Action::Kind::none) {
            actions.push_back(describe(result.action));
        }
    }
    return actions;
}

TEST(SwitcherInteractionStateMachineSequence, HoldTapTapReleaseStartsStepsAndCommits) {
    SwitcherInteractionStateMachine machine;
    EXPECT_EQ(run(machine, {Input::holdModifierPressed(), Input::triggerPressed(false),
                            Input::triggerPressed(false), Input::holdModifierReleased()}),
              (std::vector{describe(start(false)), describe(moveBy(+1)), describe(commit())}));
    EXPECT_EQ(machine.state, State::idle);
}

TEST(SwitcherInteractionStateMachineSequence, HoldAndReleaseWithoutTriggerDoesNothing) {
    SwitcherInteractionStateMachine machine;
    EXPECT_TRUE(
        run(machine, {Input::holdModifierPressed(), Input::holdModifierReleased()}).empty());
    EXPECT_EQ(machine.state, State::idle);
}

TEST(SwitcherInteractionStateMachineSequence, TriggerAfterEscapeStartsANewSessionThatCommits) {
    SwitcherInteractionStateMachine machine;
    EXPECT_EQ(run(machine, {Input::holdModifierPressed(), Input::triggerPressed(false),
                            Input::escapePressed(), Input::triggerPressed(true),
                            Input::holdModifierReleased()}),
              (std::vector{describe(start(false)), describe(cancel()), describe(start(true)),
                           describe(commit())}));
    EXPECT_EQ(machine.state, State::idle);
}

TEST(SwitcherInteractionStateMachineSequence, ReleaseAfterEscapeCommitsNothing) {
    SwitcherInteractionStateMachine machine;
    EXPECT_EQ(run(machine, {Input::holdModifierPressed(), Input::triggerPressed(false),
                            Input::escapePressed(), Input::holdModifierReleased()}),
              (std::vector{describe(start(false)), describe(cancel())}));
    EXPECT_EQ(machine.state, State::idle);
}

TEST(SwitcherInteractionStateMachineSequence, SecondEscapeIsNeitherCancelledNorSwallowed) {
    SwitcherInteractionStateMachine machine;
    run(machine, {Input::holdModifierPressed(), Input::triggerPressed(false)});
    EXPECT_EQ(machine.handle(Input::escapePressed()), (SwitcherInteractionResult{cancel(), true}));
    EXPECT_EQ(machine.handle(Input::escapePressed()), (SwitcherInteractionResult{none(), false}));
    EXPECT_EQ(machine.state, State::sessionCancelled);
}

}  // namespace
}  // namespace orvane
