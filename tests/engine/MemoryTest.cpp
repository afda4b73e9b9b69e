// Memory: whatever a search makes is released with its records, in any order, and nothing else is kept.
#include "tests/engine/EngineTest.h"
#include "tests/engine/LiveMemory.h"

#include <algorithm>
#include <random>

namespace {

constexpr unsigned int seed = 20240611;

// A component that may break, the way it shows, and two ways to explain one observation.
class MemoryTest : public EngineTest {
protected:
    MemoryTest()
    {
        StateVar* mode = model.variable(k, "m", "Mode", {"ok", "bad!", "worse!"});
        model.transition(mode->atomLinks->at(0), "Nominal", 0.5);
        model.transition(mode->atomLinks->at(1), "break", 0.25, "Fail");
        model.transition(mode->atomLinks->at(2), "burn", 0.25, "Fail");
        model.domainClauses(mode);
        props("in out f! g!");
        model.variable(k, "go", "Command", {"1"})->commandBlocked = true;
        law("!k.m=ok | !in | out");
        law("!k.m=bad | !out");
        law("!k.m=worse | !out");
        engine.rtInit();
    }
    void beginHealthy()
    {
        begin({{"k.m=ok", "true"},
               {"k.m=bad", "false"},
               {"k.m=worse", "false"},
               {"in", "true"},
               {"out", "true"},
               {"f", "false"},
               {"g", "false"}});
    }
    Candidates diagnose()
    {
        beginHealthy();
        return add({{false, "out"}});
    }
    // The entries that steps file are kept on purpose.
    static std::size_t settled()
    {
        std::vector<ItmsBmkEntry>().swap(DataManager::itmsBmkEntries);
        return liveMemory();
    }
    void giveImplicates(const std::string& head, const std::vector<std::string>& members)
    {
        engine.piTable = DataManager::newPiTable();
        auto* set = new std::vector<Atom*>;
        for (const std::string& member : members) {
            set->push_back(atom(member));
        }
        engine.piTable->addPIAtom(atom(head), new PiTable::Implicates{set});
    }

