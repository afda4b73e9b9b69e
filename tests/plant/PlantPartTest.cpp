#include "plant/PlantPart.h"

#include "tests/support/HandMade.h"
#include "tests/support/TestModel.h"

#include <gtest/gtest.h>

namespace {

using plant::AtomIndex;
using plant::ClauseIndex;
using plant::PlantPart;
using plant::VariableIndex;

// Pairs of pumps, the second of which is fed by the first.
class PlantPartTest : public testing::Test {
protected:
    PlantPartTest()
    {
        for (const std::string name : {"a", "b", "c"}) {
            model_.mode(name + ".state", {"on", "broken!"});
            for (const std::string condition : {".in", ".out"}) {
                model_.condition(name + condition, {"0", "1"});
                model_.condition(name + "fed" + condition, {"0", "1"});
            }
            model_.law("!" + name + ".state=on | !" + name + ".in=1 | " + name + ".out=1");
            model_.law("!" + name + ".out=1 | " + name + "fed.in=1");
            model_.law("!" + name + "fed.in=1 | " + name + "fed.out=1");
        }
        active_ = model_.activate();
    }

    VariableIndex variable(const std::string& id) const
    {
        return active_->plant->variableOf(active_->index(id));
    }
    std::set<std::string> names(const PlantPart& part) const
    {
        std::set<std::string> found;
        for (AtomIndex atom = 0; atom < static_cast<AtomIndex>(part.plant().atomCount()); ++atom) {
            found.insert(part.plant().atom(atom)->id);
        }
        return found;
    }

    MutedTrace muted_;
    HandMade model_;
    std::unique_ptr<ActivePlant> active_;
};

TEST_F(PlantPartTest, HasWhatLawsAndComponentsConnect)
{
    const auto part = active_->plant->parts().around({variable("bfed.in=1")});
    ASSERT_TRUE(part);
    EXPECT_EQ(names(*part), (std::set<std::string>{"b.state=on", "b.state=broken", "b.in=0",
                                                   "b.in=1", "b.out=0", "b.out=1", "bfed.in=0",
                                                   "bfed.in=1", "bfed.out=0", "bfed.out=1"}));
}

TEST_F(PlantPartTest, IsNoneWhereItIsMostOfThePlant)
{
    EXPECT_FALSE(active_->plant->parts().around({variable("a.in=0"), variable("bfed.out=0")}));
}

TEST_F(PlantPartTest, IsTheSameWhicheverOfItsVariablesIsNamed)
{
    plant::PlantParts& parts = active_->plant->parts();
    EXPECT_EQ(parts.around({variable("c.state=on")}),
              parts.around({variable("cfed.out=0"), variable("c.in=0")}));
    EXPECT_NE(parts.around({variable("c.state=on")}), parts.around({variable("a.state=on")}));
}

TEST_F(PlantPartTest, KeepsTheOrderAndTheClausesOfThePlant)
{
    const plant::Plant& whole = *active_->plant;
    const auto part = whole.parts().around({variable("b.in=1")});
    ASSERT_TRUE(part);
    const plant::Plant& here = part->plant();
    AtomIndex last = -1;
    for (AtomIndex atom = 0; atom < static_cast<AtomIndex>(here.atomCount()); ++atom) {
        const AtomIndex there = part->inWhole(atom);
        EXPECT_LT(last, there);
        last = there;
        EXPECT_EQ(here.atom(atom), whole.atom(there));
        EXPECT_EQ(part->here(there), atom);
        EXPECT_EQ(part->variableInWhole(here.variableOf(atom)), whole.variableOf(there));
        const std::span<const ClauseIndex> clauses = here.clausesOf(atom);
        ASSERT_EQ(clauses.size(), whole.clausesOf(there).size());
        for (std::size_t i = 0; i < clauses.size(); ++i) {
            const ClauseIndex clause = whole.clausesOf(there)[i];
            EXPECT_EQ(here.isLaw(clauses[i]), whole.isLaw(clause));
            ASSERT_EQ(here.clause(clauses[i]).size(), whole.clause(clause).size());
            for (std::size_t k = 0; k < whole.clause(clause).size(); ++k) {
                EXPECT_EQ(part->inWhole(here.clause(clauses[i])[k].atom),
                          whole.clause(clause)[k].atom);
                EXPECT_EQ(here.clause(clauses[i])[k].negated, whole.clause(clause)[k].negated);
            }
        }
    }
    EXPECT_EQ(here.modes(), std::vector<VariableIndex>{
                                here.variableOf(*part->here(active_->index("b.state=on")))});
    EXPECT_EQ(here.modesOfWhole(), 3U);
    EXPECT_FALSE(part->here(active_->index("a.in=0")));
}

} // namespace
