#include "language/meaning/LawBuilder.h"

namespace language {

void LawBuilder::build(const syntax::Law& law, Instance& within, const Environment& environment)
{
    const auto known = known_.find(&law);
    if (known != known_.end()) {
        add(law, within, shifted(known->second, within));
        return;
    }
    auto clauses = clausesOf(law, within, environment);
    if (!clauses) return;
    add(law, within, *clauses);
    if (speaksOfOwnVariables(law.formula)) {
        known_.emplace(&law, Known{firstAtom(within), std::move(*clauses)});
    }
}

std::optional<std::vector<plant::ClauseLiterals>> LawBuilder::clausesOf(
    const syntax::Law& law, Instance& within, const Environment& environment)
{
    FormulaTranslator translator(
        [&](const syntax::Path& path) { return plant_.find(within, path, environment); }, report_);
    const auto formula = translator.translate(law.formula);
    if (!formula) return std::nullopt;
    auto clauses = plant::normalForm(*formula, mostClauses_);
    if (!clauses) {
        const std::uint64_t count = plant::countClauses(*formula);
        report_.error(
            law.formula.range,
            "the law has " +
                (count >= std::uint64_t{1} << 62U ? "more than 10^18" : std::to_string(count)) +
                " clauses in normal form",
            "at most " + std::to_string(mostClauses_),
            "divide it into several laws, or give what recurs in it a cond of its own");
    }
    return clauses;
}

std::vector<plant::ClauseLiterals> LawBuilder::shifted(const Known& known,
                                                       const Instance& within) const
{
    std::vector<plant::ClauseLiterals> clauses = known.clauses;
    const std::uint32_t first = firstAtom(within);
    for (plant::ClauseLiterals& clause : clauses) {
        for (plant::Literal& literal : clause) {
            literal.atom = builder_.atom(literal.atom->number - known.first + first);
        }
    }
    return clauses;
}

void LawBuilder::add(const syntax::Law& law, const Instance& within,
                     const std::vector<plant::ClauseLiterals>& clauses)
{
    ++count_;
    if (clauses.empty()) {
        report_.warning(law.formula.range, "this law says nothing: it always holds");
    }
    const std::size_t added = builder_.law(within.type->system ? nullptr : within.component,
                                           clauses, report_.at(law.formula.range));
    origins_.insert(origins_.end(), added, LawOrigin{law.range, &within});
}

} // namespace language
