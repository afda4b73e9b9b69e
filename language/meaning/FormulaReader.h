// A formula that is asked of a plant: read, its names found in the model, and brought into clauses.
//
//     ReadFormula read = readFormula("valve.position = stuck & branch1.valveA.outflow != zero", *result.model, result.system);
//     for (const text::Diagnostic& error : read.errors) std::cerr << error.format();
//
// Paths are as seen from the system: `valve.position`, `cell[3].x`, `level` for a variable of the system itself. Names as the
// program prints them, `branch1/valveA.outflow` and `Station.level`, mean the same. Names are looked up in the model that was
// built; the files that it was read from are not needed.
#pragma once

#include "plant/NormalForm.h"
#include "text/Diagnostic.h"

#include <optional>
#include <string>
#include <vector>

namespace language {

/// A formula, or its negation, as a conjunction of clauses: of the two the one that has fewer.
struct FormulaClauses {
    bool negated = false;                       ///< the clauses say that the formula does not hold
    std::vector<plant::ClauseLiterals> clauses; ///< none: they always hold; an empty one: they never do
};

struct ReadFormula {
    std::optional<FormulaClauses> formula; ///< nothing when there are errors
    std::vector<text::Diagnostic> errors; ///< all, each with its place in the text, under the name "formula"
};

/// Most clauses that a formula may become.
constexpr std::uint64_t mostFormulaClauses = 10'000;

/// Reads a formula over a model whose system has that name. Throws nothing but std::bad_alloc. Linear in the model and the text,
/// and in the clauses.
ReadFormula readFormula(const std::string& text, const plant::Model& model,
                        const std::string& system);

} // namespace language
