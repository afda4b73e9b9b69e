// How many clauses distribution would make is counted first, for a formula and its negation at once: sums over conjunctions, products
// over disjunctions. Then the clauses are made, with negations going down on the way.
#include "plant/NormalForm.h"

#include <algorithm>

namespace plant {

namespace {

using Kind = LawFormula::Kind;

constexpr std::uint64_t manyClauses = std::uint64_t{1} << 62U;

std::uint64_t add(std::uint64_t a, std::uint64_t b)
{
    return std::min(a + b, manyClauses);
}

std::uint64_t multiply(std::uint64_t a, std::uint64_t b)
{
    return b != 0 && a > manyClauses / b ? manyClauses : a * b;
}

// The clauses of the formula and of its negation, since an equivalence needs both.
struct Counts {
    std::uint64_t positive;
    std::uint64_t negative;
};

Counts count(const LawFormula& formula)
{
    switch (formula.kind) {
    case Kind::atom: return {1, 1};
    case Kind::negation: {
        const Counts inner = count(formula.operands[0]);
        return {inner.negative, inner.positive};
    }
    case Kind::conjunction:
    case Kind::disjunction: {
        Counts joint{0, 1};
        for (const LawFormula& operand : formula.operands) {
            Counts inner = count(operand);
            if (formula.kind == Kind::disjunction) {
                std::swap(inner.positive, inner.negative);
            }
            joint = {add(joint.positive, inner.positive), multiply(joint.negative, inner.negative)};
        }
        return formula.kind == Kind::conjunction ? joint : Counts{joint.negative, joint.positive};
    }
    case Kind::implication: {
        const Counts left = count(formula.operands[0]);
        const Counts right = count(formula.operands[1]);
        return {multiply(left.negative, right.positive), add(left.positive, right.negative)};
    }
    case Kind::equivalence: {
        const Counts left = count(formula.operands[0]);
        const Counts right = count(formula.operands[1]);
        return {
            add(multiply(left.negative, right.positive), multiply(left.positive, right.negative)),
            add(multiply(left.positive, right.positive), multiply(left.negative, right.negative))};
    }
    }
    return {0, 0};
}

using Clauses = std::vector<ClauseLiterals>;

// Every clause of one with every clause of the other.
Clauses distribute(const Clauses& left, const Clauses& right)
{
    Clauses product;
    product.reserve(left.size() * right.size());
    for (const ClauseLiterals& a : left) {
        for (const ClauseLiterals& b : right) {
            ClauseLiterals& joined = product.emplace_back(a);
            joined.insert(joined.end(), b.begin(), b.end());
        }
    }
    return product;
}

void append(Clauses& to, Clauses more)
{
    to.insert(to.end(), std::make_move_iterator(more.begin()), std::make_move_iterator(more.end()));
}

// The clauses of the formula, or of its negation.
Clauses clausesOf(const LawFormula& formula, bool negated)
{
    switch (formula.kind) {
    case Kind::atom: return {{{negated, formula.atom}}};
    case Kind::negation: return clausesOf(formula.operands[0], !negated);
    case Kind::conjunction:
    case Kind::disjunction: {
        const bool joins = (formula.kind == Kind::conjunction) != negated;
        Clauses result;
        if (!joins) {
            result.emplace_back();
        }
        for (const LawFormula& operand : formula.operands) {
            if (joins) {
                append(result, clausesOf(operand, negated));
            } else {
                result = distribute(result, clausesOf(operand, negated));
            }
        }
        return result;
    }
    case Kind::implication: {
        const LawFormula& left = formula.operands[0];
        const LawFormula& right = formula.operands[1];
        if (!negated) {
            return distribute(clausesOf(left, true), clausesOf(right, false));
        }
        Clauses both = clausesOf(left, false);
        append(both, clausesOf(right, true));
        return both;
    }
    case Kind::equivalence: {
        const LawFormula& left = formula.operands[0];
        const LawFormula& right = formula.operands[1];
        Clauses both = distribute(clausesOf(left, !negated), clausesOf(right, false));
        append(both, distribute(clausesOf(left, negated), clausesOf(right, true)));
        return both;
    }
    }
    return {};
}

bool contains(const ClauseLiterals& clause, const Literal& wanted)
{
    return std::any_of(clause.begin(), clause.end(), [&](const Literal& literal) {
        return literal.atom == wanted.atom && literal.negated == wanted.negated;
    });
}

// Without repetitions, and without x=b next to !x=a.
ClauseLiterals simplify(const ClauseLiterals& clause)
{
    ClauseLiterals kept;
    for (const Literal& literal : clause) {
        const bool saysNothing =
            !literal.negated && std::any_of(clause.begin(), clause.end(), [&](const Literal& other) {
                return other.negated && other.atom != literal.atom &&
                       other.atom->stateVar == literal.atom->stateVar;
            });
        if (!saysNothing && !contains(kept, literal)) {
            kept.push_back(literal);
        }
    }
    return kept;
}

// Holds whatever the values are.
bool always(const ClauseLiterals& clause)
{
    return std::any_of(clause.begin(), clause.end(), [&](const Literal& literal) {
        if (contains(clause, {!literal.negated, literal.atom})) {
            return true;
        }
        const std::vector<Atom*>& values = *literal.atom->stateVar->atomLinks;
        if (literal.negated) {
            return std::any_of(values.begin(), values.end(), [&](Atom* value) {
                return value != literal.atom && contains(clause, {true, value});
            });
        }
        return std::all_of(values.begin(), values.end(), [&](Atom* value) {
            return contains(clause, {false, value});
        });
    });
}

bool subsumes(const ClauseLiterals& smaller, const ClauseLiterals& larger)
{
    return std::all_of(smaller.begin(), smaller.end(),
                       [&](const Literal& literal) { return contains(larger, literal); });
}

// Without clauses that contain another one; of equal ones the first stays.
Clauses withoutSubsumed(const Clauses& clauses)
{
    Clauses kept;
    for (std::size_t i = 0; i < clauses.size(); ++i) {
        bool needed = true;
        for (std::size_t j = 0; j < clauses.size() && needed; ++j) {
            needed = i == j || !subsumes(clauses[j], clauses[i]) ||
                     (clauses[j].size() == clauses[i].size() && i < j);
        }
        if (needed) {
            kept.push_back(clauses[i]);
        }
    }
    return kept;
}

} // namespace

LawFormula sameValue(const StateVar* left, const StateVar* right)
{
    std::vector<LawFormula> values;
    for (Atom* atom : *left->atomLinks) {
        values.push_back(LawFormula::make(
            Kind::equivalence, {LawFormula::of(atom), LawFormula::of(value(right, atom->value))}));
    }
    return LawFormula::make(Kind::conjunction, std::move(values));
}

std::uint64_t countClauses(const LawFormula& formula)
{
    return count(formula).positive;
}

std::optional<std::vector<ClauseLiterals>> normalForm(const LawFormula& formula, std::uint64_t limit)
{
    if (countClauses(formula) > limit) {
        return std::nullopt;
    }
    Clauses clauses;
    for (const ClauseLiterals& clause : clausesOf(formula, false)) {
        ClauseLiterals simple = simplify(clause);
        if (!always(clause) && !always(simple)) {
            clauses.push_back(std::move(simple));
        }
    }
    return withoutSubsumed(clauses);
}

} // namespace plant
