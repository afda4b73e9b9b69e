#include "plant/ModelBuilder.h"

#include <gmock/gmock.h>

namespace {

using plant::Literal;
using plant::Model;
using plant::ModelBuilder;
using plant::value;
using plant::VariableKind;
using testing::ElementsAre;
using testing::IsEmpty;

std::string text(const Clause& clause)
{
    std::string result;
    for (const auto& [negated, atom] : *clause.literals) {
        result += (result.empty() ? "" : " | ") + std::string(negated ? "!" : "") + atom->id;
    }
    return result;
}

std::vector<std::string> texts(const std::vector<Clause*>& clauses)
{
    std::vector<std::string> result;
    for (const Clause* clause : clauses) {
        result.push_back(text(*clause));
    }
    return result;
}

// A pump with a mode, a flow and a request, and a tank with a level.
class ModelBuilderTest : public testing::Test {
protected:
    ModelBuilder builder{"plant"};
    Comp* pump = builder.component("pump");
    Comp* tank = builder.component("tank");
    StateVar* mode =
        builder.variable(pump, "mode", VariableKind::mode, {{"off"}, {"on"}, {"broken", true}}, 0);
    StateVar* flow =
        builder.variable(pump, "flow", VariableKind::condition, {{"zero"}, {"positive"}});
    StateVar* request =
        builder.variable(pump, "request", VariableKind::command, {{"none"}, {"start"}}, 0);
    StateVar* level = builder.variable(tank, "level", VariableKind::condition, {{"low"}, {"high"}});
    Atom* off = value(mode, "off");
    Atom* on = value(mode, "on");
    Atom* broken = value(mode, "broken");
    Atom* zero = value(flow, "zero");
    Atom* positive = value(flow, "positive");
    Atom* start = value(request, "start");
    Atom* low = value(level, "low");
    Atom* high = value(level, "high");
    std::unique_ptr<Model> model_;

