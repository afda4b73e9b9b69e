#include "model/DataManager.h"
#include "tests/support/HandMade.h"
#include "tests/support/TestModel.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

using plant::AtomIndex;
using plant::Plant;

class PlantTest : public testing::Test {
protected:
    MutedTrace muted_;
};

TEST_F(PlantTest, NumbersEveryAtomOfEveryVariable)
{
    Random random(11);
    ActivePlant active(randomModel(random, PlantKind::mixed));
    const Plant& plant = *active.plant;
    EXPECT_EQ(plant.atomCount(), active.model->atoms().size());
    for (const auto& atom : active.model->atoms()) {
        const AtomIndex index = plant.indexOf(atom.get());
        EXPECT_EQ(plant.atom(index), atom.get());
        const plant::PlantVariable& variable = plant.variable(plant.variableOf(index));
        EXPECT_EQ(variable.variable, atom->stateVar);
        EXPECT_EQ(std::count(variable.values.begin(), variable.values.end(), index), 1);
    }
}

TEST_F(PlantTest, ListsComponentsAsTheRegistryDoes)
{
    DataManager::reset();
    Random random(12);
    for (int round = 0; round < 20; ++round) {
        const auto model = randomModel(random, PlantKind::mixed);
        const Plant before(*model);
        model->activate();
        const Plant after(*model);
        std::vector<const StateVar*> listed;
        for (const auto& [name, comp] : *DataManager::active_comps) {
            listed.insert(listed.end(), comp->stateVars->begin(), comp->stateVars->end());
        }
        std::vector<const StateVar*> ofBefore;
        std::vector<const StateVar*> ofAfter;
        for (std::size_t i = 0; i < before.variables().size(); ++i) {
            ofBefore.push_back(before.variables()[i].variable);
            ofAfter.push_back(after.variables()[i].variable);
        }
        EXPECT_EQ(ofBefore, listed);
        EXPECT_EQ(ofAfter, listed);
    }
}

TEST_F(PlantTest, KeepsTheOrderOfTheValues)
{
    HandMade model;
    const StateVar* made = model.condition("a.x", {"low", "middle", "high"});
    const auto active = model.activate();
    const plant::PlantVariable& variable =
        active->plant->variable(active->plant->variableOf(active->index("a.x=low")));
    EXPECT_EQ(active->ids(variable.values.toVector()),
              (std::vector<std::string>{"a.x=low", "a.x=middle", "a.x=high"}));
    EXPECT_EQ(variable.variable, made);
}

TEST_F(PlantTest, TellsModesAndCommandsFromConditions)
{
    HandMade model;
    model.mode("a.m", {"ok", "broken!"});
    model.condition("a.c", {"0", "1"});
    model.command("a.k", {"none", "go"});
    const auto active = model.activate();
    const auto variable = [&](const std::string& id) -> const plant::PlantVariable& {
        return active->plant->variable(active->plant->variableOf(active->index(id)));
    };
    EXPECT_TRUE(variable("a.m=ok").isMode && !variable("a.m=ok").isCommand);
    EXPECT_TRUE(!variable("a.c=0").isMode && !variable("a.c=0").isCommand);
    EXPECT_TRUE(!variable("a.k=go").isMode && variable("a.k=go").isCommand);
}

TEST_F(PlantTest, TellsRepairsFromNominalChangesAndFaults)
{
    HandMade model;
    model.mode("a.m", {"ok", "off", "broken!"});
    model.nominal("a.m=broken", "a.m=off", 0.25);
    model.fault("a.m=broken", "a.m=off", 0.25);
    model.repair("a.m=broken", "a.m=ok", 0.125);
    const auto active = model.activate();
    std::vector<std::pair<bool, bool>> given;
    for (const plant::PlantChange& change :
         active->plant->changesFrom(active->index("a.m=broken"))) {
        given.emplace_back(change.nominal, change.repair);
    }
    EXPECT_EQ(given,
              (std::vector<std::pair<bool, bool>>{{true, false}, {false, false}, {false, true}}));
}

TEST_F(PlantTest, HasEveryClauseOnceWithItsLiterals)
{
    Random random(12);
    ActivePlant active(randomModel(random, PlantKind::mixed));
    std::multiset<std::multiset<std::pair<bool, AtomIndex>>> expected;
    for (const Clause* clause : allClauses()) {
        std::multiset<std::pair<bool, AtomIndex>> literals;
        for (const auto& [negated, atom] : *clause->literals) {
            literals.emplace(negated, active.plant->indexOf(atom));
        }
        expected.insert(literals);
    }
    std::multiset<std::multiset<std::pair<bool, AtomIndex>>> given;
    for (std::size_t i = 0; i < active.plant->clauseCount(); ++i) {
        std::multiset<std::pair<bool, AtomIndex>> literals;
        for (const plant::PlantLiteral& literal :
             active.plant->clause(static_cast<plant::ClauseIndex>(i))) {
            literals.emplace(literal.negated, literal.atom);
        }
        given.insert(literals);
    }
    EXPECT_EQ(given, expected);
}

TEST_F(PlantTest, ListsOfAnAtomTheClausesThatItOccursIn)
{
    Random random(13);
    ActivePlant active(randomModel(random, PlantKind::circuit));
    const Plant& plant = *active.plant;
    for (std::size_t i = 0; i < plant.atomCount(); ++i) {
        const auto atom = static_cast<AtomIndex>(i);
        std::vector<plant::ClauseIndex> expected;
        for (std::size_t j = 0; j < plant.clauseCount(); ++j) {
            const auto literals = plant.clause(static_cast<plant::ClauseIndex>(j));
            if (std::any_of(literals.begin(), literals.end(),
                            [&](const auto& literal) { return literal.atom == atom; })) {
                expected.push_back(static_cast<plant::ClauseIndex>(j));
            }
        }
        const auto clauses = plant.clausesOf(atom);
        EXPECT_EQ(std::vector(clauses.begin(), clauses.end()), expected);
    }
}

TEST_F(PlantTest, ListsTheClausesOfOneLiteralOrNone)
{
    HandMade model;
    model.condition("a.x", {"0", "1"});
    model.law("a.x=1");
    model.law("");
    const auto active = model.activate();
    ASSERT_EQ(active->plant->unitClauses().size(), 2u);
    EXPECT_EQ(active->plant->clause(active->plant->unitClauses()[0]).size(), 1u);
    EXPECT_EQ(active->plant->clause(active->plant->unitClauses()[1]).size(), 0u);
}

TEST_F(PlantTest, KnowsTheObjectOfEachClauseAndWhetherItIsALaw)
{
    HandMade model;
    model.condition("a.x", {"0", "1"});
    model.condition("a.y", {"0", "1"});
    model.law("!a.x=1 | a.y=1");
    const auto active = model.activate();
    const Clause* law = active->model->laws().front();
    const Plant& plant = *active->plant;
    int laws = 0;
    for (plant::ClauseIndex i = 0; i < static_cast<plant::ClauseIndex>(plant.clauseCount()); ++i) {
        EXPECT_EQ(plant.modelClause(i)->literals->size(), plant.clause(i).size());
        EXPECT_EQ(plant.isLaw(i), plant.modelClause(i) == law);
        laws += plant.isLaw(i) ? 1 : 0;
    }
    EXPECT_EQ(laws, 1);
}

} // namespace
