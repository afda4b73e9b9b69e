// What an atom predicts, and how well that agrees with what was observed.
#include "tests/support/FlushLog.h"
#include "tests/support/TestModel.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

class PredictionsTest : public testing::Test {
protected:
    PredictionsTest()
    {
        model_.variable(model_.comp("x"), "v", "Cond", {"a", "b", "c", "d", "e"});
        a_ = model_.atom("x.v=a");
        b_ = model_.atom("x.v=b");
        c_ = model_.atom("x.v=c");
        d_ = model_.atom("x.v=d");
        e_ = model_.atom("x.v=e");
    }

    std::vector<Atom*> predicted(Atom* atom)
    {
        const std::unique_ptr<std::vector<Atom*>> made(engine_.predictedAtoms(atom, nullptr));
        return *made;
    }
    double agreement(Atom* atom, std::vector<Atom*> observed)
    {
        return engine_.probaCondObsAtom(atom, &observed);
    }

    TestModel model_;
    itms engine_;
    Atom* a_;
    Atom* b_;
    Atom* c_;
    Atom* d_;
    Atom* e_;
};

TEST_F(PredictionsTest, OfAnAtomWithoutClausesAreTheAtomAlone)
{
    EXPECT_EQ(predicted(a_), std::vector<Atom*>{a_});
}

TEST_F(PredictionsTest, AreTheOppositesOfTheAtomsClausesInTheirOrderAndTheAtomLast)
{
    model_.clause("!x.v=a | x.v=b");
    model_.clause("!x.v=a | x.v=c | x.v=d");
    // F, T, T with c before d: T1 F2 F3 iterates T1 F3 F2.
    EXPECT_EQ(predicted(a_), (std::vector<Atom*>{b_, d_, c_, a_}));
}

TEST_F(PredictionsTest, AreListedOnce)
{
    model_.clause("!x.v=a | x.v=b");
    model_.clause("!x.v=a | x.v=c");
    model_.clause("!x.v=a | x.v=b");
    EXPECT_EQ(predicted(a_), (std::vector<Atom*>{b_, c_, a_}));
}

TEST_F(PredictionsTest, AreNoLiteralsOfTheSameSign)
{
    model_.clause("!x.v=a | !x.v=b");
    EXPECT_EQ(predicted(a_), std::vector<Atom*>{a_});
}

TEST_F(PredictionsTest, FollowClausesOneStepOnly)
{
    model_.clause("!x.v=a | x.v=b");
    model_.clause("!x.v=b | x.v=c");
    EXPECT_EQ(predicted(a_), (std::vector<Atom*>{b_, a_}));
}

TEST_F(PredictionsTest, GoToTheAccumulatorThatIsGiven)
{
    model_.clause("!x.v=a | x.v=b");
    model_.clause("!x.v=a | x.v=c");
    std::vector<Atom*> accumulator{e_, c_};
    EXPECT_EQ(engine_.predictedAtoms(a_, &accumulator), &accumulator);
    EXPECT_EQ(accumulator, (std::vector<Atom*>{e_, c_, b_, a_}));
}

TEST_F(PredictionsTest, AddTheAtomOnceToTheAccumulator)
{
    std::vector<Atom*> accumulator{a_};
    engine_.predictedAtoms(a_, &accumulator);
    EXPECT_EQ(accumulator, std::vector<Atom*>{a_});
}

TEST_F(PredictionsTest, WithoutAccumulatorGoToANewVectorEveryTime)
{
    const std::unique_ptr<std::vector<Atom*>> first(engine_.predictedAtoms(a_, nullptr));
    const std::unique_ptr<std::vector<Atom*>> second(engine_.predictedAtoms(a_, nullptr));
    EXPECT_NE(first, second);
}

TEST_F(PredictionsTest, ListTheAtomWhereAClauseOpposesItToItself)
{
    model_.clause({{true, a_}, {false, a_}, {false, b_}});
    // T1 F2 F3 iterates T1 F3 F2: b, then a itself.
    EXPECT_EQ(predicted(a_), (std::vector<Atom*>{b_, a_}));
}

TEST_F(PredictionsTest, AgreeByTheShareOfObservedAtomsThatArePredicted)
{
    model_.clause("!x.v=a | x.v=b");
    model_.clause("!x.v=a | x.v=c");
    EXPECT_EQ(agreement(a_, {b_, d_, e_}), 1.0 / 3);
    EXPECT_EQ(agreement(a_, {c_, b_, e_}), 2.0 / 3);
    EXPECT_EQ(agreement(a_, {a_, b_, c_}), 1.0);
    EXPECT_EQ(agreement(a_, {d_, e_}), 0.0);
}

TEST_F(PredictionsTest, OfAnObservedAtomWithoutClausesAgreeWithOneOfAll)
{
    EXPECT_EQ(agreement(a_, {a_}), 1.0);
    EXPECT_EQ(agreement(a_, {a_, b_, c_}), 1.0 / 3);
    EXPECT_EQ(agreement(a_, {d_, c_, b_, a_, e_}), 1.0 / 5);
}

TEST_F(PredictionsTest, CountAnAtomThatWasObservedTwiceOnce)
{
    EXPECT_EQ(agreement(a_, {a_, a_}), 1.0 / 2);
}

TEST_F(PredictionsTest, AgreeWithNoObservationsInNoNumber)
{
    EXPECT_TRUE(std::isnan(agreement(a_, {})));
    model_.clause("!x.v=a | x.v=b");
    EXPECT_TRUE(std::isnan(agreement(a_, {})));
}

TEST_F(PredictionsTest, LeaveTheObservationsAlone)
{
    std::vector<Atom*> observed{b_, a_};
    engine_.probaCondObsAtom(a_, &observed);
    EXPECT_EQ(observed, (std::vector<Atom*>{b_, a_}));
}

TEST_F(PredictionsTest, PrintNothing)
{
    model_.clause("!x.v=a | x.v=b");
    const FlushLog log;
    predicted(a_);
    agreement(a_, {b_});
    EXPECT_EQ(log.text(), "");
}

} // namespace
