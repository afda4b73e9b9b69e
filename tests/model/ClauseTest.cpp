// Clauses: how they print, and what they oppose to an atom.
#include "tests/support/FlushLog.h"
#include "tests/support/TestModel.h"

#include <gtest/gtest.h>

namespace {

class ClauseTest : public testing::Test {
protected:
    ClauseTest()
    {
        model_.variable(model_.comp("x"), "v", "Cond", {"a", "b", "c", "d"});
        a_ = model_.atom("x.v=a");
        b_ = model_.atom("x.v=b");
        c_ = model_.atom("x.v=c");
        d_ = model_.atom("x.v=d");
    }

    std::vector<Atom*> opposites(const Clause* clause, Atom* atom)
    {
        const std::unique_ptr<std::vector<Atom*>> found(clause->getOpposites(atom));
        return *found;
    }
    std::string shown(const Clause* clause, bool labels)
    {
        const FlushLog log;
        clause->showClause(labels);
        EXPECT_EQ(log.flushes(), 0u);
        return log.text();
    }

    TestModel model_;
    Atom* a_;
    Atom* b_;
    Atom* c_;
    Atom* d_;
};

TEST_F(ClauseTest, PrintsOneLiteral)
{
    EXPECT_EQ(shown(model_.clause("x.v=a"), false), "x.v=a\n");
    EXPECT_EQ(shown(model_.clause("!x.v=a"), false), "!x.v=a\n");
}

TEST_F(ClauseTest, PrintsTheLiteralsInIterationOrder)
{
    EXPECT_EQ(shown(model_.clause("x.v=a | !x.v=b | x.v=c"), false), "x.v=c | x.v=a | !x.v=b\n");
    EXPECT_EQ(shown(model_.clause("x.v=a | x.v=b | x.v=c"), false), "x.v=c | x.v=b | x.v=a\n");
}

TEST_F(ClauseTest, PrintsTheAtomsOwnLabelsWhenAsked)
{
    a_->setLabel("true");
    b_->setLabel("false");
    EXPECT_EQ(shown(model_.clause("x.v=a | !x.v=b | x.v=c"), true),
              "x.v=c [unknown] | x.v=a [true] | !x.v=b [false]\n");
}

TEST_F(ClauseTest, PrintsFalseWhenItIsEmpty)
{
    const Clause empty;
    EXPECT_EQ(shown(&empty, false), "false\n");
    EXPECT_EQ(shown(&empty, true), "false\n");
}

TEST_F(ClauseTest, IsNotWalkedWhenTheTraceIsMuted)
{
    Clause clause;
    clause.literals->insert({true, nullptr});
    const FlushLog log;
    {
        const MutedTrace muted;
        clause.showClause(false);
        clause.showClause(true);
    }
    EXPECT_EQ(log.text(), "");
}

TEST_F(ClauseTest, OpposesTheLiteralsOfTheOtherSign)
{
    const Clause* clause = model_.clause("!x.v=a | x.v=b | !x.v=c | x.v=d");
    EXPECT_EQ(opposites(clause, a_), (std::vector<Atom*>{d_, b_}));
    EXPECT_EQ(opposites(clause, b_), (std::vector<Atom*>{c_, a_}));
}

TEST_F(ClauseTest, OpposesAtomsInIterationOrder)
{
    // F1 T2 T3 F4 iterates F1 T3 T2 F4.
    const Clause* clause = model_.clause({{false, a_}, {true, b_}, {true, c_}, {false, d_}});
    EXPECT_EQ(opposites(clause, b_), (std::vector<Atom*>{a_, d_}));
    EXPECT_EQ(opposites(clause, d_), (std::vector<Atom*>{c_, b_}));
}

TEST_F(ClauseTest, OpposesNothingInAClauseOfOneSign)
{
    EXPECT_TRUE(opposites(model_.clause("x.v=a | x.v=b"), a_).empty());
    EXPECT_TRUE(opposites(model_.clause("!x.v=a | !x.v=b"), a_).empty());
}

TEST_F(ClauseTest, OpposesNothingToAnAtomThatItDoesNotMention)
{
    EXPECT_TRUE(opposites(model_.clause("x.v=a | !x.v=b"), c_).empty());
}

TEST_F(ClauseTest, OpposesAnAtomOnceThoughItStandsThereTwice)
{
    const Clause* clause = model_.clause({{true, a_}, {false, b_}, {false, b_}});
    EXPECT_EQ(opposites(clause, a_), std::vector<Atom*>{b_});
}

TEST_F(ClauseTest, OpposesByTheFirstLiteralOfAnAtomThatStandsThereWithBothSigns)
{
    // T1 F2 iterates T1 F2: the first literal of a is negated, so the positive ones oppose, a's own among them.
    const Clause* negatedFirst = model_.clause({{true, a_}, {false, a_}});
    EXPECT_EQ(opposites(negatedFirst, a_), std::vector<Atom*>{a_});
    // T1 F2 T3 iterates T3 T1 F2.
    const Clause* further = model_.clause({{true, b_}, {false, a_}, {true, a_}});
    EXPECT_EQ(opposites(further, a_), std::vector<Atom*>{a_});
    // F1 T2 F3 iterates F3 F1 T2.
    const Clause* positiveFirst = model_.clause({{false, a_}, {true, b_}, {false, c_}});
    EXPECT_EQ(opposites(positiveFirst, a_), std::vector<Atom*>{b_});
}

TEST_F(ClauseTest, GivesANewVectorAtEveryCall)
{
    const Clause* clause = model_.clause("!x.v=a | x.v=b");
    const std::unique_ptr<std::vector<Atom*>> first(clause->getOpposites(a_));
    const std::unique_ptr<std::vector<Atom*>> second(clause->getOpposites(a_));
    EXPECT_NE(first, second);
    EXPECT_EQ(*first, *second);
}

} // namespace