    // Builds the model, with what an engine works on.
    const Model& built()
    {
        model_ = builder.build();
        model_->makeEngineObjects();
        return *model_;
    }
    const Transition* transition() { return built().transitions().back(); }
};

TEST_F(ModelBuilderTest, NamesAtomsByComponentVariableAndValue)
{
    EXPECT_EQ(on->id, "pump.mode=on");
    EXPECT_EQ(on->value, "on");
    EXPECT_EQ(on->stateVar, mode);
    EXPECT_EQ(high->id, "tank.level=high");
}

TEST_F(ModelBuilderTest, EntersAtomsInTheirVariableAndComponent)
{
    EXPECT_THAT(*mode->atomLinks, ElementsAre(off, on, broken));
    built();
    EXPECT_EQ(pump->atoms->size(), 7U);
    EXPECT_EQ((*pump->atoms)["pump.flow=zero"], zero);
}

TEST_F(ModelBuilderTest, MarksFaultValues)
{
    EXPECT_FALSE(off->fail);
    EXPECT_FALSE(on->fail);
    EXPECT_TRUE(broken->fail);
}

TEST_F(ModelBuilderTest, KeepsTheInitialValueOrNone)
{
    EXPECT_EQ(mode->initial, off);
    EXPECT_EQ(flow->initial, nullptr);
}

TEST_F(ModelBuilderTest, GivesVariablesTheTypeOfTheirKind)
{
    EXPECT_EQ(mode->type, "Mode");
    EXPECT_EQ(flow->type, "Cond");
    EXPECT_EQ(request->type, "Command");
}

TEST_F(ModelBuilderTest, ListsCommandsAmongTheVariablesAndAgainAsCommands)
{
    EXPECT_THAT(*pump->stateVars, ElementsAre(mode, flow, request));
    ASSERT_NE(pump->commandVars, nullptr);
    EXPECT_THAT(*pump->commandVars, ElementsAre(request));
    EXPECT_EQ(tank->commandVars, nullptr);
}

TEST_F(ModelBuilderTest, WritesThatAVariableHasExactlyOneValue)
{
    built();
    EXPECT_THAT(texts(*mode->clauses),
                ElementsAre("pump.mode=broken | pump.mode=on | pump.mode=off",
                            "!pump.mode=on | !pump.mode=off", "!pump.mode=broken | !pump.mode=off",
                            "!pump.mode=broken | !pump.mode=on"));
    EXPECT_THAT(*on->clauses,
                ElementsAre((*mode->clauses)[0], (*mode->clauses)[1], (*mode->clauses)[3]));
}

TEST_F(ModelBuilderTest, GivesAComponentItsNameForImplicateFilesToo)
{
    EXPECT_EQ(pump->name, "pump");
    EXPECT_EQ(pump->altName, "pump");
}

TEST_F(ModelBuilderTest, EntersALawInTheModelAndInItsAtoms)
{
    ASSERT_TRUE(builder.law(pump, {{true, on}, {false, positive}}));
    ASSERT_EQ(built().laws().size(), 1U);
    const Clause* law = model_->laws().front();
    EXPECT_EQ(positive->clauses->size(), flow->clauses->size() + 1);
    EXPECT_EQ(positive->clauses->back(), law);
    EXPECT_EQ(text(*law), "!pump.mode=on | pump.flow=positive");
}

TEST_F(ModelBuilderTest, InsertsLiteralsInTheGivenOrder)
{
    SignedAtoms expected;
    for (const auto& literal :
         {std::pair{false, low}, {true, on}, {true, start}, {false, positive}}) {
        expected.insert(literal);
    }
    builder.law(pump, {{false, low}, {true, on}, {true, start}, {false, positive}});
    const Clause* law = built().laws().front();
    EXPECT_TRUE(
        std::equal(law->literals->begin(), law->literals->end(), expected.begin(), expected.end()));
}

TEST_F(ModelBuilderTest, KeepsTheFirstOfLiteralsThatAreGivenTwice)
{
    builder.law(pump, {{true, on}, {false, positive}, {true, on}, {false, positive}});
    const Clause* law = built().laws().front();
    EXPECT_EQ(text(*law), "!pump.mode=on | pump.flow=positive");
    EXPECT_EQ(std::count(positive->clauses->begin(), positive->clauses->end(), law), 1);
}

TEST_F(ModelBuilderTest, LeavesOutALawThatAlwaysHolds)
{
    EXPECT_FALSE(builder.law(pump, {{true, on}, {false, high}, {false, on}}));
    EXPECT_THAT(*pump->importedComps, IsEmpty());
    EXPECT_THAT(builder.build()->laws(), IsEmpty());
}

TEST_F(ModelBuilderTest, LeavesOutALawThatWasGivenBefore)
{
    EXPECT_TRUE(builder.law(pump, {{true, on}, {false, positive}}));
    EXPECT_FALSE(builder.law(pump, {{true, on}, {false, positive}}));
    EXPECT_FALSE(builder.law(pump, {{false, positive}, {true, on}})) << "in another order";
    EXPECT_FALSE(builder.law(tank, {{false, positive}, {true, on}, {true, on}}))
        << "with a repetition";
    EXPECT_TRUE(builder.law(pump, {{false, on}, {false, positive}})) << "with another sign";
    EXPECT_EQ(builder.build()->laws().size(), 2U);
}

TEST_F(ModelBuilderTest, ImportsTheComponentsThatALawMentionsIntoItsOwner)
{
    builder.law(pump, {{true, low}, {false, zero}});
    builder.law(pump, {{true, high}, {false, positive}});
    EXPECT_THAT(*pump->importedComps, ElementsAre(tank));
    EXPECT_THAT(*tank->importedComps, IsEmpty());
}

TEST_F(ModelBuilderTest, ImportsNothingForALawWithoutAnOwner)
{
    EXPECT_TRUE(builder.law(nullptr, {{true, low}, {false, zero}}));
    EXPECT_THAT(*pump->importedComps, IsEmpty());
    EXPECT_THAT(*tank->importedComps, IsEmpty());
}

TEST_F(ModelBuilderTest, ImportsAComponentOnceAndNeverIntoItself)
{
    builder.import(tank, pump);
    builder.import(tank, pump);
    builder.import(tank, tank);
    EXPECT_THAT(*tank->importedComps, ElementsAre(pump));
}

TEST_F(ModelBuilderTest, MakesANominalTransition)
{
    builder.nominal(off, on, {{true, start}, {false, high}}, 0.5);
    const Transition* made = transition();
    EXPECT_EQ(made->name, "Nominal");
    EXPECT_NE(made->type, "Fail");
    EXPECT_EQ(made->stateVar, mode);
    EXPECT_EQ(made->atom, on);
    EXPECT_EQ(made->proba, 0.5);
    EXPECT_FALSE(made->idle);
}

TEST_F(ModelBuilderTest, MakesAFaultNamedAfterItsTarget)
{
    builder.fault(on, broken, 0.25);
    const Transition* made = transition();
    EXPECT_EQ(made->name, "broken");
    EXPECT_EQ(made->type, "Fail");
    EXPECT_EQ(made->atom, broken);
    EXPECT_EQ(made->proba, 0.25);
}

TEST_F(ModelBuilderTest, MakesARepair)
{
    builder.repair(broken, off, 0.125, {{true, start}});
    const Transition* made = transition();
    EXPECT_EQ(made->name, "Repair");
    EXPECT_EQ(made->type, "Repair");
    EXPECT_EQ(made->atom, off);
    EXPECT_EQ(made->proba, 0.125);
    EXPECT_FALSE(made->idle);
    EXPECT_THAT(*broken->outTransitions, ElementsAre(made));
    EXPECT_THAT(*start->outTransitions, ElementsAre(made));
}

TEST_F(ModelBuilderTest, MakesAnIdleTransition)
{
    builder.idle(on, 0.75);
    const Transition* made = transition();
    EXPECT_TRUE(made->idle);
    EXPECT_NE(made->type, "Fail");
    EXPECT_NE(made->name, "Nominal");
    EXPECT_EQ(made->atom, on);
    EXPECT_THAT(*on->outTransitions, ElementsAre(made));
}

TEST_F(ModelBuilderTest, GuardsATransitionByTheModeItLeavesAndTheGivenAtoms)
{
    builder.nominal(off, on, {{true, start}, {false, high}}, 0.5);
    const Transition* made = transition();
    SignedAtoms expected;
    for (const auto& literal : {std::pair{true, off}, {true, start}, {false, high}}) {
        expected.insert(literal);
    }
    EXPECT_EQ(made->guard->op, "and");
    const SignedAtoms& guard = *made->guard->atoms;
    EXPECT_TRUE(std::equal(guard.begin(), guard.end(), expected.begin(), expected.end()));
}

TEST_F(ModelBuilderTest, StatesTheTargetOfATransitionInItsFormula)
{
    builder.nominal(off, on, {{true, start}}, 0.5);
    const Transition* made = transition();
    ASSERT_EQ(made->formula->atoms->size(), 1U);
    EXPECT_EQ(*made->formula->atoms->begin(), (std::pair<const bool, Atom*>{true, on}));
}

TEST_F(ModelBuilderTest, ListsATransitionInItsTargetItsPreconditionAndItsComponent)
{
    builder.nominal(off, on, {{true, start}, {true, start}}, 0.5);
    builder.fault(on, broken, 0.25);
    const Transition* first = built().transitions()[0];
    const Transition* second = model_->transitions()[1];
    EXPECT_THAT(*on->transitions, ElementsAre(first));
    EXPECT_THAT(*off->transitions, IsEmpty());
    EXPECT_THAT(*off->outTransitions, ElementsAre(first));
    EXPECT_THAT(*start->outTransitions, ElementsAre(first));
    EXPECT_THAT(*on->outTransitions, ElementsAre(second));
    EXPECT_THAT(*broken->transitions, ElementsAre(second));
    EXPECT_THAT(*pump->transitions, ElementsAre(first, second));
}

TEST_F(ModelBuilderTest, FindsAValueByItsText)
{
    EXPECT_EQ(value(mode, "on")->id, "pump.mode=on");
    EXPECT_EQ(value(mode, "On"), nullptr);
    EXPECT_EQ(value(mode, ""), nullptr);
}

} // namespace
