// Trajectory elements: accessors, truth value, printing.
#include "model/TrajEl.h"
#include "tests/support/FlushLog.h"
#include "tests/support/TestModel.h"

#include <gtest/gtest.h>

namespace {

class TrajElTest : public testing::Test {
protected:
    TrajElTest()
    {
        variable_.type = "Command";
        atom_.stateVar = &variable_;
        atom_.id = "valve.cmd=go";
        el_.atom = &atom_;
    }

    StateVar variable_;
    Atom atom_;
    TrajEl el_;
};

TEST_F(TrajElTest, AnswersForItsAtom)
{
    EXPECT_EQ(el_.getId(), atom_.getId());
    EXPECT_EQ(el_.getStateVar(), &variable_);
    EXPECT_EQ(el_.getVarType(), "Command");
    static_assert(std::is_same_v<decltype(el_.getVarType()), std::string>);
}

TEST_F(TrajElTest, GivesACopyOfItsLabel)
{
    const std::string label = el_.getLabel();
    el_.setLabel("true");
    EXPECT_EQ(label, "unknown");
    EXPECT_EQ(el_.getLabel(), "true");
    EXPECT_EQ(el_.label, "true");
    static_assert(std::is_same_v<decltype(el_.getLabel()), std::string>);
}

TEST_F(TrajElTest, LeavesTheAtomsOwnLabelAlone)
{
    el_.setLabel("true");
    EXPECT_EQ(atom_.label, "unknown");
}

TEST_F(TrajElTest, HoldsOnlyWhenItsLabelIsTrue)
{
    for (const char* label : {"false", "unknown", "", "True"}) {
        el_.setLabel(label);
        EXPECT_FALSE(el_.evalTrajEl()) << label;
    }
    el_.setLabel("true");
    EXPECT_TRUE(el_.evalTrajEl());
}

TEST_F(TrajElTest, PrintsItsLabel)
{
    const FlushLog log;
    el_.showAtom(false);
    EXPECT_EQ(log.text(), "valve.cmd=go : unknown\n");
    EXPECT_EQ(log.flushes(), 0u);
}

TEST_F(TrajElTest, PrintsItsOwnLabelAndNotTheAtoms)
{
    atom_.setLabel("false");
    el_.setLabel("true");
    const FlushLog log;
    el_.showAtom(false);
    EXPECT_EQ(log.text(), "valve.cmd=go : true\n");
}

TEST_F(TrajElTest, PrintsDepthAndLockInFull)
{
    el_.setLabel("false");
    el_.propagationNumber = 3;
    el_.lock = 4;
    const FlushLog log;
    el_.showAtom(true);
    EXPECT_EQ(log.text(), "valve.cmd=go : false (depth 3, lock 4)\n");
    EXPECT_EQ(log.flushes(), 0u);
}

TEST_F(TrajElTest, IsNotLookedAtWhenTheTraceIsMuted)
{
    const TrajEl bare;
    const FlushLog log;
    {
        const MutedTrace muted;
        bare.showAtom(true);
        bare.showAtom(false);
    }
    EXPECT_EQ(log.text(), "");
}

} // namespace
