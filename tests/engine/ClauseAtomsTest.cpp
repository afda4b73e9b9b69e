// Which atoms occur in sets of clauses, and whether two sets share one.
#include "tests/support/TestModel.h"

#include <gtest/gtest.h>

namespace {

class ClauseAtomsTest : public testing::Test {
protected:
    ClauseAtomsTest() { model_.variable(model_.comp("x"), "v", "Cond", {"a", "b", "c", "d"}); }
    std::vector<Clause*> clauses(std::initializer_list<const char*> texts)
    {
        std::vector<Clause*> made;
        for (const char* text : texts) {
            made.push_back(model_.clause(text, false));
        }
        return made;
    }
    bool disjoint(std::initializer_list<const char*> a, std::initializer_list<const char*> b)
    {
        std::vector<Clause*> ofA = clauses(a);
        std::vector<Clause*> ofB = clauses(b);
        const bool answer = engine_.intersectClauses(&ofA, &ofB);
        EXPECT_EQ(engine_.intersectClauses(&ofB, &ofA), answer);
        return answer;
    }

    TestModel model_;
    itms engine_;
};

TEST_F(ClauseAtomsTest, LoadsEveryAtomOnceWhateverItsSign)
{
    std::vector<Clause*> of = clauses({"x.v=a | !x.v=b", "!x.v=a", "x.v=c"});
    const std::unique_ptr<AtomMap> atoms(engine_.loadAtoms(&of));
    EXPECT_EQ(atoms->size(), 3u);
    for (const char* id : {"x.v=a", "x.v=b", "x.v=c"}) {
        ASSERT_NE(atoms->find(id), atoms->end()) << id;
        EXPECT_EQ(atoms->find(id)->second, model_.atom(id));
        EXPECT_EQ(atoms->find(id)->first, model_.atom(id)->getId());
    }
}

TEST_F(ClauseAtomsTest, LoadsTheFirstOfTwoAtomsWithOneIdentifier)
{
    Atom twin;
    twin.id = "x.v=a";
    Clause ofTwin;
    ofTwin.literals->insert({false, &twin});
    std::vector<Clause*> twinFirst = clauses({"x.v=a"});
    twinFirst.insert(twinFirst.begin(), &ofTwin);
    std::vector<Clause*> twinLast = clauses({"x.v=a"});
    twinLast.push_back(&ofTwin);
    const std::unique_ptr<AtomMap> first(engine_.loadAtoms(&twinFirst));
    const std::unique_ptr<AtomMap> last(engine_.loadAtoms(&twinLast));
    EXPECT_EQ(first->size(), 1u);
    EXPECT_EQ(first->begin()->second, &twin);
    EXPECT_EQ(last->begin()->second, model_.atom("x.v=a"));
}

TEST_F(ClauseAtomsTest, LoadsTheAtomsOfTheVariablesClausesToo)
{
    StateVar variable;
    *variable.clauses = clauses({"x.v=c | !x.v=d"});
    engine_.stateVars = new std::vector<StateVar*>{&variable};
    std::vector<Clause*> of = clauses({"x.v=a"});
    const std::unique_ptr<AtomMap> atoms(engine_.loadAtoms(&of));
    EXPECT_EQ(atoms->size(), 3u);
    EXPECT_EQ(atoms->count("x.v=a"), 1u);
    EXPECT_EQ(atoms->count("x.v=c"), 1u);
    EXPECT_EQ(atoms->count("x.v=d"), 1u);
}

TEST_F(ClauseAtomsTest, LoadsFromTheClausesBeforeThoseOfTheVariables)
{
    Atom twin;
    twin.id = "x.v=a";
    Clause ofTwin;
    ofTwin.literals->insert({false, &twin});
    StateVar variable;
    variable.clauses->push_back(&ofTwin);
    engine_.stateVars = new std::vector<StateVar*>{&variable};
    std::vector<Clause*> of = clauses({"x.v=a"});
    const std::unique_ptr<AtomMap> atoms(engine_.loadAtoms(&of));
    EXPECT_EQ(atoms->begin()->second, model_.atom("x.v=a"));
}

TEST_F(ClauseAtomsTest, LoadsNothingFromNoClauses)
{
    std::vector<Clause*> none;
    const std::unique_ptr<AtomMap> atoms(engine_.loadAtoms(&none));
    EXPECT_TRUE(atoms->empty());
}

TEST_F(ClauseAtomsTest, SetsThatShareNoAtomAreDisjoint)
{
    EXPECT_TRUE(disjoint({"x.v=a", "x.v=b"}, {"x.v=c | x.v=d"}));
}

TEST_F(ClauseAtomsTest, SetsThatShareAnAtomAreNot)
{
    EXPECT_FALSE(disjoint({"x.v=a", "x.v=b"}, {"x.v=d", "x.v=c | x.v=b"}));
}

TEST_F(ClauseAtomsTest, ASharedAtomCountsWithEitherSign)
{
    EXPECT_FALSE(disjoint({"x.v=a"}, {"!x.v=a"}));
    EXPECT_FALSE(disjoint({"!x.v=a"}, {"!x.v=a"}));
}

TEST_F(ClauseAtomsTest, AnEmptySetIsDisjointFromAnyOther)
{
    EXPECT_TRUE(disjoint({}, {"x.v=a"}));
    EXPECT_TRUE(disjoint({}, {}));
}

TEST_F(ClauseAtomsTest, ASetIsNotDisjointFromItself)
{
    std::vector<Clause*> of = clauses({"x.v=a"});
    EXPECT_FALSE(engine_.intersectClauses(&of, &of));
}

TEST_F(ClauseAtomsTest, AnAtomIsComparedByIdentifier)
{
    Atom twin;
    twin.id = "x.v=a";
    Clause ofTwin;
    ofTwin.literals->insert({false, &twin});
    std::vector<Clause*> b{&ofTwin};
    std::vector<Clause*> a = clauses({"x.v=a"});
    EXPECT_FALSE(engine_.intersectClauses(&a, &b));
}

TEST_F(ClauseAtomsTest, AnAtomIsApartFromOthersWhenTheirClausesShareNoAtom)
{
    clauses({"x.v=a | x.v=b", "x.v=c", "!x.v=d"});
    std::vector<Atom*> apart{model_.atom("x.v=c"), model_.atom("x.v=d")};
    EXPECT_TRUE(engine_.intersectClauses(model_.atom("x.v=a"), &apart));
}

TEST_F(ClauseAtomsTest, AnAtomIsNotApartWhenItsClausesShareAnAtomWithAnyOfTheOthers)
{
    clauses({"x.v=a | x.v=b", "x.v=c", "!x.v=d | x.v=b"});
    std::vector<Atom*> others{model_.atom("x.v=c"), model_.atom("x.v=d")};
    EXPECT_FALSE(engine_.intersectClauses(model_.atom("x.v=a"), &others));
}

TEST_F(ClauseAtomsTest, AnAtomIsApartFromNoOthers)
{
    clauses({"x.v=a"});
    std::vector<Atom*> none;
    EXPECT_TRUE(engine_.intersectClauses(model_.atom("x.v=a"), &none));
}

TEST_F(ClauseAtomsTest, AnAtomWithoutClausesIsApartFromAll)
{
    clauses({"x.v=a"});
    std::vector<Atom*> others{model_.atom("x.v=a"), model_.atom("x.v=b")};
    EXPECT_TRUE(engine_.intersectClauses(model_.atom("x.v=b"), &others));
}

} // namespace
