// Which plants are networks of cells, and which questions about them are answered without another search.
#include "monitor/step/ConflictSearch.h"

#include "tests/monitor/step/StepFixture.h"

namespace {

/// Counts how often it is asked.
class Asked final : public monitor::ExplanationSearch {
public:
    monitor::Explanations search(const monitor::StepFrame&, int, const SearchLimits&) override
    {
        ++times;
        return {};
    }
    int times = 0;
};

class CellNetworks : public StepFixture {
protected:
    /// An inverter NAME that may be faulty in any way.
    void inverter(const std::string& name, const std::string& input)
    {
        model_.mode(name + ".mode", {"ok", "faulty!"});
        model_.condition(name + ".out", {"0", "1"});
        model_.law(name + ".mode=faulty | !" + input + "=0 | " + name + ".out=1");
        model_.law(name + ".mode=faulty | !" + input + "=1 | " + name + ".out=0");
        model_.fault(name + ".mode=ok", name + ".mode=faulty", 0.25);
    }
    bool isNetwork()
    {
        active_ = model_.activate();
        return monitor::CellNetwork::of(*active_->plant).has_value();
    }
    /// How often the other search is asked about a step.
    int askedOtherwise(const Names& observations, std::size_t inputs)
    {
        const auto other = std::make_shared<Asked>();
        const auto search = std::make_shared<monitor::ConflictSearch>(*active_->plant, other);
        monitor::StepInput step = input(*active_, {}, observations);
        step.inputs = inputs;
        answer_ = monitor::StepSolver(search, *active_->plant).solve(before(), step, settings_);
        return other->times;
    }

    monitor::StepAnswer answer_;
};

} // namespace

TEST_F(CellNetworks, AreMadeOfCellsThatLeaveNothingOpen)
{
    model_.condition("in.v", {"0", "1"});
    inverter("a", "in.v");
    inverter("b", "a.out");
    EXPECT_TRUE(isNetwork());
}

TEST_F(CellNetworks, MayHaveCellsWithoutAMode)
{
    model_.condition("in.v", {"0", "1"});
    model_.condition("a.out", {"0", "1"});
    model_.law("!in.v=0 | a.out=1");
    model_.law("!in.v=1 | a.out=0");
    EXPECT_TRUE(isNetwork());
}

TEST_F(CellNetworks, HaveNoCellThatLeavesAValueOpen)
{
    model_.condition("in.v", {"0", "1"});
    model_.condition("a.out", {"0", "1"});
    model_.law("!in.v=0 | a.out=1");
    EXPECT_FALSE(isNetwork());
}

TEST_F(CellNetworks, HaveNoCellThatContradictsItself)
{
    model_.condition("in.v", {"0", "1"});
    model_.condition("a.out", {"0", "1"});
    model_.law("!in.v=0 | a.out=1");
    model_.law("!in.v=1 | a.out=0");
    model_.law("!in.v=1 | a.out=1");
    EXPECT_FALSE(isNetwork());
}

TEST_F(CellNetworks, HaveNoFaultThatSaysWhatIsShown)
{
    model_.condition("in.v", {"0", "1"});
    model_.follower("a", "in.v");
    EXPECT_FALSE(isNetwork());
}

TEST_F(CellNetworks, HaveNoCircle)
{
    model_.condition("a.out", {"0", "1"});
    inverter("b", "a.out");
    model_.law("!b.out=0 | a.out=0");
    model_.law("!b.out=1 | a.out=1");
    EXPECT_FALSE(isNetwork());
}

TEST_F(CellNetworks, HaveTwoValuesEverywhere)
{
    model_.condition("in.v", {"0", "1"});
    model_.condition("x.level", {"low", "middle", "high"});
    inverter("a", "in.v");
    EXPECT_FALSE(isNetwork());
}

TEST_F(CellNetworks, HaveModesThatLeaveOpenOneOutputEach)
{
    model_.condition("in.v", {"0", "1"});
    inverter("a", "in.v");
    model_.condition("a.second", {"0", "1"});
    model_.law("a.mode=faulty | !in.v=0 | a.second=0");
    model_.law("a.mode=faulty | !in.v=1 | a.second=1");
    EXPECT_FALSE(isNetwork());
}

TEST_F(CellNetworks, AreSearchedWithoutTheOtherSearch)
{
    model_.condition("in.v", {"0", "1"});
    inverter("a", "in.v");
    inverter("b", "a.out");
    ASSERT_TRUE(isNetwork());
    EXPECT_EQ(askedOtherwise({"in.v=0", "b.out=1"}, 1), 0);
    EXPECT_EQ(modes(answer_), (std::set<Names>{{"a.mode=faulty"}, {"b.mode=faulty"}}));
}

TEST_F(CellNetworks, AreLeftToTheOtherSearchWhereASourceIsUnknown)
{
    model_.condition("in.v", {"0", "1"});
    inverter("a", "in.v");
    ASSERT_TRUE(isNetwork());
    EXPECT_EQ(askedOtherwise({"a.out=1"}, 0), 1);
}

TEST_F(CellNetworks, AreLeftToTheOtherSearchWhereSomethingIsFaultyAlready)
{
    model_.condition("in.v", {"0", "1"});
    inverter("a", "in.v");
    inverter("b", "a.out");
    ASSERT_TRUE(isNetwork());
    before_ = {"a.mode=faulty"};
    EXPECT_EQ(askedOtherwise({"in.v=0", "b.out=1"}, 1), 1);
}

TEST_F(CellNetworks, AreLeftToTheOtherSearchWhereAModeIsObserved)
{
    model_.condition("in.v", {"0", "1"});
    inverter("a", "in.v");
    ASSERT_TRUE(isNetwork());
    EXPECT_EQ(askedOtherwise({"in.v=0", "a.mode=faulty"}, 1), 1);
}
