// Whether clauses can hold together, and if not, which of them are to blame.
//
// Depth-first search with unit propagation over two watched literals ("A machine program for theorem-proving", Communications of
// the ACM, 1962; "Engineering an efficient SAT solver", Design Automation Conference, 2001), without learning: the laws of a plant
// mostly determine its conditions from its modes and inputs, so that propagation does nearly all of the work. The search has a
// budget, and says "unknown" when that is used up.
#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <span>
#include <vector>

namespace plant {

class Satisfiability {
public:
    /// 2 * variable, or 2 * variable + 1 for its negation.
    using Literal = std::uint32_t;
    enum class Answer { satisfiable, unsatisfiable, unknown };

    explicit Satisfiability(std::size_t variables)
        : values_(variables, open), reasons_(variables, none), watchers_(2 * variables)
    {
    }

    /// Adds a clause. `origin` stands for it in cores.
    /// Requires: literals of the variables that there are; solve() has not been called.
    void add(std::span<const Literal> literals, std::uint32_t origin);
    void add(std::initializer_list<Literal> literals, std::uint32_t origin)
    {
        add(std::span(literals.begin(), literals.size()), origin);
    }

    /// Searches for values that satisfy all clauses.
    /// Requires: it is called once.
    /// Ensures: "unknown" only after `mostConflicts` conflicts.
    Answer solve(std::size_t mostConflicts);

    /// The origins, each once and in order, of clauses that cannot hold together. Not the fewest.
    /// Requires: solve() returned "unsatisfiable".
    std::vector<std::uint32_t> core() const;

private:
    static constexpr std::uint32_t none = static_cast<std::uint32_t>(-1);
    enum Value : signed char { open, isTrue, isFalse };

    struct Clause {
        std::uint32_t begin; ///< of its literals
        std::uint32_t origin;
        bool blamed = false;
    };
    /// The clauses that watch a literal, in a list. A watch is the number of its clause, doubled, plus 0 or 1.
    struct Watchers {
        std::uint32_t first = none;
        std::uint32_t last = none;
    };

    std::span<Literal> literalsOf(std::size_t clause);
    void watch(Literal literal, std::uint32_t watch);
    Value value(Literal literal) const;
    void assign(Literal literal, std::uint32_t reason);
    std::uint32_t propagate();
    std::uint32_t propagate(Literal falsified);
    bool watchAnother(std::uint32_t watch, Literal falsified);
    void blame(std::uint32_t clause);
    bool turnBack();

    std::vector<Clause> clauses_;
    std::vector<Literal> literals_; ///< clause after clause
    std::vector<Value> values_;
    std::vector<std::uint32_t> reasons_;
    std::vector<Watchers> watchers_;   ///< by literal
    std::vector<std::uint32_t> after_; ///< by watch: the next one of the literal
    std::vector<Literal> trail_;
    std::vector<std::size_t> decisions_; ///< places in the trail that are still to be tried the other way
    std::size_t propagated_ = 0;
    bool hasEmpty_ = false;
};

} // namespace plant
