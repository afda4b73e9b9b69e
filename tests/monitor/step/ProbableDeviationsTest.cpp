#include "monitor/step/ProbableDeviations.h"

#include "monitor/step/Step.h"
#include "tests/monitor/step/StepFixture.h"

#include <cmath>

namespace {

using monitor::ProbableDeviation;
using monitor::ProbableDeviations;

// Two modes that go on or stay, one of which may break.
class ProbableDeviationsTest : public StepFixture {
protected:
    void makeTwo(double first, double second, double broken)
    {
        model_.mode("a.state", {"off", "on"});
        model_.mode("b.state", {"off", "on", "broken!"});
        model_.nominal("a.state=off", "a.state=on", first);
        model_.nominal("b.state=off", "b.state=on", second);
        model_.fault("b.state=off", "b.state=broken", broken);
    }
    ProbableDeviations found(double least, int mostFaults = 9, std::size_t most = 100)
    {
        if (!active_) {
            active_ = model_.activate();
        }
        return probableDeviations(modeSteps(*active_->plant, before(), {}), least, mostFaults, most);
    }
    std::vector<Names> names(const ProbableDeviations& deviations) const
    {
        std::vector<Names> result;
        for (const ProbableDeviation& one : deviations.found) {
            result.push_back(active_->ids(one.deviations));
        }
        return result;
    }
};

using Combinations = std::vector<Names>;

TEST_F(ProbableDeviationsTest, AreThoseThatAreProbableEnoughMostProbableFirst)
{
    makeTwo(3.0 / 4, 1.0 / 2, 1.0 / 16);
    EXPECT_EQ(names(found(0.3)), (Combinations{{"b.state=off"}, {"a.state=off"}}));
}

TEST_F(ProbableDeviationsTest, AreAllThatArePossibleWhereNothingIsTooImprobable)
{
    makeTwo(3.0 / 4, 1.0 / 2, 1.0 / 16);
    const ProbableDeviations all = found(0.0);
    EXPECT_EQ(all.found.size(), 5u); // of 2 * 3, the prediction is one
    EXPECT_TRUE(all.complete);
}

TEST_F(ProbableDeviationsTest, AreComparedWithWhatIsPredicted)
{
    makeTwo(3.0 / 4, 1.0 / 2, 1.0 / 16);
    for (const ProbableDeviation& one : found(0.0).found) {
        if (active_->ids(one.deviations) == Names{"a.state=off", "b.state=broken"}) {
            EXPECT_NEAR(std::exp(one.logRatio), 1.0 / 3 * 1.0 / 8, 1e-12);
            EXPECT_EQ(one.faults, 1);
        }
    }
}

TEST_F(ProbableDeviationsTest, HaveNoMoreFaultsThanAllowed)
{
    makeTwo(3.0 / 4, 1.0 / 2, 1.0 / 16);
    EXPECT_EQ(found(0.0, 0).found.size(), 3u);
}

TEST_F(ProbableDeviationsTest, AreNoMoreThanAskedForAndSaySo)
{
    makeTwo(3.0 / 4, 1.0 / 2, 1.0 / 16);
    const ProbableDeviations few = found(0.0, 9, 2);
    EXPECT_EQ(names(few), (Combinations{{"b.state=off"}, {"a.state=off"}}));
    EXPECT_FALSE(few.complete);
}

TEST_F(ProbableDeviationsTest, OfAModeThatBreaksMoreProbablyThanNotComeBeforeWhatIsPredicted)
{
    makeTwo(1.0, 1.0 / 8, 3.0 / 4);
    const ProbableDeviations all = found(0.5);
    ASSERT_EQ(names(all), (Combinations{{"b.state=broken"}}));
    EXPECT_NEAR(std::exp(all.found.front().logRatio), 6.0, 1e-12);
}

TEST_F(ProbableDeviationsTest, AreNoneOfAPlantThatDoesOneThingOnly)
{
    makeTwo(1.0, 1.0, 0.0);
    EXPECT_TRUE(found(0.0).found.empty());
}

TEST_F(ProbableDeviationsTest, RecoveriesAreTheWaysOutOfAFault)
{
    model_.mode("a.state", {"ok", "slow", "broken!", "burnt!"});
    model_.repair("a.state=broken", "a.state=ok", 1.0 / 1024);
    model_.nominal("a.state=broken", "a.state=slow", 1.0 / 1024);
    model_.fault("a.state=broken", "a.state=burnt", 1.0 / 16);
    before_ = {"a.state=broken"};
    active_ = model_.activate();
    std::vector<Names> result;
    for (const monitor::Deviations& one :
         recoveries(*active_->plant, modeSteps(*active_->plant, before(), {}))) {
        result.push_back(active_->ids(one));
    }
    EXPECT_EQ(result, (Combinations{{"a.state=ok"}, {"a.state=slow"}}));
}

} // namespace
