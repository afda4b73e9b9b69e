#include "language/LawBuilder.h"

#include <algorithm>
#include <utility>

namespace language {

namespace {

using Kind = syntax::Formula::Kind;
using Made = LawFormula::Kind;

constexpr std::size_t mostNodes = 1'000'000;

LawFormula not_(LawFormula formula)
{
    std::vector<LawFormula> operands;
    operands.push_back(std::move(formula));
    return LawFormula::make(Made::negation, std::move(operands));
}

LawFormula of(Made kind, LawFormula left, LawFormula right)
{
    std::vector<LawFormula> operands;
    operands.push_back(std::move(left));
    operands.push_back(std::move(right));
    return LawFormula::make(kind, std::move(operands));
}

// For no value do both have it.
LawFormula differentValue(const StateVar* left, const StateVar* right)
{
    std::vector<LawFormula> values;
    for (Atom* atom : *left->atomLinks) {
        values.push_back(of(Made::disjunction, not_(LawFormula::of(atom)),
                            not_(LawFormula::of(value(right, atom->value)))));
    }
    return LawFormula::make(Made::conjunction, std::move(values));
}

} // namespace

std::optional<LawFormula> FormulaTranslator::translate(const syntax::Formula& formula,
                                                       Instance& within,
                                                       const Environment& environment, bool negative)
{
    // Told once, of the whole formula.
    const bool whole = std::exchange(size_, size_ + 1) == 0;
    if (size_ > mostNodes) return std::nullopt;
    std::optional<LawFormula> made;
    switch (formula.kind) {
    case Kind::equal:
    case Kind::notEqual:
    case Kind::member: made = comparison(formula, within, environment, negative); break;
    case Kind::equivalence: made = equivalence(formula, within, environment, negative); break;
    default: made = connective(formula, within, environment, negative);
    }
    if (whole && size_ > mostNodes) {
        report_.error(formula.range, "the formula is too large", "fewer '<->' within each other",
                      "give what recurs in it a cond of its own");
    }
    return made;
}

bool FormulaTranslator::comparesVariables(const syntax::Formula& formula, Instance& within,
                                          const Environment& environment)
{
    if (formula.kind == Kind::equal || formula.kind == Kind::notEqual) {
        const syntax::Segment& first = formula.right.segments.front();
        if (formula.right.segments.size() > 1 || first.index) return true;
        const StateVar* left = plant_.find(within, formula.left, environment);
        return left && !value(left, first.name.text);
    }
    return std::any_of(formula.operands.begin(), formula.operands.end(),
                       [&](const syntax::Formula& operand) {
                           return comparesVariables(operand, within, environment);
                       });
}

std::optional<LawFormula> FormulaTranslator::comparison(const syntax::Formula& formula,
                                                        Instance& within,
                                                        const Environment& environment,
                                                        bool negative)
{
    const StateVar* left = plant_.find(within, formula.left, environment);
    if (!left) return std::nullopt;
    if (formula.kind == Kind::member) {
        std::vector<LawFormula> values;
        for (const syntax::Name& name : formula.values) {
            values.push_back(LawFormula::of(value(left, name.text)));
        }
        return LawFormula::make(Made::disjunction, std::move(values));
    }
    const bool unequal = formula.kind == Kind::notEqual;
    const syntax::Segment& first = formula.right.segments.front();
    if (formula.right.segments.size() == 1 && !first.index) {
        if (Atom* atom = value(left, first.name.text)) {
            return unequal ? not_(LawFormula::of(atom)) : LawFormula::of(atom);
        }
    }
    const StateVar* right = plant_.find(within, formula.right, environment);
    if (!right) return std::nullopt;
    // Each of the two says "equal" in as many clauses as there are values, in its polarity.
    LawFormula different =
        negative != unequal ? differentValue(left, right) : not_(sameValue(left, right));
    return unequal ? std::move(different) : not_(std::move(different));
}

std::optional<LawFormula> FormulaTranslator::connective(const syntax::Formula& formula,
                                                        Instance& within,
                                                        const Environment& environment,
                                                        bool negative)
{
    std::vector<LawFormula> operands;
    for (std::size_t i = 0; i < formula.operands.size(); ++i) {
        const bool turned =
            formula.kind == Kind::negation || (formula.kind == Kind::implication && i == 0);
        auto operand =
            translate(formula.operands[i], within, environment, turned ? !negative : negative);
        if (!operand) return std::nullopt;
        operands.push_back(std::move(*operand));
    }
    const Made kind = formula.kind == Kind::negation      ? Made::negation
                      : formula.kind == Kind::conjunction ? Made::conjunction
                      : formula.kind == Kind::disjunction ? Made::disjunction
                                                          : Made::implication;
    return LawFormula::make(kind, std::move(operands));
}

// Each side stands in both polarities. Where variables are compared, each gets the form that is short in its own.
std::optional<LawFormula> FormulaTranslator::equivalence(const syntax::Formula& formula,
                                                         Instance& within,
                                                         const Environment& environment,
                                                         bool negative)
{
    const syntax::Formula& left = formula.operands[0];
    const syntax::Formula& right = formula.operands[1];
    auto a = translate(left, within, environment, !negative);
    auto b = a ? translate(right, within, environment, negative) : std::nullopt;
    if (!b) return std::nullopt;
    if (!comparesVariables(formula, within, environment)) {
        return of(Made::equivalence, std::move(*a), std::move(*b));
    }
    auto c = translate(right, within, environment, !negative);
    auto d = c ? translate(left, within, environment, negative) : std::nullopt;
    if (!d) return std::nullopt;
    return of(Made::conjunction, of(Made::implication, std::move(*a), std::move(*b)),
              of(Made::implication, std::move(*c), std::move(*d)));
}

void LawBuilder::build(const syntax::Law& law, Instance& within, const Environment& environment)
{
    FormulaTranslator translator(plant_, report_);
    const auto formula = translator.translate(law.formula, within, environment);
    if (!formula) return;
    const auto clauses = normalForm(*formula, mostClauses_);
    if (!clauses) {
        const std::uint64_t count = countClauses(*formula);
        report_.error(
            law.formula.range,
            "the law has " +
                (count >= std::uint64_t{1} << 62U ? "more than 10^18" : std::to_string(count)) +
                " clauses in normal form",
            "at most " + std::to_string(mostClauses_),
            "divide it into several laws, or give what recurs in it a cond of its own");
        return;
    }
    ++count_;
    for (const ClauseLiterals& clause : *clauses) {
        if (clause.empty()) {
            report_.error(law.formula.range, "no assignment satisfies this law",
                          "a formula that can hold");
            return;
        }
    }
    if (clauses->empty()) {
        report_.warning(law.formula.range, "this law says nothing: it always holds");
    }
    for (const ClauseLiterals& clause : *clauses) {
        if (builder_.law(within.type->system ? nullptr : within.component, clause)) {
            origins_.push_back({law.range, &within});
        }
    }
}

} // namespace language
