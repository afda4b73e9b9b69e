// Whether clauses can hold together, and if not, which of them are to blame.
//
// Depth-first search with unit propagation over two watched literals (Davis, Logemann, Loveland 1962; Moskewicz et al. 2001),
// without learning: the laws of a plant mostly determine its conditions from its modes and inputs, so that propagation does
// nearly all of the work. The search has a budget, and says "unknown" when that is used up.
#pragma once

#include <cstddef>
#include <vector>

namespace plant {

class Satisfiability {
public:
    /// 2 * variable, or 2 * variable + 1 for its negation.
    using Literal = std::size_t;
    enum class Answer { satisfiable, unsatisfiable, unknown };

    explicit Satisfiability(std::size_t variables)
        : values_(variables, open), reasons_(variables, none), watchers_(2 * variables)
    {
    }

    /// `origin` says in cores where the clause is from.
    void add(const std::vector<Literal>& literals, std::size_t origin);

    /// To be called once.
    Answer solve(std::size_t mostConflicts);

    /// After "unsatisfiable": the origins, each once and in order, of clauses that cannot hold together. Not the fewest.
    std::vector<std::size_t> core() const;

private:
    static constexpr std::size_t none = static_cast<std::size_t>(-1);
    enum Value : signed char { open, isTrue, isFalse };

    struct Clause {
        std::vector<Literal> literals;
        std::size_t origin;
        bool blamed = false;
    };

    Value value(Literal literal) const;
    void assign(Literal literal, std::size_t reason);
    std::size_t propagate();
    std::size_t propagate(Literal falsified);
    void blame(std::size_t clause);
    bool turnBack();

    std::vector<Clause> clauses_;
    std::vector<Value> values_;
    std::vector<std::size_t> reasons_;
    std::vector<std::vector<std::size_t>> watchers_; ///< by literal: the clauses that watch it
    std::vector<Literal> trail_;
    std::vector<std::size_t> decisions_; ///< places in the trail that are still to be tried the other way
    std::size_t propagated_ = 0;
    bool hasEmpty_ = false;
};

} // namespace plant
