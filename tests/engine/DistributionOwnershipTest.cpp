// The distributions of a candidate: its own, although the search shares them among its records, and sorted.
#include "tests/engine/EngineTest.h"

#include <set>

namespace {

// Either value of y, or of z, explains p: four candidates, whose distributions given y are computed once and
// handed down from the first conflict to the second.
class DistributionOwnershipTest : public EngineTest {
protected:
    using Distribution = std::map<int, double>;
    using Distributions = std::map<std::string, Distribution>;

    DistributionOwnershipTest()
    {
        StateVar* mode = model.variable(k, "m", "Mode", {"ok", "bad!"});
        model.variable(k, "y", "Cond", {"0", "1"});
        model.variable(model.comp("far"), "z", "Cond", {"0", "1"});
        model.transition(mode->atomLinks->at(0), "Nominal", 0.75);
        model.transition(mode->atomLinks->at(1), "break", 0.25, "Fail");
        props("p");
        law("!k.m=ok | k.y=1");
        law("!k.m=bad | k.y=0");
        law("!p | k.y=0 | k.y=1");
        law("!p | far.z=0 | far.z=1");
        engine.rtInit();
    }
    void beginFalse()
    {
        begin({}, {k, (*DataManager::active_comps)["far"]});
        for (const auto& [id, element] : *state->elements) {
            element->setLabel("false");
        }
    }
    Candidates search()
    {
        beginFalse();
        return add({{true, "p"}});
    }
    static Distributions distributions(const ItmsRes* record)
    {
        Distributions all;
        for (const auto& [id, given] : *record->state->condProbs) {
            all[id] = Distribution(given->begin(), given->end());
        }
        return all;
    }

    const MutedTrace muted;
};

TEST_F(DistributionOwnershipTest, CandidatesKnowTheDistributionsGivenEveryRatedVariable)
{
    const Candidates found = search();
    ASSERT_EQ(found.size(), 4U);
    const Distribution onlyBad{{0, 0.0}, {1, 1.0}};
    const Distribution onlyOk{{0, 1.0}, {1, 0.0}};
    for (const ItmsRes* candidate : found) {
        Distributions given = distributions(candidate);
        ASSERT_EQ(given.size(), 4U);
        EXPECT_EQ(given["k.y=0"], onlyBad);
        EXPECT_EQ(given["k.y=1"], onlyOk);
    }
}

TEST_F(DistributionOwnershipTest, NoTwoCandidatesShareADistribution)
{
    const Candidates found = search();
    std::set<const ProbMap*> seen;
    for (const ItmsRes* candidate : found) {
        for (const auto& [id, given] : *candidate->state->condProbs) {
            EXPECT_TRUE(seen.insert(given).second) << id;
        }
        EXPECT_TRUE(seen.insert(candidate->state->postProbs).second);
    }
    EXPECT_EQ(seen.size(), 4 * 5U);
}

TEST_F(DistributionOwnershipTest, WritingACandidatesDistributionsLeavesTheOthersAlone)
{
    const Candidates found = search();
    for (std::size_t writer = 0; writer < found.size(); ++writer) {
        std::vector<Distributions> before;
        for (const ItmsRes* candidate : found) {
            before.push_back(distributions(candidate));
        }
        for (const auto& [id, given] : *found[writer]->state->condProbs) {
            (*given)[0] = 42.0 + static_cast<double>(writer);
            (*given)[99] = 0.5;
        }
        for (std::size_t reader = 0; reader < found.size(); ++reader) {
            EXPECT_EQ(distributions(found[reader]) == before[reader], reader != writer) << reader;
        }
    }
}

TEST_F(DistributionOwnershipTest, RatingAVariableAnewInOneCandidateLeavesTheOthersAlone)
{
    const Candidates found = search();
    const Distributions before = distributions(found[1]);
    (*found[0]->state->postProbs)[0] = 0.5;
    (*found[0]->state->postProbs)[1] = 0.5;
    engine.entropy(atom("far.z=0")->stateVar, found[0]->state, nullptr);
    EXPECT_EQ(distributions(found[1]), before);
    EXPECT_NE(distributions(found[0])["far.z=0"], distributions(found[1])["far.z=0"]);
}

TEST_F(DistributionOwnershipTest, ReleasingTheOthersLeavesACandidatesDistributions)
{
    for (std::size_t kept = 0; kept < 4; ++kept) {
        beginFalse();
        SignedEls propositions;
        propositions.insert({true, el("p")});
        std::vector<ItmsRes*> results;
        engine.addPropositions(&propositions, nullptr, state.release(), &results, false, 10.0, 0.0,
                               &trajectory, step, false);
        ASSERT_EQ(results.size(), 4U);
        const OwnedRecord left(results[kept]);
        const Distributions before = distributions(left.get());
        for (std::size_t i = 0; i < 4; ++i) {
            if (i != kept) {
                release(results[i]);
            }
        }
        EXPECT_EQ(distributions(left.get()), before) << kept;
    }
}

// y decides which transition took place; z, decided after it, tells nothing and finds the other at 0.
TEST_F(DistributionOwnershipTest, TheLastDecisionsPosteriorLeavesImpossibleTransitionsOut)
{
    const Candidates found = search();
    for (const ItmsRes* candidate : found) {
        const bool bad = elementOf(candidate->state, "k.y=0")->label == "true";
        const Distribution posterior(candidate->state->postProbs->begin(),
                                     candidate->state->postProbs->end());
        EXPECT_EQ(posterior, (Distribution{{bad ? 1 : 0, 1.0}}));
    }
}

using AcceptedDistributionTest = EngineTest;

TEST_F(AcceptedDistributionTest, AcceptedProbabilitiesAreSorted)
{
    StateVar* mode = model.variable(k, "mode", "Mode", {"ok", "bad"});
    model.transition(mode->atomLinks->at(0), "stay", 0.25)->id = 0;
    model.transition(mode->atomLinks->at(1), "fail", 0.75)->id = 1;
    begin();
    const Candidates found = add({});
    const SortedProbMap& sorted = *found[0]->state->sortedPostProbs;
    EXPECT_EQ((std::vector<std::pair<double, int>>(sorted.begin(), sorted.end())),
              (std::vector<std::pair<double, int>>{{0.75, 1}, {0.25, 0}}));
}

TEST_F(AcceptedDistributionTest, TheLikelihoodOfObservationsIsComputedOnTheStatesRequestOnly)
{
    props("a");
    for (const bool asked : {false, true}) {
        begin({{"a", "true"}});
        state->computeProbas = asked;
        state->obsCondProba = 0.5;
        el("a")->lock = 0;
        const Candidates found = add({});
        EXPECT_EQ(found[0]->state->obsCondProba, asked ? 0.0 : 0.5)
            << "no mode holds, so nothing explains the observation";
        EXPECT_EQ(found[0]->state->sortedPostProbs->size(), found[0]->state->postProbs->size());
    }
}

} // namespace
