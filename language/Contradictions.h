// Laws that cannot hold together, at least while every mode has its initial value: a plant with such laws has no state to begin
// with, and most often a typing mistake in one of them.
//
// Only what is certain is reported: the search for values that satisfy all laws has a budget, and a plant for which it does
// not end in time is taken as fine. The laws that are named are not more than needed: without any of them the others can hold.
#pragma once

#include "language/LawBuilder.h"
#include "language/Satisfiability.h"

#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace language {

class Contradictions {
public:
    Contradictions(const Model& model, const std::vector<LawOrigin>& origins, Report& report);

    void find();

private:
    static constexpr std::size_t domain = static_cast<std::size_t>(-1);
    using Origins = std::vector<std::size_t>; ///< indices of laws, then of modes

    std::optional<Origins> conflict(const Origins& within, std::size_t mostConflicts) const;
    Origins minimal(Origins core) const;
    void tell(const Origins& core);
    bool isMode(std::size_t origin) const { return origin >= model_.laws().size(); }

    const Model& model_;
    const std::vector<LawOrigin>& origins_;
    Report& report_;
    std::vector<const StateVar*> variables_;
    std::vector<Atom*> initials_; ///< of modes
    std::unordered_map<const Atom*, std::size_t> numbers_;
};

} // namespace language
