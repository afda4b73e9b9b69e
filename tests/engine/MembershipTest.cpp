// Whether a container holds something: by pointer, texts by their characters.
#include "tests/engine/EngineTest.h"

namespace {

class MembershipTest : public EngineTest {
protected:
    MembershipTest() { props("a b"); }
};

TEST_F(MembershipTest, AnAtomIsFoundByItsPointer)
{
    std::vector<Atom*> atoms{atom("a")};
    EXPECT_TRUE(engine.inVector(atom("a"), &atoms));
    EXPECT_FALSE(engine.inVector(atom("b"), &atoms));
}

TEST_F(MembershipTest, AnAtomWithEqualTextIsAnotherAtom)
{
    Atom twin;
    twin.id = atom("a")->id;
    std::vector<Atom*> atoms{atom("a")};
    EXPECT_FALSE(engine.inVector(&twin, &atoms));
}

TEST_F(MembershipTest, TheLastOfSeveralIsFoundToo)
{
    std::vector<Atom*> atoms{atom("b"), atom("b"), atom("a")};
    EXPECT_TRUE(engine.inVector(atom("a"), &atoms));
}

TEST_F(MembershipTest, NothingIsInAnEmptyVector)
{
    std::vector<Atom*> atoms;
    std::vector<const char*> texts;
    std::vector<TrajEl*> els;
    std::vector<Transition*> transitions;
    std::vector<StateVar*> variables;
    std::vector<Clause*> clauses;
    SignedAtoms literals;
    EXPECT_FALSE(engine.inVector(atom("a"), &atoms));
    EXPECT_FALSE(engine.inVector("a", &texts));
    EXPECT_FALSE(engine.inVector(static_cast<TrajEl*>(nullptr), &els));
    EXPECT_FALSE(engine.inVector(static_cast<Transition*>(nullptr), &transitions));
    EXPECT_FALSE(engine.inVectorStateVar(nullptr, &variables));
    EXPECT_FALSE(engine.inVectorClause(nullptr, &clauses));
    EXPECT_FALSE(engine.inMultimap(atom("a"), &literals));
}

TEST_F(MembershipTest, EqualTextIsFoundAtAnotherAddress)
{
    const std::string held = "k.a=1";
    const std::string asked = "k.a=1";
    ASSERT_NE(held.c_str(), asked.c_str());
    std::vector<const char*> texts{"first", held.c_str()};
    EXPECT_TRUE(engine.inVector(asked.c_str(), &texts));
    EXPECT_FALSE(engine.inVector("k.a=", &texts));
    EXPECT_FALSE(engine.inVector("k.a=10", &texts));
}

TEST_F(MembershipTest, AnElementIsFoundByItsPointer)
{
    begin();
    TrajEl twin;
    twin.atom = atom("a");
    std::vector<TrajEl*> els{el("b"), el("a")};
    EXPECT_TRUE(engine.inVector(el("a"), &els));
    EXPECT_FALSE(engine.inVector(&twin, &els));
}

TEST_F(MembershipTest, ATransitionIsFoundByItsPointer)
{
    Transition first;
    Transition second;
    std::vector<Transition*> transitions{&first};
    EXPECT_TRUE(engine.inVector(&first, &transitions));
    EXPECT_FALSE(engine.inVector(&second, &transitions));
}

TEST_F(MembershipTest, AVariableIsFoundByItsPointer)
{
    StateVar twin;
    twin.name = atom("a")->stateVar->name;
    std::vector<StateVar*> variables{atom("b")->stateVar, atom("a")->stateVar};
    EXPECT_TRUE(engine.inVectorStateVar(atom("a")->stateVar, &variables));
    EXPECT_FALSE(engine.inVectorStateVar(&twin, &variables));
}

TEST_F(MembershipTest, AClauseIsFoundByItsPointer)
{
    Clause* clause = law("a | b");
    Clause* same = law("a | b");
    std::vector<Clause*> clauses{clause};
    EXPECT_TRUE(engine.inVectorClause(clause, &clauses));
    EXPECT_FALSE(engine.inVectorClause(same, &clauses));
}

TEST_F(MembershipTest, AnAtomIsFoundAmongLiteralsWhateverItsSign)
{
    props("c");
    const Clause* clause = law("!a | b");
    EXPECT_TRUE(engine.inMultimap(atom("a"), clause->literals));
    EXPECT_TRUE(engine.inMultimap(atom("b"), clause->literals));
    EXPECT_FALSE(engine.inMultimap(atom("c"), clause->literals));
}

} // namespace
