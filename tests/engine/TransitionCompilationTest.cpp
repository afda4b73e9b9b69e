// Compilation of transitions: identifiers, weights, references from commands, guard probabilities, the trace.
#include "tests/support/FlushLog.h"
#include "tests/support/TestModel.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

class TransitionCompilationTest : public testing::Test {
protected:
    TransitionCompilationTest()
    {
        valve_ = model_.comp("valve");
        model_.variable(valve_, "pos", "Mode", {"open", "closed"});
        open_ = model_.atom("valve.pos=open");
        closed_ = model_.atom("valve.pos=closed");
    }

    void addCommands()
    {
        model_.variable(valve_, "cmd", "Command", {"go", "none"});
        model_.variable(valve_, "aux", "Command", {"on"});
        go_ = model_.atom("valve.cmd=go");
    }
    // A transition with a guard of no atoms, unless `mustHold` names some.
    Transition* guarded(Atom* to, double proba, const std::string& name = "Nominal",
                        const std::vector<TestModel::Literal>& mustHold = {})
    {
        Transition* made = model_.transition(to, name, proba);
        model_.guard(made, mustHold);
        return made;
    }
    std::string compile(int from = 0)
    {
        int counter = from;
        const FlushLog log;
        engine_.idTransitions(valve_, counter);
        EXPECT_EQ(counter, from + static_cast<int>(valve_->transitions->size()));
        return log.text();
    }
    // The atoms that list the transition as leaving them, of those of the component's commands.
    std::vector<std::string> referring(Transition* transition)
    {
        std::vector<std::string> ids;
        for (const CommandVar* command : *valve_->commandVars) {
            for (const Atom* atom : *command->atomLinks) {
                ids.insert(
                    ids.end(),
                    static_cast<std::size_t>(std::count(atom->outTransitions->begin(),
                                                        atom->outTransitions->end(), transition)),
                    atom->id);
            }
        }
        return ids;
    }

    TestModel model_;
    itms engine_;
    Comp* valve_;
    Atom* open_;
    Atom* closed_;
    Atom* go_ = nullptr;
};

TEST_F(TransitionCompilationTest, NumbersAndRegistersFromTheCounterOn)
{
    Transition* first = guarded(open_, 0.5);
    Transition* second = guarded(closed_, 0.5);
    compile(7);
    EXPECT_EQ(first->id, 7);
    EXPECT_EQ(second->id, 8);
    EXPECT_EQ(DataManager::active_trans->size(), 2u);
    EXPECT_EQ((*DataManager::active_trans)[7], first);
    EXPECT_EQ((*DataManager::active_trans)[8], second);
}

TEST_F(TransitionCompilationTest, OverwritesAnEarlierRegistration)
{
    Transition other;
    (*DataManager::active_trans)[0] = &other;
    const Transition* mine = guarded(open_, 0.5);
    compile();
    EXPECT_EQ((*DataManager::active_trans)[0], mine);
}

TEST_F(TransitionCompilationTest, WeighsByTheNumberOfAllTransitionsOfTheComponent)
{
    const Transition* first = guarded(open_, 0.3);
    const Transition* second = guarded(open_, 0.6);
    const Transition* third = guarded(closed_, 0.1);
    const std::string trace = compile();
    EXPECT_DOUBLE_EQ(first->weight, 0.1);
    EXPECT_DOUBLE_EQ(second->weight, 0.2);
    EXPECT_DOUBLE_EQ(third->weight, 1.0 / 30);
    EXPECT_EQ(trace, "transition 0 pos: Nominal (0.3)\n"
                     "weight : 0.1\n"
                     "transition 1 pos: Nominal (0.6)\n"
                     "weight : 0.2\n"
                     "transition 2 pos: Nominal (0.1)\n"
                     "weight : 0.0333333\n"
                     "guards number of valve.pos=open : 0\n"
                     "guards number of pos : 3\n"
                     "guard proba : 0.1\n"
                     "guards number of valve.pos=open : 0\n"
                     "guards number of pos : 3\n"
                     "guard proba : 0.2\n"
                     "guards number of valve.pos=closed : 0\n"
                     "guards number of pos : 3\n"
                     "guard proba : 0.0333333\n");
}

TEST_F(TransitionCompilationTest, DividesByTheGuardsOfTheVariable)
{
    addCommands();
    const Transition* first = guarded(open_, 0.75, "Nominal", {{false, go_}});
    const Transition* second = guarded(closed_, 0.5, "Nominal", {{true, go_}, {false, open_}});
    compile();
    EXPECT_EQ(first->guardProba, 0.375);
    EXPECT_EQ(second->guardProba, 0.25);
}

TEST_F(TransitionCompilationTest, PrintsHowManyGuardsMentionTheTarget)
{
    addCommands();
    guarded(open_, 0.5, "Nominal", {{false, go_}, {false, closed_}});
    guarded(closed_, 0.5, "Nominal", {{false, go_}, {true, closed_}});
    EXPECT_EQ(compile(), "transition 0 pos: Nominal (0.5)\n"
                         "weight : 0.25\n"
                         "transition 1 pos: Nominal (0.5)\n"
                         "weight : 0.25\n"
                         "guards number of valve.pos=open : 0\n"
                         "guards number of pos : 2\n"
                         "guard proba : 0.25\n"
                         "guards number of valve.pos=closed : 2\n"
                         "guards number of pos : 2\n"
                         "guard proba : 0.25\n");
}

