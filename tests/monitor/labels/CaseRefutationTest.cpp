#include "monitor/labels/CaseRefutation.h"

#include "monitor/labels/Completion.h"
#include "monitor/why/ConflictCheck.h"
#include "tests/support/HandMade.h"
#include "tests/support/TestModel.h"

#include <gtest/gtest.h>

namespace {

using Names = std::vector<std::string>;
using monitor::CaseRefutation;
using monitor::Prediction;
using monitor::refuteByCases;

class CaseRefutationTest : public testing::Test {
protected:
    // With the mode m, x and y have no values; z is free.
    void makeSquare()
    {
        model_.condition("a.z", {"0", "1"});
        model_.mode("a.m", {"on", "off"});
        model_.mode("b.m", {"on", "off"});
        model_.condition("a.x", {"0", "1"});
        model_.condition("a.y", {"0", "1"});
        for (const std::string x : {"0", "1"}) {
            for (const std::string y : {"0", "1"}) {
                model_.law("!a.m=on | a.x=" + x + " | a.y=" + y);
            }
        }
        active_ = model_.activate();
    }
    Prediction labels(const std::vector<std::string>& values) const
    {
        Prediction made(*active_->plant);
        for (const std::string& id : values) {
            EXPECT_TRUE(made.assume(active_->index(id)));
        }
        EXPECT_TRUE(made.propagate());
        return made;
    }
    std::set<std::string> assumed(const CaseRefutation& refutation) const
    {
        std::set<std::string> names;
        for (const plant::AtomIndex atom : refutation.assumed) {
            const StateVar* variable = active_->plant->atom(atom)->stateVar;
            names.insert(variable->comp->name + "." + variable->name);
        }
        return names;
    }

    MutedTrace muted_;
    HandMade model_;
    std::unique_ptr<ActivePlant> active_;
};

TEST_F(CaseRefutationTest, NamesTheLawsAndAssumptionsThatCount)
{
    makeSquare();
    const auto refutation = refuteByCases(*active_->plant, labels({"a.m=on", "b.m=on", "a.z=1"}));
    ASSERT_TRUE(refutation);
    EXPECT_EQ(assumed(*refutation), std::set<std::string>{"a.m"});
    int laws = 0;
    for (const plant::ClauseIndex clause : refutation->clauses) {
        laws += active_->plant->isLaw(clause) ? 1 : 0;
    }
    EXPECT_EQ(laws, 4);
}

TEST_F(CaseRefutationTest, PassesOverOpenVariablesThatDoNotCount)
{
    makeSquare();
    const auto refutation = refuteByCases(*active_->plant, labels({"a.m=on"}));
    ASSERT_TRUE(refutation);
    EXPECT_EQ(assumed(*refutation), std::set<std::string>{"a.m"});
    for (const plant::ClauseIndex clause : refutation->clauses) {
        for (const plant::PlantLiteral& literal : active_->plant->clause(clause)) {
            EXPECT_NE(active_->plant->atom(literal.atom)->stateVar->name, "z");
        }
    }
}

TEST_F(CaseRefutationTest, FindsNothingWhereValuesArePossible)
{
    makeSquare();
    EXPECT_FALSE(refuteByCases(*active_->plant, labels({"a.m=off"})));
    EXPECT_FALSE(refuteByCases(*active_->plant, labels({})));
}

TEST_F(CaseRefutationTest, EndsAtItsBound)
{
    makeSquare();
    EXPECT_FALSE(refuteByCases(*active_->plant, labels({"a.m=on"}), 2));
}

// Few laws of few literals over conditions with values at random.
TEST_F(CaseRefutationTest, AgreesWithTryingToCompleteAndIsConfirmed)
{
    int refuted = 0;
    for (std::uint64_t seed = 0; seed < 400; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        Random random(seed);
        HandMade model;
        std::vector<std::string> ids;
        for (int i = 0; i < 6; ++i) {
            const StateVar* made = model.condition(
                "c.v" + std::to_string(i), i % 3 == 0 ? Names{"0", "1", "2"} : Names{"0", "1"});
            for (const Atom* atom : *made->atomLinks) {
                ids.push_back(atom->id);
            }
        }
        for (int i = random.between(20, 36); i > 0; --i) {
            std::set<std::string> chosen;
            while (chosen.size() < 3) {
                chosen.insert((random.chance(50) ? "!" : "") + random.pick(ids));
            }
            std::string text;
            for (const std::string& literal : chosen) {
                text += " " + literal;
            }
            model.law(text);
        }
        active_ = model.activate();
        Prediction made(*active_->plant);
        for (int i = random.between(0, 2); i > 0; --i) {
            made.assume(active_->index(random.pick(ids)));
        }
        if (!made.propagate()) {
            continue;
        }
        const auto refutation = refuteByCases(*active_->plant, made);
        ASSERT_EQ(refutation.has_value(),
                  monitor::completionOf(*active_->plant, made) == monitor::Completion::impossible);
        if (!refutation) {
            continue;
        }
        ++refuted;
        monitor::ConflictClaim claim;
        for (const plant::AtomIndex atom : refutation->assumed) {
            claim.values.push_back(active_->plant->atom(
                *made.valueOf(active_->plant->variable(active_->plant->variableOf(atom)))));
        }
        for (const plant::ClauseIndex clause : refutation->clauses) {
            claim.clauses.push_back(active_->plant->modelClause(clause));
        }
        EXPECT_EQ(checkConflict(claim), monitor::ConflictCheck::confirmed);
    }
    EXPECT_GT(refuted, 40);
}

} // namespace
