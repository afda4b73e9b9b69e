// Laws as clauses, compared with the formula's value under every assignment of its variables.
#include "plant/NormalForm.h"

#include <gtest/gtest.h>

#include <random>
#include <set>

namespace {

using namespace plant;
using Kind = LawFormula::Kind;

// Three variables of two, three and four values: 24 assignments.
class NormalFormTest : public testing::Test {
protected:
    NormalFormTest()
    {
        Comp* component = builder.component("c");
        x = builder.variable(component, "x", VariableKind::condition, {{"a"}, {"b"}});
        y = builder.variable(component, "y", VariableKind::condition, {{"a"}, {"b"}, {"c"}});
        z = builder.variable(component, "z", VariableKind::mode, {{"a"}, {"b"}, {"c"}, {"d"}});
    }

    using Assignment = std::set<const Atom*>;

    std::vector<Assignment> assignments() const
    {
        std::vector<Assignment> all;
        for (const Atom* a : *x->atomLinks) {
            for (const Atom* b : *y->atomLinks) {
                for (const Atom* c : *z->atomLinks) {
                    all.push_back({a, b, c});
                }
            }
        }
        return all;
    }

    static bool holds(const LawFormula& formula, const Assignment& assignment)
    {
        const auto operand = [&](std::size_t i) { return holds(formula.operands[i], assignment); };
        switch (formula.kind) {
        case Kind::atom: return assignment.contains(formula.atom);
        case Kind::negation: return !operand(0);
        case Kind::implication: return !operand(0) || operand(1);
        case Kind::equivalence: return operand(0) == operand(1);
        case Kind::conjunction:
        case Kind::disjunction: break;
        }
        const bool all = formula.kind == Kind::conjunction;
        for (const LawFormula& each : formula.operands) {
            if (holds(each, assignment) != all) return !all;
        }
        return all;
    }

    static bool holds(const ClauseLiterals& clause, const Assignment& assignment)
    {
        for (const Literal& literal : clause) {
            if (assignment.contains(literal.atom) != literal.negated) return true;
        }
        return false;
    }

    static bool holds(const std::vector<ClauseLiterals>& clauses, const Assignment& assignment)
    {
        for (const ClauseLiterals& clause : clauses) {
            if (!holds(clause, assignment)) return false;
        }
        return true;
    }

    LawFormula randomFormula(std::mt19937& random, int depth) const
    {
        const auto below = [&](unsigned n) { return static_cast<unsigned>(random() % n); };
        if (depth == 0 || below(4) == 0) {
            const std::vector<Atom*>& values = *(below(3) == 0   ? x
                                                 : below(2) == 0 ? y
                                                                 : z)
                                                    ->atomLinks;
            return LawFormula::of(values[below(static_cast<unsigned>(values.size()))]);
        }
        const auto kind = static_cast<Kind>(1 + below(5));
        const unsigned count = kind == Kind::negation                                   ? 1
                               : kind == Kind::implication || kind == Kind::equivalence ? 2
                                                                                        : below(4);
        std::vector<LawFormula> operands;
        for (unsigned i = 0; i < count; ++i) {
            operands.push_back(randomFormula(random, depth - 1));
        }
        return LawFormula::make(kind, std::move(operands));
    }

    LawFormula is(const StateVar* variable, const char* text) const
    {
        return LawFormula::of(value(variable, text));
    }

    static std::string shown(const std::vector<ClauseLiterals>& clauses)
    {
        std::string text;
        for (const ClauseLiterals& clause : clauses) {
            for (const Literal& literal : clause) {
                text += (literal.negated ? "!" : "") + literal.atom->id.substr(2) + " ";
            }
            text += ";";
        }
        return text;
    }

