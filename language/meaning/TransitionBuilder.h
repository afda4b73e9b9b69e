// Transitions of the syntax tree as transitions of the model.
//
//     fault closed, open -> stuck when load = high | load = extreme : 1e-4 per hour
//
// becomes four: one for each source and each alternative of the guard, which is brought into disjunctive normal form. A nominal
// or idle transition without a probability takes what the faults and repairs that can always happen leave.
#pragma once

#include "language/meaning/Elaboration.h"
#include "plant/Change.h"

#include <cstdint>
#include <unordered_map>
#include <vector>

namespace language {

plant::ChangeKind kindOf(const syntax::Transition& transition);
/// Whether a value other than the target is meant by `any`: a fault where it is a repair, and one that is none elsewhere.
bool isAmongAny(const syntax::Transition& transition, bool isFault);

class TransitionBuilder {
public:
    TransitionBuilder(Elaboration& plant, plant::CheckedBuilder& builder, Report& report,
                      double stepSeconds, std::uint64_t mostAlternatives)
        : plant_(plant), builder_(builder), report_(report), stepSeconds_(stepSeconds),
          mostAlternatives_(mostAlternatives)
    {
    }

    /// All transitions of an instance, in the order written.
    void build(Instance& instance);

private:
    using Changes = std::vector<plant::Change>;

    /// The changes of a type whose guards speak of nothing but its own variables. In all instances with the same parameters they are the
    /// same but for the numbers of the atoms.
    struct Known {
        std::vector<double> parameters;
        std::uint32_t first = 0; ///< atom of the instance from which they are
        Changes changes;
    };

    Changes changesOf(Instance& instance);
    Changes shifted(const Known& known, const Instance& instance) const;
    void gather(const syntax::Transition& transition, Instance& instance,
                const Environment& environment, Changes& changes);
    std::optional<std::vector<plant::Conjunction>> alternativesOf(
        const syntax::Transition& transition, Instance& instance, const Environment& environment);

    Elaboration& plant_;
    plant::CheckedBuilder& builder_;
    Report& report_;
    double stepSeconds_;
    std::uint64_t mostAlternatives_;
    std::unordered_map<const ComponentType*, Known> known_; ///< of the latest instance that was looked at
};

} // namespace language
