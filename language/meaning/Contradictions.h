// Laws that cannot hold together, at least while every mode has its initial value: a plant with such laws has no state to begin
// with, and most often a typing mistake in one of them.
//
// Only what is certain is reported: the search for values that satisfy all laws has a budget, and a plant for which it does
// not end in time is taken as fine. The laws that are named are not more than needed: without any of them the others can hold.
#pragma once

#include "language/meaning/LawBuilder.h"
#include "plant/Satisfiability.h"

#include <functional>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace language {

/// What cannot hold together. Both lists are in the order of the model.
struct Contradiction {
    std::vector<std::size_t> laws;  ///< indices in Model::laws
    std::vector<const Atom*> modes; ///< initial ones that are needed for it
};

class Contradictions {
public:
    /// Whether two laws of the model, by their indices, were written as one.
    using SameLaw = std::function<bool(std::size_t, std::size_t)>;

    Contradictions(const plant::Model& model, SameLaw sameLaw);

    /// Calls `tell` for each contradiction, ten at most: after one, its last law is left out, with all that were written as one
    /// with it.
    void find(const std::function<void(const Contradiction&)>& tell) const;

private:
    static constexpr std::size_t domain = static_cast<std::size_t>(-1);
    using Origins = std::vector<std::size_t>; ///< indices of laws, then of modes

    std::optional<Origins> conflict(const Origins& within, std::size_t mostConflicts) const;
    Origins minimal(Origins core) const;
    Contradiction contradiction(const Origins& core) const;
    bool isMode(std::size_t origin) const { return origin >= model_.laws().size(); }

    const plant::Model& model_;
    SameLaw sameLaw_;
    std::vector<const StateVar*> variables_;
    std::vector<Atom*> initials_; ///< of modes
    std::unordered_map<const Atom*, std::size_t> numbers_;
};

/// Reports the contradictions among laws with these origins.
void reportContradictions(const plant::Model& model, const std::vector<LawOrigin>& origins,
                          Report& report);

/// `a, b, c`: of the modes, as many as are worth naming.
std::string namesOf(const std::vector<const Atom*>& modes);

} // namespace language
