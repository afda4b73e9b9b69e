// Laws of the syntax tree as clauses of the model.
#pragma once

#include "language/meaning/Elaboration.h"
#include "language/meaning/FormulaTranslator.h"
#include "language/meaning/OwnVariables.h"

#include <cstdint>
#include <optional>
#include <unordered_map>
#include <vector>

namespace language {

/// Where a law comes from.
struct LawOrigin {
    text::Range range;
    const Instance* instance = nullptr;
};

class LawBuilder {
public:
    LawBuilder(Elaboration& plant, plant::CheckedBuilder& builder, Report& report,
               std::uint64_t mostClauses)
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
    /// The clauses of a law that speaks of nothing but variables of its own component: in all instances they are the same but for
    /// the numbers of the atoms.
    struct Known {
        std::uint32_t first; ///< atom of the instance from which they are
        std::vector<plant::ClauseLiterals> clauses;
    };

    std::optional<std::vector<plant::ClauseLiterals>> clausesOf(const syntax::Law& law,
                                                                Instance& within,
                                                                const Environment& environment);
    std::vector<plant::ClauseLiterals> shifted(const Known& known, const Instance& within) const;
    void add(const syntax::Law& law, const Instance& within,
             const std::vector<plant::ClauseLiterals>& clauses);

    Elaboration& plant_;
    plant::CheckedBuilder& builder_;
    Report& report_;
    std::uint64_t mostClauses_;
    std::unordered_map<const syntax::Law*, Known> known_;
    std::vector<LawOrigin> origins_;
    std::size_t count_ = 0;
};

} // namespace language
