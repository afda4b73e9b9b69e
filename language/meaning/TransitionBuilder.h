// Transitions of the syntax tree as transitions of the model.
//
//     fault closed, open -> stuck when load = high | load = extreme : 1e-4 per hour
//
// becomes four: one for each source and each alternative of the guard, which is brought into disjunctive normal form. A rate
// becomes the probability of at least one event in a step, 1 - exp(-rate * step). A nominal or idle transition without a
// probability takes what the faults that can always happen leave.
#pragma once

#include "language/meaning/LawBuilder.h"

#include <vector>

namespace language {

class TransitionBuilder {
public:
    TransitionBuilder(Elaboration& plant, plant::ModelBuilder& builder, Report& report,
                      double stepSeconds, std::uint64_t mostAlternatives)
        : plant_(plant), builder_(builder), report_(report), stepSeconds_(stepSeconds),
          mostAlternatives_(mostAlternatives)
    {
    }

    /// All transitions of an instance, in the order written.
    void build(Instance& instance);

    std::size_t count() const { return count_; }

private:
    using Conjunction = std::vector<std::pair<bool, Atom*>>;

    struct Change {
        const syntax::Transition* syntax;
        Atom* from;
        Atom* to;
        std::vector<Conjunction> alternatives; ///< any of them, an empty one always holds
        std::optional<double> probability;

        bool always() const { return alternatives.size() == 1 && alternatives.front().empty(); }
    };
    using Changes = std::vector<Change>;

    void gather(const syntax::Transition& transition, Instance& instance,
                const Environment& environment, Changes& changes);
    std::optional<std::vector<Conjunction>> alternativesOf(const syntax::Transition& transition,
                                                           Instance& instance,
                                                           const Environment& environment);
    std::optional<double> probabilityOf(const syntax::Probability& probability,
                                        const Environment& environment);
    void complete(const std::vector<Change*>& leaving);
    void checkSum(const std::vector<Change*>& leaving);
    void add(const Change& change);

    Elaboration& plant_;
    plant::ModelBuilder& builder_;
    Report& report_;
    double stepSeconds_;
    std::uint64_t mostAlternatives_;
    std::size_t count_ = 0;
};

} // namespace language
