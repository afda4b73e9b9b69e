#include "language/meaning/FormulaTranslator.h"

#include <algorithm>
#include <utility>

namespace language {

namespace {

using Kind = syntax::Formula::Kind;
using Made = plant::LawFormula::Kind;

constexpr std::size_t mostNodes = 1'000'000;

plant::LawFormula not_(plant::LawFormula formula)
{
    std::vector<plant::LawFormula> operands;
    operands.push_back(std::move(formula));
    return plant::LawFormula::make(Made::negation, std::move(operands));
}

plant::LawFormula of(Made kind, plant::LawFormula left, plant::LawFormula right)
{
    std::vector<plant::LawFormula> operands;
    operands.push_back(std::move(left));
    operands.push_back(std::move(right));
    return plant::LawFormula::make(kind, std::move(operands));
}

// For no value do both have it.
plant::LawFormula differentValue(const StateVar* left, const StateVar* right)
{
    std::vector<plant::LawFormula> values;
    for (Atom* atom : *left->atomLinks) {
        values.push_back(of(Made::disjunction, not_(plant::LawFormula::of(atom)),
                            not_(plant::LawFormula::of(plant::value(right, atom->value)))));
    }
    return plant::LawFormula::make(Made::conjunction, std::move(values));
}

} // namespace

std::optional<plant::LawFormula> FormulaTranslator::translate(const syntax::Formula& formula,
                                                              bool negative)
{
    // Told once, of the whole formula.
    const bool whole = std::exchange(size_, size_ + 1) == 0;
    if (size_ > mostNodes) return std::nullopt;
    std::optional<plant::LawFormula> made;
    switch (formula.kind) {
    case Kind::equal:
    case Kind::notEqual:
    case Kind::member: made = comparison(formula, negative); break;
    case Kind::equivalence: made = equivalence(formula, negative); break;
    default: made = connective(formula, negative);
    }
    if (whole && size_ > mostNodes) {
        report_.error(formula.range, "the formula is too large", "fewer '<->' within each other",
                      "give what recurs in it a cond of its own");
    }
    return made;
}

bool FormulaTranslator::comparesVariables(const syntax::Formula& formula)
{
    if (formula.kind == Kind::equal || formula.kind == Kind::notEqual) {
        const syntax::Segment& first = formula.right.segments.front();
        if (formula.right.segments.size() > 1 || first.index) return true;
        const StateVar* left = find_(formula.left);
        return left && !plant::value(left, first.name.text);
    }
    return std::any_of(formula.operands.begin(), formula.operands.end(),
                       [&](const syntax::Formula& operand) { return comparesVariables(operand); });
}

std::optional<plant::LawFormula> FormulaTranslator::comparison(const syntax::Formula& formula,
                                                               bool negative)
{
    const StateVar* left = find_(formula.left);
    if (!left) return std::nullopt;
    if (formula.kind == Kind::member) {
        std::vector<plant::LawFormula> values;
        for (const syntax::Name& name : formula.values) {
            values.push_back(plant::LawFormula::of(plant::value(left, name.text)));
        }
        return plant::LawFormula::make(Made::disjunction, std::move(values));
    }
    const bool unequal = formula.kind == Kind::notEqual;
    const syntax::Segment& first = formula.right.segments.front();
    if (formula.right.segments.size() == 1 && !first.index) {
        if (Atom* atom = plant::value(left, first.name.text)) {
            return unequal ? not_(plant::LawFormula::of(atom)) : plant::LawFormula::of(atom);
        }
    }
    const StateVar* right = find_(formula.right);
    if (!right) return std::nullopt;
    // Each of the two says "equal" in as many clauses as there are values, in its polarity.
    plant::LawFormula different =
        negative != unequal ? differentValue(left, right) : not_(plant::sameValue(left, right));
    return unequal ? std::move(different) : not_(std::move(different));
}

std::optional<plant::LawFormula> FormulaTranslator::connective(const syntax::Formula& formula,
                                                               bool negative)
{
    std::vector<plant::LawFormula> operands;
    for (std::size_t i = 0; i < formula.operands.size(); ++i) {
        const bool turned =
            formula.kind == Kind::negation || (formula.kind == Kind::implication && i == 0);
        auto operand = translate(formula.operands[i], turned ? !negative : negative);
        if (!operand) return std::nullopt;
        operands.push_back(std::move(*operand));
    }
    const Made kind = formula.kind == Kind::negation      ? Made::negation
                      : formula.kind == Kind::conjunction ? Made::conjunction
                      : formula.kind == Kind::disjunction ? Made::disjunction
                                                          : Made::implication;
    return plant::LawFormula::make(kind, std::move(operands));
}

// Each side stands in both polarities. Where variables are compared, each gets the form that is short in its own.
std::optional<plant::LawFormula> FormulaTranslator::equivalence(const syntax::Formula& formula,
                                                                bool negative)
{
    const syntax::Formula& left = formula.operands[0];
    const syntax::Formula& right = formula.operands[1];
    auto a = translate(left, !negative);
    auto b = a ? translate(right, negative) : std::nullopt;
    if (!b) return std::nullopt;
    if (!comparesVariables(formula)) {
        return of(Made::equivalence, std::move(*a), std::move(*b));
    }
    auto c = translate(right, !negative);
    auto d = c ? translate(left, negative) : std::nullopt;
    if (!d) return std::nullopt;
    return of(Made::conjunction, of(Made::implication, std::move(*a), std::move(*b)),
              of(Made::implication, std::move(*c), std::move(*d)));
}

} // namespace language