    const MutedTrace muted;
};

TEST_F(MemoryTest, TheMeasureSeesAllocations)
{
    const std::size_t before = liveMemory();
    auto* lost = new std::vector<int>(100);
    EXPECT_GT(liveMemory(), before);
    delete lost;
    EXPECT_EQ(liveMemory(), before);
}

TEST_F(MemoryTest, AStepHasSeveralCandidates)
{
    EXPECT_GE(diagnose().size(), 2U);
}

TEST_F(MemoryTest, AStepLeavesNothingWhenItsRecordsAreReleased)
{
    diagnose();
    const std::size_t before = settled();
    diagnose();
    EXPECT_EQ(settled(), before);
}

TEST_F(MemoryTest, ThousandsOfStepsLeaveNothing)
{
    diagnose();
    const std::size_t before = settled();
    for (int i = 0; i < 3000; ++i) {
        diagnose();
    }
    EXPECT_EQ(settled(), before);
}

TEST_F(MemoryTest, RecordsOfManyStepsAreReleasedInAnyOrder)
{
    diagnose();
    const std::size_t before = settled();
    {
        std::mt19937 random(seed);
        std::vector<ItmsRes*> open;
        for (int i = 0; i < 2000; ++i) {
            beginHealthy();
            SignedEls propositions;
            propositions.insert({false, el("out")});
            engine.addPropositions(&propositions, nullptr, state.release(), &open, false, 10.0, 0.0,
                                   &trajectory, step, false);
            std::shuffle(open.begin(), open.end(), random);
            while (open.size() > 20) {
                release(open.back());
                open.pop_back();
            }
        }
        for (ItmsRes* record : open) {
            EXPECT_EQ(elementOf(record->state, "out")->label, "false");
            release(record);
        }
    }
    EXPECT_EQ(settled(), before) << "seed " << seed;
}

TEST_F(MemoryTest, StepsThatGoOnFromACopyOfACandidateDoNotGrow)
{
    const auto run = [&](int steps) {
        beginHealthy();
        for (int i = 0; i < steps; ++i) {
            for (const auto& [id, element] : *state->elements) {
                element->lock = 2;
            }
            const Candidates found = add({{i % 2 == 1, "out"}});
            state.reset(new State(found[found.size() - 1]->state, true));
        }
        return settled();
    };
    EXPECT_EQ(run(20), run(2000));
}

TEST_F(MemoryTest, RecordsWithoutASolutionAreReleased)
{
    const auto fail = [&] {
        beginHealthy();
        for (const auto& [id, element] : *state->elements) {
            element->lock = element->label == "true" ? 0 : 1;
        }
        EXPECT_EQ(add({{false, "out"}}).size(), 0U);
    };
    fail();
    const std::size_t before = settled();
    fail();
    EXPECT_EQ(settled(), before);
}

TEST_F(MemoryTest, ASearchThatALimitCutsReleasesTheRest)
{
    diagnose();
    const std::size_t before = settled();
    DataManager::searchLimits = {.maxCandidates = 1};
    EXPECT_EQ(diagnose().size(), 1U);
    DataManager::searchLimits = {.maxRecords = 1};
    diagnose();
    EXPECT_TRUE(DataManager::searchWork.partial);
    DataManager::searchLimits = {.maxSeconds = 0.0};
    EXPECT_EQ(diagnose().size(), 0U);
    DataManager::searchLimits = {};
    EXPECT_EQ(settled(), before);
}

TEST_F(MemoryTest, AdoptedAndRejectedImplicatesLeaveNothing)
{
    giveImplicates("k.m=bad", {"f", "g"});
    diagnose();
    const std::size_t before = settled();
    diagnose();
    beginHealthy();
    el("f")->lock = 1;
    add({{false, "out"}});
    EXPECT_EQ(settled(), before);
}

TEST_F(MemoryTest, ARejectedSetThatIsTheLastChildLeavesNothing)
{
    giveImplicates("f", {"f", "g"});
    Clause* only = law("f");
    const auto reject = [&] {
        beginHealthy();
        el("g")->lock = 1;
        std::stack<ItmsRes*> agenda;
        EXPECT_EQ(engine.propagateThroughConflict(only, new ItmsRes(state.release()), &agenda,
                                                  false, 10.0, &trajectory, step),
                  nullptr);
        EXPECT_TRUE(agenda.empty());
    };
    reject();
    const std::size_t before = settled();
    reject();
    EXPECT_EQ(settled(), before);
}

TEST_F(MemoryTest, EarlyReturnsLoseNothingAndTheStateCanBeUsedAgain)
{
    beginHealthy();
    addInVain({{true, "go"}}, {});
    const std::size_t before = settled();
    for (int i = 0; i < 1000; ++i) {
        EXPECT_EQ(addInVain({{true, "in"}, {i % 2 == 0, "go"}}, {}).size(), 0U);
        EXPECT_EQ(addInVain({{true, "f"}}, {.maxRank = 0.5}).size(), 0U);
    }
    EXPECT_EQ(settled(), before);
    EXPECT_GE(add({{false, "out"}}).size(), 2U);
}

TEST_F(MemoryTest, FullScansForConflictsLoseNothing)
{
    beginHealthy();
    el("out")->setLabel("false");
    engine.checkForConflicts(nullptr, state.get(), &trajectory, step);
    const std::size_t before = settled();
    engine.checkForConflicts(nullptr, state.get(), &trajectory, step);
    EXPECT_EQ(settled(), before);
}

TEST_F(MemoryTest, ADistributionThatTheCallerPutIntoTheStateIsReleasedWithIt)
{
    diagnose();
    const std::size_t before = settled();
    beginHealthy();
    (*state->condProbs)["k.out=1"] = new ProbMap;
    (*state->condProbs)["k.m=ok"] = new ProbMap;
    add({{false, "out"}});
    EXPECT_EQ(settled(), before);
}

TEST_F(MemoryTest, AnElementHasNoDependentsOutsideItsOwnState)
{
    const Candidates found = diagnose();
    std::size_t dependents = 0;
    for (const ItmsRes* candidate : found) {
        for (const auto& [id, element] : *candidate->state->elements) {
            for (TrajEl* dependent : *element->dependents) {
                EXPECT_EQ(dependent, elementOf(candidate->state, dependent->getId()));
                ++dependents;
            }
        }
    }
    EXPECT_GT(dependents, 0U);
}

} // namespace