TEST_F(TransitionCompilationTest, DividesByZeroGuardsAsItIs)
{
    const Transition* without = model_.transition(open_, "Nominal", 0.5);
    const std::string trace = compile();
    EXPECT_EQ(without->guardProba, std::numeric_limits<double>::infinity());
    EXPECT_EQ(trace, "transition 0 pos: Nominal (0.5)\n"
                     "weight : 0.5\n"
                     "guards number of valve.pos=open : 0\n"
                     "guards number of pos : 0\n"
                     "guard proba : inf\n");
}

TEST_F(TransitionCompilationTest, AnImpossibleTransitionWithoutGuardsHasNoGuardProbability)
{
    const Transition* without = model_.transition(open_, "Nominal", 0.0);
    compile();
    EXPECT_TRUE(std::isnan(without->guardProba));
}

TEST_F(TransitionCompilationTest, AnIdleTransitionThatNoCommandGuardsIsReferredToByEveryCommand)
{
    addCommands();
    Transition* idle = guarded(open_, 0.5, "Stay", {{false, open_}});
    idle->idle = true;
    const std::string trace = compile(3);
    EXPECT_FALSE(idle->commanded);
    EXPECT_EQ(referring(idle),
              (std::vector<std::string>{"valve.cmd=go", "valve.cmd=none", "valve.aux=on"}));
    EXPECT_EQ(trace, "transition 3 pos: Stay (0.5)\n"
                     "weight : 0.5\n"
                     "adding idle trans reference :\n"
                     "valve.cmd=go\n"
                     "transition 3 pos: Stay (0.5)\n"
                     "adding idle trans reference :\n"
                     "valve.cmd=none\n"
                     "transition 3 pos: Stay (0.5)\n"
                     "adding idle trans reference :\n"
                     "valve.aux=on\n"
                     "transition 3 pos: Stay (0.5)\n"
                     "guards number of valve.pos=open : 1\n"
                     "guards number of pos : 1\n"
                     "guard proba : 0.5\n");
}

TEST_F(TransitionCompilationTest, AFailureTransitionThatNoCommandGuardsIsReferredToAsWell)
{
    addCommands();
    Transition* failure = guarded(closed_, 0.5, "Stick", {{false, open_}});
    failure->type = "Fail";
    compile();
    EXPECT_FALSE(failure->commanded);
    EXPECT_EQ(referring(failure).size(), 3u);
}

TEST_F(TransitionCompilationTest, AnIdleFailureTransitionIsReferredToOnce)
{
    addCommands();
    Transition* both = guarded(closed_, 0.5, "Stick");
    both->type = "Fail";
    both->idle = true;
    compile();
    EXPECT_EQ(referring(both).size(), 3u);
}

TEST_F(TransitionCompilationTest, AnIdleTransitionThatACommandGuardsIsLeftAsItIs)
{
    addCommands();
    Transition* idle = guarded(open_, 0.5, "Stay", {{false, open_}, {false, go_}});
    idle->idle = true;
    compile();
    EXPECT_TRUE(idle->commanded);
    EXPECT_EQ(referring(idle), std::vector<std::string>{"valve.cmd=go"}); // by its guard
}

TEST_F(TransitionCompilationTest, ACommandInTheGuardCountsWithEitherSign)
{
    addCommands();
    Transition* idle = guarded(open_, 0.5, "Stay", {{true, go_}});
    idle->idle = true;
    idle->commanded = false;
    const std::string trace = compile();
    EXPECT_FALSE(idle->commanded); // a command found changes nothing
    EXPECT_EQ(trace.find("adding idle trans reference"), std::string::npos);
}

TEST_F(TransitionCompilationTest, ACommandOfAnotherComponentGuardsToo)
{
    addCommands();
    model_.variable(model_.comp("pump"), "cmd", "Command", {"run"});
    Transition* idle = guarded(open_, 0.5, "Stay", {{false, model_.atom("pump.cmd=run")}});
    idle->idle = true;
    compile();
    EXPECT_TRUE(idle->commanded);
    EXPECT_TRUE(referring(idle).empty());
}

TEST_F(TransitionCompilationTest, ATransitionThatIsNeitherIdleNorAFailureIsNotChecked)
{
    addCommands();
    Transition* nominal = guarded(open_, 0.5, "Nominal", {{false, closed_}});
    nominal->type = "fail";
    compile();
    EXPECT_TRUE(nominal->commanded);
    EXPECT_TRUE(referring(nominal).empty());
}

TEST_F(TransitionCompilationTest, AComponentWithoutCommandVariablesHasNoReferences)
{
    Transition* idle = guarded(open_, 0.5, "Stay");
    idle->idle = true;
    ASSERT_EQ(valve_->commandVars, nullptr);
    EXPECT_EQ(compile(), "transition 0 pos: Stay (0.5)\n"
                         "weight : 0.5\n"
                         "guards number of valve.pos=open : 0\n"
                         "guards number of pos : 1\n"
                         "guard proba : 0.5\n");
    EXPECT_FALSE(idle->commanded);
}

