// Whether clauses can hold together, and if not, which of them are to blame.
//
// Depth-first search with unit propagation over two watched literals ("A machine program for theorem-proving", Communications of
// the ACM, 1962; "Engineering an efficient SAT solver", Design Automation Conference, 2001), without learning: the laws of a plant
// mostly determine its conditions from its modes and inputs, so that propagation does nearly all of the work. The search has a
// budget, and says "unknown" when that is used up.
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

    /// Adds a clause. `origin` stands for it in cores.
    /// Requires: literals of the variables that there are; solve() has not been called.
    void add(const std::vector<Literal>& literals, std::size_t origin);

    /// Searches for values that satisfy all clauses.
    /// Requires: it is called once.
    /// Ensures: "unknown" only after `mostConflicts` conflicts.
    Answer solve(std::size_t mostConflicts);

    /// The origins, each once and in order, of clauses that cannot hold together. Not the fewest.
    /// Requires: solve() returned "unsatisfiable".
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
