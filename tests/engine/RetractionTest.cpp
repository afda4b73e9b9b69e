// Retraction: an element goes back to "unknown", and with it whatever no longer has a support that holds.
#include "tests/engine/EngineTest.h"

namespace {

using Names = std::vector<std::string>;

class RetractionTest : public EngineTest {
protected:
    Names retract(const std::string& name)
    {
        std::vector<TrajEl*> out;
        engine.deleteClause(el(name), &out, state.get(), &trajectory, step);
        return names(out);
    }
    // Makes the clause the support of the element, which joins the dependents of the clause's other elements.
    void support(Clause* clause, const std::string& name)
    {
        engine.setSupport(clause, el(name), state.get(), &trajectory, step);
    }
    // What is printed when an element with that many dependents has been retracted.
    std::string tail(const std::string& name, int dependents)
    {
        return std::to_string(dependents) + "\n" + printed(el(name)->dependents) + "\n";
    }
};

TEST_F(RetractionTest, AnElementWithoutDependentsIsTheOnlyOneRetracted)
{
    props("a b");
    begin({{"a", "true"}});
    EXPECT_EQ(retract("a"), Names{"a"});
}

TEST_F(RetractionTest, TheTraceShowsTheElementAsItWasAndItsDependents)
{
    props("a");
    begin({{"a", "true"}});
    el("a")->lock = 3;
    retract("a");
    EXPECT_EQ(trace.take(),
              "[deleteClause] --> delete clause :\nk.a=1 -- true -- 3\n\n" + tail("a", 0));
}

TEST_F(RetractionTest, TheTraceShowsASupport)
{
    props("a b");
    Clause* clause = law("!b | a");
    begin({{"a", "false"}});
    el("a")->support = clause;
    retract("a");
    EXPECT_EQ(trace.take(), "[deleteClause] --> delete clause :\nk.a=1 -- false -- 2\n"
                            "support : !k.b=1 | k.a=1\n\n" +
                                tail("a", 0));
}

TEST_F(RetractionTest, LabelSupportAndDepthAreClearedAndTheLockStays)
{
    props("a b");
    Clause* clause = law("!b | a");
    begin({{"a", "true"}});
    el("a")->support = clause;
    el("a")->propagationNumber = 5;
    el("a")->lock = 3;
    retract("a");
    EXPECT_EQ(el("a")->label, "unknown");
    EXPECT_EQ(el("a")->support, nullptr);
    EXPECT_EQ(el("a")->propagationNumber, 0);
    EXPECT_EQ(el("a")->lock, 3);
}

TEST_F(RetractionTest, TheGivenVectorIsReturnedWithWhatItHeld)
{
    props("a b");
    begin({{"a", "true"}});
    std::vector<TrajEl*> out{el("b")};
    EXPECT_EQ(engine.deleteClause(el("a"), &out, state.get(), &trajectory, step), &out);
    EXPECT_EQ(names(out), (Names{"b", "a"}));
}

TEST_F(RetractionTest, ADependentWhoseSupportHoldsByAnotherLiteralStays)
{
    props("a b c");
    Clause* clause = law("!a | b | c");
    begin({{"a", "true"}, {"b", "true"}, {"c", "false"}});
    support(clause, "c");
    EXPECT_EQ(retract("a"), Names{"a"});
    EXPECT_EQ(el("c")->label, "false");
    EXPECT_EQ(el("c")->support, clause);
}

TEST_F(RetractionTest, ADependentThatMakesItsOwnSupportHoldStays)
{
    props("a b");
    Clause* clause = law("!a | b");
    begin({{"a", "true"}, {"b", "true"}});
    support(clause, "b");
    EXPECT_EQ(retract("a"), Names{"a"});
}

TEST_F(RetractionTest, ADependentWithoutSupportStays)
{
    props("a b");
    begin({{"a", "true"}, {"b", "true"}});
    el("a")->dependents->push_back(el("b"));
    EXPECT_EQ(retract("a"), Names{"a"});
    EXPECT_EQ(el("b")->label, "true");
}

TEST_F(RetractionTest, ADependentWhoseSupportNoLongerHoldsIsRetracted)
{
    props("a b");
    Clause* clause = law("!a | b");
    begin({{"a", "false"}, {"b", "false"}});
    support(clause, "b");
    EXPECT_EQ(retract("a"), (Names{"a", "b"}));
    EXPECT_EQ(el("b")->label, "unknown");
    EXPECT_EQ(el("b")->support, nullptr);
}

TEST_F(RetractionTest, DependentsAreForgotten)
{
    props("a b c");
    law("!a | b | c");
    begin({{"a", "true"}, {"b", "true"}});
    support(atom("a")->clauses->front(), "c");
    support(atom("a")->clauses->front(), "b");
    retract("a");
    EXPECT_TRUE(el("a")->dependents->empty());
    EXPECT_EQ(el("c")->dependents->size(), 1U)
        << "only the lists of retracted elements are emptied";
}

TEST_F(RetractionTest, AChainIsRetractedInItsOrderEachElementOnce)
{
    props("a b c");
    Clause* first = law("!a | b");
    Clause* second = law("!b | c");
    begin({{"a", "false"}, {"b", "false"}, {"c", "false"}});
    support(first, "b");
    support(second, "c");
    EXPECT_EQ(retract("a"), (Names{"a", "b", "c"}));
}

TEST_F(RetractionTest, ABranchIsRetractedWholeBeforeTheNext)
{
    props("a b c d");
    Clause* left = law("!a | b");
    Clause* below = law("!b | c");
    Clause* right = law("!a | d");
    begin({{"a", "false"}, {"b", "false"}, {"c", "false"}, {"d", "false"}});
    support(left, "b");
    support(right, "d");
    support(below, "c");
    EXPECT_EQ(retract("a"), (Names{"a", "b", "c", "d"}));
}

TEST_F(RetractionTest, TheTraceOfADependentStandsInsideThatOfItsCause)
{
    props("a b");
    Clause* clause = law("!a | b");
    begin({{"a", "false"}, {"b", "false"}});
    support(clause, "b");
    retract("a");
    EXPECT_EQ(trace.take(), "[deleteClause] --> delete clause :\nk.a=1 -- false -- 2\n\n"
                            "[deleteClause] --> delete clause :\nk.b=1 -- false -- 2\n"
                            "support : !k.a=1 | k.b=1\n\n" +
                                tail("b", 0) + tail("a", 1));
}

TEST_F(RetractionTest, AnElementThatDependsTwiceIsRetractedOnce)
{
    props("a b");
    Clause* clause = law("!a | b");
    begin({{"a", "false"}, {"b", "false"}});
    support(clause, "b");
    el("a")->dependents->push_back(el("b"));
    EXPECT_EQ(retract("a"), (Names{"a", "b"}));
}

TEST_F(RetractionTest, ADependentBelowTwoElementsIsRetractedOnce)
{
    props("a b c d");
    Clause* left = law("!a | b");
    Clause* right = law("!a | c");
    Clause* both = law("!b | !c | d");
    begin({{"a", "false"}, {"b", "false"}, {"c", "true"}, {"d", "false"}});
    support(left, "b");
    support(both, "d");
    el("a")->dependents->push_back(el("c"));
    el("c")->support = right;
    EXPECT_EQ(retract("a"), (Names{"a", "b", "d"})) << "c makes its own support hold";
}

TEST_F(RetractionTest, ElementsThatDependOnEachOtherAreRetractedOnceEach)
{
    props("a b");
    Clause* there = law("!a | b");
    Clause* back = law("!b | a");
    begin({{"a", "false"}, {"b", "false"}});
    support(there, "b");
    support(back, "a");
    EXPECT_EQ(retract("a"), (Names{"a", "b"}));
}

TEST_F(RetractionTest, ADependentsSupportIsEvaluatedInTheGivenStateOnDemand)
{
    props("a b");
    remote("far");
    Clause* clause = law("!a | b | far.x=1");
    begin({{"a", "true"}, {"b", "false"}});
    el("a")->dependents->push_back(el("b"));
    el("b")->support = clause;
    EXPECT_EQ(retract("a"), (Names{"a", "b"}));
    EXPECT_TRUE(hasElement("far.x=1"));
}

// All links have one clause as support, which one element in the state decides: an atom for each link would be
// a gigabyte of empty containers.
TEST_F(RetractionTest, AChainOfAMillionDependentsIsRetractedWithoutRecursion)
{
    constexpr std::size_t length = 1'000'000;
    props("gone link");
    Clause* clause = law("gone");
    begin({{"gone", "false"}});
    std::vector<TrajEl> chain(length);
    for (std::size_t i = 0; i < length; ++i) {
        chain[i].atom = atom("link");
        chain[i].label = "true";
        chain[i].support = clause;
        if (i > 0) {
            chain[i - 1].dependents->push_back(&chain[i]);
        }
    }
    const MutedTrace muted;
    std::vector<TrajEl*> out;
    engine.deleteClause(chain.data(), &out, state.get(), &trajectory, step);
    ASSERT_EQ(out.size(), length);
    for (std::size_t i = 0; i < length; ++i) {
        ASSERT_EQ(out[i], &chain[i]);
        ASSERT_EQ(chain[i].label, "unknown");
        ASSERT_TRUE(chain[i].dependents->empty());
    }
}

} // namespace
