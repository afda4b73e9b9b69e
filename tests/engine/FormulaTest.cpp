// State formulas on a trajectory.
#include "tests/support/FlushLog.h"
#include "tests/support/TestModel.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

class StateFormulaTest : public testing::Test {
protected:
    StateFormulaTest()
    {
        comp_ = model_.comp("x");
        model_.variable(comp_, "v", "Cond", {"a", "b", "c"});
        a_ = model_.atom("x.v=a");
        b_ = model_.atom("x.v=b");
        c_ = model_.atom("x.v=c");
        trajectory_.states = {model_.state({comp_}), model_.state({comp_})};
    }

    void label(std::size_t step, const Atom* atom, const char* text)
    {
        trajectory_.states[step]->elements->find(atom->getId())->second->label = text;
    }
    bool eval(const std::string& op, const std::vector<std::pair<bool, Atom*>>& atoms, int step = 0)
    {
        return engine_.evalStateFormula(model_.formula(op, atoms), &trajectory_, step);
    }

    TestModel model_;
    itms engine_;
    Comp* comp_;
    Atom* a_;
    Atom* b_;
    Atom* c_;
    Trajectory trajectory_;
};

TEST_F(StateFormulaTest, AConjunctionHoldsWhenAllOfItDoes)
{
    label(0, a_, "true");
    label(0, b_, "true");
    EXPECT_TRUE(eval("and", {{true, a_}, {true, b_}}));
    EXPECT_FALSE(eval("and", {{true, a_}, {true, b_}, {true, c_}}));
    EXPECT_FALSE(eval("and", {{true, c_}, {true, a_}}));
}

TEST_F(StateFormulaTest, ADisjunctionHoldsWhenAnyOfItDoes)
{
    label(0, b_, "true");
    EXPECT_TRUE(eval("or", {{true, a_}, {true, b_}}));
    EXPECT_TRUE(eval("or", {{true, b_}, {true, a_}}));
    EXPECT_FALSE(eval("or", {{true, a_}, {true, c_}}));
}

TEST_F(StateFormulaTest, AnEmptyConnectiveIsAConjunction)
{
    label(0, a_, "true");
    for (const std::vector<std::pair<bool, Atom*>>& atoms :
         {std::vector<std::pair<bool, Atom*>>{{true, a_}},
          {{true, b_}},
          {{true, a_}, {true, b_}},
          {{true, a_}, {false, b_}},
          {{false, a_}, {false, b_}},
          {}}) {
        EXPECT_EQ(eval("", atoms), eval("and", atoms));
    }
    EXPECT_TRUE(eval("", {{true, a_}, {false, b_}}));
    EXPECT_FALSE(eval("", {{true, a_}, {true, b_}}));
}

TEST_F(StateFormulaTest, AnyOtherConnectiveIsFalseWhateverTheAtoms)
{
    label(0, a_, "true");
    for (const char* op : {"AND", "And", "OR", "not", "!", "and ", " or", "xor"}) {
        EXPECT_FALSE(eval(op, {{true, a_}})) << op;
        EXPECT_FALSE(eval(op, {{false, a_}})) << op;
        EXPECT_FALSE(eval(op, {{true, b_}})) << op;
        EXPECT_FALSE(eval(op, {})) << op;
    }
}

TEST_F(StateFormulaTest, AnEntryOfFalsePolarityHoldsWhenItsAtomDoesNot)
{
    label(0, a_, "false");
    EXPECT_TRUE(eval("and", {{false, a_}}));
    EXPECT_TRUE(eval("or", {{false, a_}}));
    label(0, a_, "true");
    EXPECT_FALSE(eval("and", {{false, a_}}));
    EXPECT_FALSE(eval("or", {{false, a_}}));
}

TEST_F(StateFormulaTest, AnUnknownAtomDoesNotHold)
{
    label(0, a_, "unknown");
    EXPECT_FALSE(eval("and", {{true, a_}}));
    EXPECT_TRUE(eval("and", {{false, a_}}));
    EXPECT_TRUE(eval("or", {{false, a_}}));
}

TEST_F(StateFormulaTest, MixedPolaritiesAreCombined)
{
    label(0, a_, "true");
    EXPECT_TRUE(eval("and", {{true, a_}, {false, b_}}));
    EXPECT_FALSE(eval("and", {{true, a_}, {false, a_}}));
    EXPECT_TRUE(eval("or", {{true, a_}, {false, a_}}));
    EXPECT_FALSE(eval("or", {{false, a_}, {true, b_}}));
}

TEST_F(StateFormulaTest, WithoutEntriesAConjunctionHoldsAndADisjunctionDoesNot)
{
    EXPECT_TRUE(eval("and", {}));
    EXPECT_TRUE(eval("", {}));
    EXPECT_FALSE(eval("or", {}));
}

TEST_F(StateFormulaTest, WithoutAMapOfAtomsItIsFalse)
{
    for (const char* op : {"and", "", "or", "not"}) {
        StateFormula formula;
        formula.op = op;
        EXPECT_FALSE(engine_.evalStateFormula(&formula, &trajectory_, 0)) << op;
    }
}

TEST_F(StateFormulaTest, IsEvaluatedAtItsStep)
{
    label(0, a_, "true");
    label(1, a_, "false");
    EXPECT_TRUE(eval("and", {{true, a_}}, 0));
    EXPECT_FALSE(eval("and", {{true, a_}}, 1));
}

TEST_F(StateFormulaTest, TakesTheAtomsOwnLabelsAtAStepThatIsNotCommitted)
{
    a_->setLabel("true");
    EXPECT_TRUE(eval("and", {{true, a_}}, 5));
    EXPECT_FALSE(eval("and", {{true, b_}}, 5));
}

// The trajectory's own elements show the atom's own label since they were last fetched.
class EveryEntryTest : public StateFormulaTest {
protected:
    static constexpr int open = 7; // a step that is not committed

    // Whether evaluating the formula fetches the element of every one of the atoms.
    bool fetchesAll(const std::string& op, const std::vector<std::pair<bool, Atom*>>& atoms)
    {
        std::vector<const TrajEl*> els;
        for (const auto& [polarity, atom] : atoms) {
            els.push_back(trajectory_.getElt(atom->getId(), open, 0));
            atom->setLabel("true");
        }
        eval(op, atoms, open);
        return std::all_of(els.begin(), els.end(),
                           [](const TrajEl* el) { return el->label == "true"; });
    }
};

TEST_F(EveryEntryTest, IsFetchedThoughAConjunctionIsSettled)
{
    EXPECT_TRUE(fetchesAll("and", {{false, a_}, {false, b_}, {false, c_}}));
}

TEST_F(EveryEntryTest, IsFetchedThoughADisjunctionIsSettled)
{
    EXPECT_TRUE(fetchesAll("or", {{true, a_}, {true, b_}, {true, c_}}));
}

TEST_F(EveryEntryTest, IsLeftAloneByAnotherConnective)
{
    EXPECT_FALSE(fetchesAll("not", {{true, a_}}));
}

TEST_F(StateFormulaTest, PrintsNothingAndLeavesTheFormula)
{
    const StateFormula* formula = model_.formula("and", {{true, a_}, {false, b_}});
    const FlushLog log;
    engine_.evalStateFormula(const_cast<StateFormula*>(formula), &trajectory_, 0);
    EXPECT_EQ(log.text(), "");
    EXPECT_EQ(formula->atoms->size(), 2u);
}

} // namespace
