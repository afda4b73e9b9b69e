// Formulas of the syntax tree as formulas over a plant's atoms.
#pragma once

#include "language/meaning/Report.h"
#include "language/syntax/Syntax.h"
#include "plant/NormalForm.h"

#include <functional>
#include <optional>

namespace language {

/// Translates one formula whose names and values were found sound.
class FormulaTranslator {
public:
    /// The variable that a path of the formula names; null when there is none, which has been reported then.
    using Find = std::function<StateVar*(const syntax::Path&)>;

    FormulaTranslator(Find find, Report& report) : find_(std::move(find)), report_(report) {}

    /// Nothing when a path names nothing, or the formula becomes too large (reported). With `negative`, it is made for its
    /// negation to become clauses: equality of variables has a short form for either.
    std::optional<plant::LawFormula> translate(const syntax::Formula& formula,
                                               bool negative = false);

private:
    std::optional<plant::LawFormula> comparison(const syntax::Formula& formula, bool negative);
    std::optional<plant::LawFormula> connective(const syntax::Formula& formula, bool negative);
    std::optional<plant::LawFormula> equivalence(const syntax::Formula& formula, bool negative);

    bool comparesVariables(const syntax::Formula& formula);

    Find find_;
    Report& report_;
    std::size_t size_ = 0; ///< nodes of the formula so far
};

} // namespace language
