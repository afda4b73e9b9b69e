#include "language/meaning/LawBuilder.h"

namespace language {

void LawBuilder::build(const syntax::Law& law, Instance& within, const Environment& environment)
{
    FormulaTranslator translator(
        [&](const syntax::Path& path) { return plant_.find(within, path, environment); }, report_);
    const auto formula = translator.translate(law.formula);
    if (!formula) return;
    const auto clauses = plant::normalForm(*formula, mostClauses_);
    if (!clauses) {
        const std::uint64_t count = plant::countClauses(*formula);
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
    if (clauses->empty()) {
        report_.warning(law.formula.range, "this law says nothing: it always holds");
    }
    const std::size_t added = builder_.law(within.type->system ? nullptr : within.component,
                                           *clauses, report_.at(law.formula.range));
    origins_.insert(origins_.end(), added, LawOrigin{law.range, &within});
}

} // namespace language