    ModelBuilder builder{"normal"};
    StateVar* x;
    StateVar* y;
    StateVar* z;
};

TEST_F(NormalFormTest, HasTheValueOfTheFormulaUnderEveryAssignment)
{
    const std::vector<Assignment> all = assignments();
    for (unsigned seed = 0; seed < 3000; ++seed) {
        std::mt19937 random(seed);
        const LawFormula formula = randomFormula(random, 3);
        const auto clauses = normalForm(formula, 20000);
        if (!clauses) continue;
        for (const Assignment& assignment : all) {
            ASSERT_EQ(holds(*clauses, assignment), holds(formula, assignment))
                << "seed " << seed << ": " << shown(*clauses);
        }
    }
}

TEST_F(NormalFormTest, HasNoClauseThatHoldsAlwaysOrRepeatsALiteral)
{
    const std::vector<Assignment> all = assignments();
    for (unsigned seed = 0; seed < 1000; ++seed) {
        std::mt19937 random(seed);
        const auto clauses = normalForm(randomFormula(random, 3), 20000);
        if (!clauses) continue;
        for (const ClauseLiterals& clause : *clauses) {
            std::set<std::pair<Atom*, bool>> distinct;
            bool fails = false;
            for (const Literal& literal : clause) {
                distinct.insert({literal.atom, literal.negated});
            }
            for (const Assignment& assignment : all) {
                fails = fails || !holds(clause, assignment);
            }
            ASSERT_EQ(distinct.size(), clause.size()) << "seed " << seed;
            ASSERT_TRUE(fails) << "seed " << seed << ": " << shown({clause});
        }
    }
}

TEST_F(NormalFormTest, NeverHasMoreClausesThanWereCounted)
{
    for (unsigned seed = 0; seed < 1000; ++seed) {
        std::mt19937 random(seed);
        const LawFormula formula = randomFormula(random, 3);
        const auto clauses = normalForm(formula, 20000);
        ASSERT_EQ(clauses.has_value(), countClauses(formula) <= 20000) << "seed " << seed;
        if (clauses) {
            ASSERT_LE(clauses->size(), countClauses(formula)) << "seed " << seed;
        }
    }
}

TEST_F(NormalFormTest, KeepsLiteralsInTheOrderWritten)
{
    const LawFormula law = LawFormula::make(
        Kind::implication,
        {LawFormula::make(Kind::conjunction, {is(z, "b"), is(y, "c")}), is(x, "a")});
    EXPECT_EQ(shown(*normalForm(law, 10)), "!z=b !y=c x=a ;");
}

TEST_F(NormalFormTest, TakesTwoVariablesAsEqualValueByValue)
{
    const StateVar* w = builder.variable(builder.component("d"), "w", VariableKind::condition,
                                         {{"c"}, {"a"}, {"b"}});
    EXPECT_EQ(shown(*normalForm(sameValue(y, w), 10)),
              "!y=a w=a ;y=a !w=a ;!y=b w=b ;y=b !w=b ;!y=c w=c ;y=c !w=c ;");
}

TEST_F(NormalFormTest, LeavesOutAClauseThatContainsAnotherOne)
{
    const LawFormula law = LawFormula::make(
        Kind::conjunction,
        {LawFormula::make(Kind::disjunction, {is(x, "a"), is(y, "a")}), is(x, "a")});
    EXPECT_EQ(shown(*normalForm(law, 10)), "x=a ;");
}

TEST_F(NormalFormTest, OfAContradictionIsTheEmptyClause)
{
    EXPECT_EQ(shown(*normalForm(LawFormula::make(Kind::disjunction, {}), 10)), ";");
}

TEST_F(NormalFormTest, OfWhatAlwaysHoldsIsEmpty)
{
    const LawFormula law = LawFormula::make(Kind::disjunction, {is(y, "a"), is(y, "b"), is(y, "c")});
    EXPECT_EQ(shown(*normalForm(law, 10)), "");
}

TEST_F(NormalFormTest, IsCountedBeforeItIsMade)
{
    std::vector<LawFormula> pairs;
    for (int i = 0; i < 50; ++i) {
        pairs.push_back(LawFormula::make(Kind::conjunction, {is(x, "a"), is(y, "a")}));
    }
    const LawFormula law = LawFormula::make(Kind::disjunction, std::move(pairs));
    EXPECT_EQ(countClauses(law), std::uint64_t{1} << 50U);
    EXPECT_FALSE(normalForm(law, 1000));
}

TEST_F(NormalFormTest, CountsNoFurtherThanItCan)
{
    std::vector<LawFormula> pairs;
    for (int i = 0; i < 200; ++i) {
        pairs.push_back(LawFormula::make(Kind::conjunction, {is(x, "a"), is(y, "a")}));
    }
    EXPECT_EQ(countClauses(LawFormula::make(Kind::disjunction, std::move(pairs))),
              std::uint64_t{1} << 62U);
}

} // namespace
