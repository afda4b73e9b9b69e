#include "monitor/step/EngineSearch.h"

#include "tests/monitor/step/StepFixture.h"

namespace {

using monitor::Deviations;
using monitor::Scenario;
using monitor::SearchOutcome;

class EngineSearchTest : public StepFixture {
protected:
    SearchOutcome search(const Names& observations, int faultBudget, const Names& fixed = {},
                         const SearchLimits& limits = {})
    {
        if (!active_) {
            active_ = model_.activate();
        }
        const monitor::StepFrame frame =
            makeFrame(*active_->plant, before(), input(*active_, {}, observations));
        std::vector<bool> keep(active_->plant->variables().size(), false);
        for (const plant::AtomIndex atom : input(*active_, {}, fixed).observations) {
            keep[static_cast<std::size_t>(active_->plant->variableOf(atom))] = true;
        }
        return searchWithEngine(active_->engine, Scenario(frame, {}), keep, faultBudget, limits);
    }
    std::set<Names> found(const SearchOutcome& outcome) const
    {
        std::set<Names> result;
        for (const Deviations& deviations : outcome.candidates) {
            Names names = active_->ids(deviations);
            std::sort(names.begin(), names.end());
            result.insert(names);
        }
        EXPECT_EQ(result.size(), outcome.candidates.size());
        return result;
    }
};

using Sets = std::set<Names>;

TEST_F(EngineSearchTest, FindsWhatExplainsTheDiscrepancy)
{
    makeRow(2);
    const SearchOutcome outcome = search({"in.v=1", "f1.out=0"}, 1);
    EXPECT_EQ(found(outcome), (Sets{{"f0.mode=broken"}, {"f1.mode=broken"}}));
    EXPECT_TRUE(outcome.exhaustive);
    EXPECT_FALSE(outcome.work.partial);
}

TEST_F(EngineSearchTest, WithoutADiscrepancyAcceptsThePrediction)
{
    makeRow(2);
    const SearchOutcome outcome = search({"in.v=1", "f1.out=1"}, 1);
    EXPECT_EQ(found(outcome), (Sets{{}}));
    EXPECT_TRUE(outcome.exhaustive);
}

TEST_F(EngineSearchTest, KeepsTheFixedModes)
{
    makeRow(2);
    const SearchOutcome outcome = search({"in.v=1", "f1.out=0"}, 1, {"f0.mode=ok"});
    EXPECT_EQ(found(outcome), (Sets{{"f1.mode=broken"}}));
}

TEST_F(EngineSearchTest, IsNotExhaustiveUnderALimit)
{
    makeRow(2);
    SearchLimits limits;
    limits.maxRecords = 1;
    const SearchOutcome outcome = search({"in.v=1", "f1.out=0"}, 1, {}, limits);
    EXPECT_FALSE(outcome.exhaustive);
    EXPECT_TRUE(outcome.work.partial);
    EXPECT_EQ(outcome.work.limit, SearchLimit::records);
}

TEST_F(EngineSearchTest, IsNotExhaustiveWhereAtomsAreUnknown)
{
    makeRow(2);
    model_.condition("loose.x", {"0", "1"});
    EXPECT_FALSE(search({"in.v=1", "f1.out=0"}, 1).exhaustive);
}

TEST_F(EngineSearchTest, IsNotExhaustiveWithPrimeImplicates)
{
    makeRow(2);
    active_ = model_.activate();
    active_->engine.piTable = DataManager::newPiTable();
    EXPECT_FALSE(search({"in.v=1", "f1.out=0"}, 1).exhaustive);
}

TEST_F(EngineSearchTest, IsNotExhaustiveWhereTheEngineRefusesAnObservation)
{
    model_.mode("k.mode", {"ok", "loose!"});
    auto* request = static_cast<CommandVar*>(model_.command("k.request", {"none", "go"}));
    request->commandBlocked = true;
    model_.law("!k.mode=ok | k.request=none");
    model_.law("!k.mode=loose | k.request=go");
    model_.fault("k.mode=ok", "k.mode=loose", 0.125);
    const SearchOutcome outcome = search({"k.request=go"}, 1);
    EXPECT_TRUE(outcome.candidates.empty());
    EXPECT_FALSE(outcome.work.begun);
    EXPECT_FALSE(outcome.exhaustive);
}

TEST_F(EngineSearchTest, IsNotExhaustiveWhereACommandFollowsFromAModeInDoubt)
{
    model_.mode("k.mode", {"ok", "stuck!"});
    model_.command("k.request", {"none", "go"});
    model_.condition("k.flow", {"0", "1"});
    model_.law("!k.mode=ok | k.request=none");
    model_.law("!k.mode=stuck | k.request=go");
    model_.law("!k.request=none | k.flow=0");
    model_.law("!k.request=go | k.flow=1");
    model_.fault("k.mode=ok", "k.mode=stuck", 0.125);
    EXPECT_FALSE(search({"k.flow=1"}, 1).exhaustive);
}

TEST_F(EngineSearchTest, KeepsToTheFaultBudgetWhereAFaultIsObserved)
{
    model_.condition("in.v", {"0", "1"});
    model_.follower("a", "in.v");
    model_.follower("b", "in.v");
    EXPECT_TRUE(search({"in.v=1", "a.mode=broken", "b.out=0"}, 1).candidates.empty());
    EXPECT_EQ(found(search({"in.v=1", "a.mode=broken", "b.out=0"}, 2)),
              (Sets{{"a.mode=broken", "b.mode=broken"}}));
}

TEST_F(EngineSearchTest, FindsAFaultBesideOneThatIsGivenUp)
{
    model_.condition("in.v", {"0", "1"});
    model_.follower("a", "in.v");
    model_.follower("b", "in.v");
    model_.fault("a.mode=broken", "a.mode=ok", 0.25);
    before_ = {"a.mode=broken"};
    const SearchOutcome outcome = search({"in.v=1", "a.out=1", "b.out=0"}, 1);
    EXPECT_EQ(found(outcome), (Sets{{"a.mode=ok", "b.mode=broken"}}));
    EXPECT_TRUE(outcome.exhaustive);
}

} // namespace
