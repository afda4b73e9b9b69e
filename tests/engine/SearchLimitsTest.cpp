// Limits of a search: what it does under them, what it tells, and that without them nothing changes.
#include "tests/engine/EngineTest.h"

#include <chrono>
#include <functional>
#include <limits>

namespace {

// p makes n clauses false, each of which either of two conditions resolves: 2^n candidates, 2^n - 1 records.
class SearchLimitsTest : public EngineTest {
protected:
    struct Outcome {
        std::vector<std::map<std::string, std::string>> labels; ///< of every candidate, by identifier
        std::string text;
        SearchWork work;
    };

    SearchLimitsTest()
    {
        props("p");
        conflicts(0, 4);
    }
    void conflicts(int from, int to)
    {
        for (int i = from; i < to; ++i) {
            const std::string n = std::to_string(i);
            props("a" + n);
            props("b" + n);
            law("!p | a" + n + " | b" + n);
        }
    }
    Candidates search()
    {
        begin();
        for (const auto& [id, element] : *state->elements) {
            element->setLabel("false");
        }
        trace.take();
        return add({{true, "p"}});
    }
    Outcome outcome(const SearchLimits& limits)
    {
        DataManager::searchLimits = limits;
        const Candidates found = search();
        Outcome result;
        result.text = trace.take();
        result.work = DataManager::searchWork;
        for (const ItmsRes* candidate : found) {
            result.labels.emplace_back();
            for (const auto& [id, element] : *candidate->state->elements) {
                result.labels.back()[id] = element->label;
            }
        }
        return result;
    }
    // Expects `cut` to be how `whole` begins: its first candidates, its trace up to where it stopped.
    static void expectBeginning(const Outcome& cut, const Outcome& whole)
    {
        ASSERT_LE(cut.labels.size(), whole.labels.size());
        for (std::size_t i = 0; i < cut.labels.size(); ++i) {
            EXPECT_EQ(cut.labels[i], whole.labels[i]) << i;
        }
        const std::string last =
            "[addClause] --> res' size : " + std::to_string(cut.labels.size()) + "\n";
        ASSERT_GE(cut.text.size(), last.size());
        const std::size_t body = cut.text.size() - last.size();
        EXPECT_EQ(cut.text.substr(body), last);
        EXPECT_EQ(cut.text.substr(0, body), whole.text.substr(0, body));
    }
    static void expectSame(const Outcome& a, const Outcome& b)
    {
        EXPECT_EQ(a.labels, b.labels);
        EXPECT_EQ(a.text, b.text);
        EXPECT_EQ(a.work.records, b.work.records);
        EXPECT_EQ(a.work.flips, b.work.flips);
        EXPECT_EQ(a.work.components, b.work.components);
        EXPECT_EQ(a.work.candidates, b.work.candidates);
        EXPECT_FALSE(b.work.partial);
        EXPECT_EQ(b.work.limit, SearchLimit::none);
    }
};

TEST_F(SearchLimitsTest, NothingIsLimitedByDefault)
{
    EXPECT_EQ(DataManager::searchLimits.maxRecords, SearchLimits::unlimited);
    EXPECT_EQ(DataManager::searchLimits.maxCandidates, SearchLimits::unlimited);
    EXPECT_EQ(DataManager::searchLimits.maxSeconds, std::numeric_limits<double>::infinity());
}

TEST_F(SearchLimitsTest, AWholeSearchIsNotPartialAndCountsItsWork)
{
    const Outcome whole = outcome({});
    EXPECT_EQ(whole.labels.size(), 16U);
    EXPECT_EQ(whole.work.records, 15U);
    EXPECT_EQ(whole.work.flips, 30U);
    EXPECT_EQ(whole.work.candidates, 16U);
    EXPECT_EQ(whole.work.components, 0U);
    EXPECT_FALSE(whole.work.partial);
    EXPECT_EQ(whole.work.limit, SearchLimit::none);
}

TEST_F(SearchLimitsTest, ALimitThatIsNotMetChangesNothing)
{
    const Outcome whole = outcome({});
    expectSame(whole, outcome({.maxRecords = 16}));
    expectSame(whole, outcome({.maxCandidates = 17}));
    expectSame(whole, outcome({.maxSeconds = 3600.0}));
    expectSame(whole, outcome({.maxRecords = 16, .maxCandidates = 17, .maxSeconds = 3600.0}));
}

TEST_F(SearchLimitsTest, ALimitThatTheWholeSearchJustUsesUpCutsNothing)
{
    const Outcome whole = outcome({});
    expectSame(whole, outcome({.maxCandidates = 16}));
    EXPECT_EQ(DataManager::searchWork.candidates, 16U);
}

TEST_F(SearchLimitsTest, NoMoreRecordsAreExpandedThanAllowed)
{
    const Outcome whole = outcome({});
    for (std::uint64_t limit = 0; limit < 15; ++limit) {
        const Outcome cut = outcome({.maxRecords = limit});
        EXPECT_EQ(cut.work.records, limit);
        EXPECT_TRUE(cut.work.partial) << limit;
        EXPECT_EQ(cut.work.limit, SearchLimit::records);
        EXPECT_EQ(cut.work.candidates, cut.labels.size());
        expectBeginning(cut, whole);
    }
}

TEST_F(SearchLimitsTest, NoMoreCandidatesAreReturnedThanAllowed)
{
    const Outcome whole = outcome({});
    for (std::uint64_t limit = 0; limit < 16; ++limit) {
        const Outcome cut = outcome({.maxCandidates = limit});
        EXPECT_EQ(cut.labels.size(), limit);
        EXPECT_EQ(cut.work.candidates, limit);
        EXPECT_TRUE(cut.work.partial) << limit;
        EXPECT_EQ(cut.work.limit, SearchLimit::candidates);
        expectBeginning(cut, whole);
    }
}

TEST_F(SearchLimitsTest, WithoutAnyTimeTheSearchEndsBeforeItsFirstRecord)
{
    const Outcome whole = outcome({});
    const Outcome cut = outcome({.maxSeconds = 0.0});
    EXPECT_EQ(cut.work.records, 0U);
    EXPECT_TRUE(cut.work.partial);
    EXPECT_EQ(cut.work.limit, SearchLimit::seconds);
    EXPECT_TRUE(cut.labels.empty());
    expectBeginning(cut, whole);
}

// 2^60 candidates: without the limit this search would not end.
TEST_F(SearchLimitsTest, ASearchThatWouldNotEndEndsWhenItsTimeIsUp)
{
    conflicts(4, 60);
    const MutedTrace muted;
    DataManager::searchLimits.maxSeconds = 0.05;
    const auto start = std::chrono::steady_clock::now();
    const Candidates found = search();
    const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start;
    EXPECT_TRUE(DataManager::searchWork.partial);
    EXPECT_EQ(DataManager::searchWork.limit, SearchLimit::seconds);
    EXPECT_EQ(found.size(), DataManager::searchWork.candidates);
    EXPECT_GT(DataManager::searchWork.records, 0U);
    EXPECT_GE(elapsed.count(), 0.05);
    EXPECT_LT(elapsed.count(), 20.0);
}

TEST_F(SearchLimitsTest, ASearchThatWouldNotEndEndsAtItsRecordsAndCandidates)
{
    conflicts(4, 60);
    const MutedTrace muted;
    DataManager::searchLimits = {.maxRecords = 500};
    {
        const Candidates found = search();
        EXPECT_EQ(DataManager::searchWork.records, 500U);
        EXPECT_GT(found.size(), 0U);
    }
    DataManager::searchLimits = {.maxCandidates = 20};
    EXPECT_EQ(search().size(), 20U);
}

TEST_F(SearchLimitsTest, CandidatesOfEarlierCallsDoNotCount)
{
    DataManager::searchLimits.maxCandidates = 3;
    auto* results = new std::vector<ItmsRes*>;
    for (int i = 0; i < 2; ++i) {
        begin();
        for (const auto& [id, element] : *state->elements) {
            element->setLabel("false");
        }
        SignedEls propositions;
        propositions.insert({true, el("p")});
        engine.addPropositions(&propositions, nullptr, state.release(), results, false, 10.0, 0.0,
                               &trajectory, step, false);
    }
    const Candidates found(results);
    EXPECT_EQ(found.size(), 6U);
    EXPECT_EQ(DataManager::searchWork.candidates, 3U);
}

TEST_F(SearchLimitsTest, AnEntryIsFiledForACutSearchToo)
{
    outcome({.maxCandidates = 5});
    ASSERT_EQ(DataManager::itmsBmkEntries.size(), 1U);
    EXPECT_EQ(DataManager::itmsBmkEntries[0].count, 5U);
}

TEST_F(SearchLimitsTest, TheNextSearchStartsWithItsWorkAtNothing)
{
    outcome({.maxRecords = 3});
    expectSame(outcome({}), outcome({}));
}

TEST_F(SearchLimitsTest, AnEarlyReturnReportsNoWork)
{
    StateVar* command = model.variable(k, "go", "Command", {"1"});
    command->commandBlocked = true;
    outcome({.maxRecords = 3});
    begin();
    const Candidates found = addInVain({{true, "go"}}, {});
    EXPECT_EQ(DataManager::searchWork.records, 0U);
    EXPECT_EQ(DataManager::searchWork.candidates, 0U);
    EXPECT_FALSE(DataManager::searchWork.partial);
    EXPECT_FALSE(DataManager::searchWork.begun);
}

TEST_F(SearchLimitsTest, ASearchThatRanIsMarkedAsBegun)
{
    outcome({.maxRecords = 0});
    EXPECT_TRUE(DataManager::searchWork.begun) << "it took the state over, and released it";
}

TEST_F(SearchLimitsTest, OfTwoLimitsTheOneThatIsMetFirstIsTold)
{
    EXPECT_EQ(outcome({.maxRecords = 6, .maxCandidates = 1}).work.limit, SearchLimit::candidates);
    EXPECT_EQ(outcome({.maxRecords = 2, .maxCandidates = 9}).work.limit, SearchLimit::records);
}

TEST_F(SearchLimitsTest, ComponentsOnDemandAreCounted)
{
    remote("far");
    law("!p | far.x=1");
    atom("far.x=1")->setLabel("false");
    EXPECT_EQ(outcome({}).work.components, 1U);
}

TEST_F(SearchLimitsTest, WhatACutSearchReturnsOutlivesWhatItReleases)
{
    DataManager::searchLimits.maxCandidates = 4;
    const Candidates found = search();
    ASSERT_EQ(found.size(), 4U);
    for (ItmsRes* candidate : found) {
        for (const auto& [id, distribution] : *candidate->state->condProbs) {
            (*distribution)[0] = 1.0;
        }
        EXPECT_EQ(elementOf(candidate->state, "p")->label, "true");
        EXPECT_EQ(candidate->already_changed->size(), 5U);
    }
}

} // namespace