TEST_F(TransitionCompilationTest, AnIdleTransitionWithoutGuardNamesNoCommand)
{
    addCommands();
    Transition* idle = model_.transition(open_, "Stay", 0.5);
    idle->idle = true;
    compile();
    EXPECT_FALSE(idle->commanded);
    EXPECT_EQ(referring(idle).size(), 3u);
}

TEST_F(TransitionCompilationTest, CompilingAgainPrintsTheReferencesAndMakesNoneTwice)
{
    addCommands();
    Transition* idle = guarded(open_, 0.5, "Stay");
    idle->idle = true;
    const std::string first = compile();
    EXPECT_EQ(compile(), first);
    EXPECT_EQ(referring(idle).size(), 3u);
}

TEST_F(TransitionCompilationTest, AComponentWithoutTransitionsPrintsNothing)
{
    EXPECT_EQ(compile(4), "");
    EXPECT_TRUE(DataManager::active_trans->empty());
}

TEST_F(TransitionCompilationTest, FlushesEveryLineOfItsOwn)
{
    addCommands();
    guarded(open_, 0.5, "Stay")->idle = true;
    valve_->commandVars->pop_back(); // one command variable is enough here
    int counter = 0;
    const FlushLog log;
    engine_.idTransitions(valve_, counter);
    EXPECT_EQ(log.pieces(), (std::vector<std::string>{
                                "transition 0 pos: Stay (0.5)\nweight : 0.5\n",
                                "adding idle trans reference :\nvalve.cmd=go\n",
                                "transition 0 pos: Stay (0.5)\n"
                                "adding idle trans reference :\nvalve.cmd=none\n",
                                "transition 0 pos: Stay (0.5)\n"
                                "guards number of valve.pos=open : 0\n",
                                "guards number of pos : 1\n",
                                "guard proba : 0.5\n",
                            }));
    EXPECT_EQ(log.flushes(), 6u);
}

TEST_F(TransitionCompilationTest, WithAMutedTraceDoesTheSameInSilence)
{
    addCommands();
    Transition* idle = guarded(open_, 0.5, "Stay");
    idle->idle = true;
    int counter = 0;
    const FlushLog log;
    {
        const MutedTrace muted;
        engine_.idTransitions(valve_, counter);
    }
    EXPECT_EQ(log.text(), "");
    EXPECT_EQ(log.flushes(), 0u);
    EXPECT_EQ(counter, 1);
    EXPECT_EQ(idle->weight, 0.5);
    EXPECT_EQ(idle->guardProba, 0.5);
    EXPECT_FALSE(idle->commanded);
    EXPECT_EQ(referring(idle).size(), 3u);
}

TEST_F(TransitionCompilationTest, AnAtomHasTheMeanProbabilityOfItsTransitions)
{
    guarded(open_, 0.2);
    guarded(open_, 0.4);
    const FlushLog log;
    engine_.compileTransitionsProb(open_);
    EXPECT_DOUBLE_EQ(open_->compiledProba, 0.3);
    EXPECT_EQ(log.pieces(),
              std::vector<std::string>{"compiled probability : valve.pos=open -- 0.3\n"});
    EXPECT_EQ(log.flushes(), 1u);
}

TEST_F(TransitionCompilationTest, AnAtomsProbabilityIsPrintedWithSixDigits)
{
    guarded(open_, 1.0);
    guarded(open_, 0.0);
    guarded(open_, 0.0);
    const FlushLog log;
    engine_.compileTransitionsProb(open_);
    EXPECT_EQ(open_->compiledProba, 1.0 / 3);
    EXPECT_EQ(log.text(), "compiled probability : valve.pos=open -- 0.333333\n");
}

TEST_F(TransitionCompilationTest, AnAtomWithoutTransitionsKeepsItsProbabilityInSilence)
{
    open_->compiledProba = 0.125;
    const FlushLog log;
    engine_.compileTransitionsProb(open_);
    EXPECT_EQ(open_->compiledProba, 0.125);
    EXPECT_EQ(log.text(), "");
    EXPECT_EQ(log.flushes(), 0u);
}

TEST_F(TransitionCompilationTest, AnAtomsProbabilityDoesNotCountWhatLeavesIt)
{
    guarded(closed_, 0.5, "Nominal", {{false, open_}});
    const MutedTrace muted;
    engine_.compileTransitionsProb(open_);
    EXPECT_EQ(open_->compiledProba, 0.0);
}

TEST_F(TransitionCompilationTest, AnAtomsProbabilityIsCompiledWithAMutedTraceToo)
{
    guarded(open_, 0.5);
    const FlushLog log;
    {
        const MutedTrace muted;
        engine_.compileTransitionsProb(open_);
    }
    EXPECT_EQ(open_->compiledProba, 0.5);
    EXPECT_EQ(log.text(), "");
}

} // namespace
