#include "monitor/why/ConflictCheck.h"

#include "tests/support/HandMade.h"
#include "tests/support/TestModel.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

namespace {

using monitor::checkConflict;
using monitor::ConflictCheck;
using monitor::ConflictClaim;
using monitor::everyValueCounts;

class ConflictCheckTest : public testing::Test {
protected:
    // in -> a -> b
    void SetUp() override
    {
        model_.condition("in.v", {"0", "1"});
        for (const std::string name : {"a", "b"}) {
            model_.mode(name + ".mode", {"ok", "broken!"});
            model_.condition(name + ".out", {"0", "1"});
        }
        model_.law("!a.mode=ok | !in.v=1 | a.out=1");
        model_.law("!b.mode=ok | !a.out=1 | b.out=1");
    }
    // Those of the model, and which of them pass on what comes in. No further one can be given then.
    const std::vector<Clause*>& laws()
    {
        if (!active_) active_ = model_.activate();
        return active_->model->laws();
    }
    const Clause* passA() { return laws()[0]; }
    const Clause* passB() { return laws()[1]; }
    ConflictClaim claim(const std::vector<std::string>& values,
                        std::vector<const Clause*> clauses) const
    {
        ConflictClaim made{{}, std::move(clauses)};
        for (const std::string& id : values) {
            made.values.push_back(model_.atom(id));
        }
        return made;
    }

    MutedTrace muted_;
    HandMade model_;
    std::unique_ptr<ActivePlant> active_;
};

TEST_F(ConflictCheckTest, ConfirmsAChainOfLawsInAnyOrder)
{
    const std::vector<std::string> values{"in.v=1", "a.mode=ok", "b.mode=ok", "b.out=0"};
    EXPECT_EQ(checkConflict(claim(values, {passA(), passB()})), ConflictCheck::confirmed);
    EXPECT_EQ(checkConflict(claim(values, {passB(), passA()})), ConflictCheck::confirmed);
}

TEST_F(ConflictCheckTest, RefusesAConflictWithoutOneOfItsLaws)
{
    const std::vector<std::string> values{"in.v=1", "a.mode=ok", "b.mode=ok", "b.out=0"};
    EXPECT_EQ(checkConflict(claim(values, {passA()})), ConflictCheck::refuted);
    EXPECT_EQ(checkConflict(claim(values, {passB()})), ConflictCheck::refuted);
    EXPECT_EQ(checkConflict(claim(values, {})), ConflictCheck::refuted);
}

TEST_F(ConflictCheckTest, RefusesAConflictWithoutOneOfItsValues)
{
    EXPECT_EQ(checkConflict(claim({"in.v=1", "a.mode=ok", "b.out=0"}, {passA(), passB()})),
              ConflictCheck::refuted);
}

TEST_F(ConflictCheckTest, ConfirmsThatAVariableHasOneValue)
{
    EXPECT_EQ(checkConflict(claim({"in.v=1", "in.v=0"}, {})), ConflictCheck::confirmed);
    EXPECT_EQ(checkConflict(claim({"in.v=1", "in.v=1"}, {})), ConflictCheck::refuted);
}

TEST_F(ConflictCheckTest, TriesValuesWhereNoClauseGivesOne)
{
    for (const char* law : {"a.out=1 | b.out=1 | in.v=0", "a.out=1 | !b.out=1 | in.v=0",
                            "!a.out=1 | b.out=1 | in.v=0", "!a.out=1 | !b.out=1 | in.v=0"}) {
        model_.law(law);
    }
    const std::vector<const Clause*> clauses(laws().begin() + 2, laws().end());
    EXPECT_EQ(checkConflict(claim({"in.v=1"}, clauses)), ConflictCheck::confirmed);
    EXPECT_EQ(checkConflict(claim({"in.v=0"}, clauses)), ConflictCheck::refuted);
    EXPECT_EQ(checkConflict(claim({}, clauses)), ConflictCheck::refuted);
}

TEST_F(ConflictCheckTest, SaysWhenTheBoundDoesNotSettleIt)
{
    const std::vector<std::string> values{"in.v=1", "a.mode=ok", "b.mode=ok", "b.out=0"};
    EXPECT_EQ(checkConflict(claim({"in.v=1"}, {passA(), passB()}), 5), ConflictCheck::unsettled);
    EXPECT_EQ(everyValueCounts(claim(values, {passA(), passB()}), 5), std::nullopt);
}

TEST_F(ConflictCheckTest, TellsWhetherEveryValueCounts)
{
    const std::vector<std::string> values{"in.v=1", "a.mode=ok", "b.mode=ok", "b.out=0"};
    EXPECT_EQ(everyValueCounts(claim(values, {passA(), passB()})), true);
    EXPECT_EQ(everyValueCounts(claim({"in.v=1", "a.mode=ok", "b.mode=ok", "b.out=0", "a.out=1"},
                                     {passA(), passB()})),
              false);
}

// Whether some signs of the atoms make all clauses hold, the values being as they are.
bool isPossible(const ConflictClaim& claim, const std::vector<const Atom*>& atoms)
{
    for (std::uint32_t signs = 0; signs < (1U << atoms.size()); ++signs) {
        const auto holds = [&](const Atom* atom) {
            const auto place = std::find(atoms.begin(), atoms.end(), atom) - atoms.begin();
            return ((signs >> place) & 1U) != 0;
        };
        const bool values =
            std::all_of(claim.values.begin(), claim.values.end(), [&](const Atom* value) {
                return std::all_of(
                    value->stateVar->atomLinks->begin(), value->stateVar->atomLinks->end(),
                    [&](const Atom* other) { return holds(other) == (other == value); });
            });
        if (values && std::all_of(claim.clauses.begin(), claim.clauses.end(), [&](const Clause* one) {
                return std::any_of(
                    one->literals->begin(), one->literals->end(),
                    [&](const auto& literal) { return holds(literal.second) != literal.first; });
            })) {
            return true;
        }
    }
    return false;
}

TEST_F(ConflictCheckTest, AgreesWithATruthTable)
{
    int confirmed = 0;
    for (std::uint64_t seed = 0; seed < 600; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        Random random(seed);
        HandMade model;
        std::vector<const Atom*> atoms;
        std::vector<std::string> ids;
        for (int i = 0; i < 4; ++i) {
            const StateVar* made = model.condition("c.v" + std::to_string(i),
                                                   i == 0 ? std::vector<std::string>{"0", "1", "2"}
                                                          : std::vector<std::string>{"0", "1"});
            for (const Atom* atom : *made->atomLinks) {
                atoms.push_back(atom);
                ids.push_back(atom->id);
            }
        }
        ConflictClaim claim;
        for (int i = random.between(4, 22); i > 0; --i) {
            std::set<std::string> chosen;
            for (int literal = random.between(1, 3); literal > 0; --literal) {
                chosen.insert(random.pick(ids));
            }
            std::string text;
            for (const std::string& id : chosen) {
                text += (random.chance(50) ? " !" : " ") + id;
            }
            model.law(text);
        }
        const auto active = model.activate();
        for (const Clause* clause : active->model->laws()) {
            claim.clauses.push_back(clause);
        }
        for (int i = random.between(0, 2); i > 0; --i) {
            claim.values.push_back(random.pick(atoms));
        }
        const bool possible = isPossible(claim, atoms);
        confirmed += possible ? 0 : 1;
        ASSERT_EQ(checkConflict(claim),
                  possible ? ConflictCheck::refuted : ConflictCheck::confirmed);
    }
    EXPECT_GT(confirmed, 100);
    EXPECT_LT(confirmed, 500);
}

} // namespace
