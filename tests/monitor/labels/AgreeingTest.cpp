#include "monitor/labels/Agreeing.h"

#include "tests/support/HandMade.h"
#include "tests/support/TestModel.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using Names = std::vector<std::string>;
using testing::ElementsAre;
using testing::IsEmpty;

// What comes out is what goes in; there are two of these.
class AgreeingTest : public testing::Test {
protected:
    AgreeingTest()
    {
        model_.mode("m.mode", {"ok", "bad!"});
        for (const std::string part : {"p", "q"}) {
            model_.condition(part + ".in", {"0", "1"});
            model_.condition(part + ".out", {"0", "1"});
            for (const std::string value : {"0", "1"}) {
                model_.law("!m.mode=ok | !" + part + ".in=" + value + " | " + part + ".out=" + value);
            }
        }
        model_.condition("m.light", {"green", "red"});
        model_.law("!m.mode=ok | m.light=green");
    }
    monitor::AgreeingLabels found(const Names& observations, const std::string& mode = "m.mode=ok",
                                  std::size_t inputs = 0)
    {
        if (!active_) {
            active_ = model_.activate();
        }
        monitor::StepLabels labels(*active_->plant);
        labels.take({active_->index(mode)}, input(*active_, {}, observations).observations, inputs);
        return agreeing(*active_->plant, labels);
    }
    Names leftOut(const Names& observations, const std::string& mode = "m.mode=ok")
    {
        return active_ ? active_->ids(found(observations, mode).leftOut)
                       : (found({}), leftOut(observations, mode));
    }

    MutedTrace muted_;
    HandMade model_;
    std::unique_ptr<ActivePlant> active_;
};

TEST_F(AgreeingTest, NothingIsLeftOutWhereNothingIsContradicted)
{
    EXPECT_THAT(leftOut({"p.in=0", "p.out=0", "m.light=green"}), IsEmpty());
}

TEST_F(AgreeingTest, AReadingThatTheModesRuleOutIsLeftOut)
{
    EXPECT_THAT(leftOut({"p.in=0", "m.light=red", "p.out=0"}), ElementsAre("m.light=red"));
}

TEST_F(AgreeingTest, OfTwoThatContradictEachOtherBothAreLeftOutInAnyOrder)
{
    EXPECT_THAT(leftOut({"p.in=0", "p.out=1"}), ElementsAre("p.in=0", "p.out=1"));
    EXPECT_THAT(leftOut({"p.out=1", "p.in=0"}), ElementsAre("p.out=1", "p.in=0"));
}

TEST_F(AgreeingTest, AnInputIsBelieved)
{
    EXPECT_EQ(found({"p.in=0", "p.out=1"}, "m.mode=ok", 1).leftOut.size(), 1u);
    EXPECT_TRUE(found({"p.in=0", "p.out=1"}, "m.mode=ok", 1)
                    .labels.prediction()
                    .isTrue(active_->index("p.out=0")));
}

TEST_F(AgreeingTest, InputsThatContradictEachOtherAreNot)
{
    EXPECT_EQ(found({"p.in=0", "p.out=1"}, "m.mode=ok", 2).leftOut.size(), 2u);
}

TEST_F(AgreeingTest, WhatHasNothingToDoWithAContradictionIsKept)
{
    EXPECT_THAT(leftOut({"q.in=1", "p.in=0", "q.out=1", "p.out=1"}),
                ElementsAre("p.in=0", "p.out=1"));
    const monitor::AgreeingLabels labels = found({"q.in=1", "p.in=0", "p.out=1"});
    EXPECT_TRUE(labels.labels.prediction().isTrue(active_->index("q.out=1")));
    EXPECT_FALSE(labels.labels.prediction().isKnown(active_->index("p.in=0")));
}

TEST_F(AgreeingTest, NothingIsLeftOutWhereTheModesLeaveEverythingOpen)
{
    EXPECT_THAT(leftOut({"p.in=0", "p.out=1", "m.light=red"}, "m.mode=bad"), IsEmpty());
}

TEST_F(AgreeingTest, WhatContradictsByCasesOnlyIsLeftOut)
{
    model_.condition("x.v", {"0", "1"});
    model_.condition("x.w", {"0", "1"});
    model_.condition("x.u", {"0", "1"});
    for (const std::string v : {"0", "1"}) {
        for (const std::string w : {"0", "1"}) {
            model_.law("x.u=1 | x.v=" + v + " | x.w=" + w);
        }
    }
    EXPECT_THAT(leftOut({"x.u=0", "p.in=0"}), ElementsAre("x.u=0"));
    EXPECT_THAT(leftOut({"x.u=1", "p.in=0"}), IsEmpty());
}

} // namespace
