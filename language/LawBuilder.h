// Formulas of the syntax tree as formulas over a plant's atoms, and laws as clauses of the model.
#pragma once

#include "language/Elaboration.h"
#include "language/NormalForm.h"

#include <optional>
#include <vector>

namespace language {

/// Where a law comes from.
struct LawOrigin {
    syntax::Range range;
    const Instance* instance = nullptr;
};

/// Translates one formula that TypeChecks has found sound, in the scope of an instance.
class FormulaTranslator {
public:
    FormulaTranslator(Elaboration& plant, Report& report) : plant_(plant), report_(report) {}

    /// Nothing when an index is out of range, or the formula becomes too large (reported). With `negative`, it is made
    /// for its negation to become clauses: equality of variables has a short form for either.
    std::optional<LawFormula> translate(const syntax::Formula& formula, Instance& within,
                                        const Environment& environment, bool negative = false);

private:
    std::optional<LawFormula> comparison(const syntax::Formula& formula, Instance& within,
                                         const Environment& environment, bool negative);
    std::optional<LawFormula> connective(const syntax::Formula& formula, Instance& within,
                                         const Environment& environment, bool negative);
    std::optional<LawFormula> equivalence(const syntax::Formula& formula, Instance& within,
                                          const Environment& environment, bool negative);

    bool comparesVariables(const syntax::Formula& formula, Instance& within,
                           const Environment& environment);

    Elaboration& plant_;
    Report& report_;
    std::size_t size_ = 0; ///< nodes of the formula so far
};

class LawBuilder {
public:
    LawBuilder(Elaboration& plant, ModelBuilder& builder, Report& report, std::uint64_t mostClauses)
        : plant_(plant), builder_(builder), report_(report), mostClauses_(mostClauses)
    {
    }

    /// Adds the clauses of a law. One that no assignment satisfies, or that has too many clauses, is reported.
    void build(const syntax::Law& law, Instance& within, const Environment& environment);

    /// The origin of each of the model's laws, in their order.
    const std::vector<LawOrigin>& origins() const { return origins_; }
    /// How many laws were built, instances counted.
    std::size_t count() const { return count_; }

private:
    Elaboration& plant_;
    ModelBuilder& builder_;
    Report& report_;
    std::uint64_t mostClauses_;
    std::vector<LawOrigin> origins_;
    std::size_t count_ = 0;
};

} // namespace language
