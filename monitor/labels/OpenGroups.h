// What the laws leave open: which variables hang together, which values they can have, and what bears on them.
#pragma once

#include "monitor/labels/Prediction.h"

#include <map>
#include <set>

namespace monitor {

/// Values of some variables, in the order of these.
using Combination = std::vector<AtomIndex>;

/// Open variables that do not depend on any others: every combination of theirs goes with every one of those.
struct OpenGroup {
    std::vector<VariableIndex> variables; ///< by rising index
    std::set<Combination> combinations;   ///< that the laws allow, two at least
};

struct OpenGroups {
    std::vector<OpenGroup> groups;
    /// Variables of which there are too many combinations: one set for each part of the plant where that is so.
    std::vector<std::vector<VariableIndex>> undecided;
};

/// The variables of which the labels leave values open, looked at one by one.
class OpenVariables {
public:
    /// Requires: all conclusions are drawn from the labels, and there is no contradiction. The plant outlives it.
    OpenVariables(const Plant& plant, Prediction labels);

    /// The variables that open clauses connect with this one, itself included, by rising index.
    const std::vector<VariableIndex>& connected(VariableIndex variable);
    /// Whether the laws allow the variable several values; where that cannot be decided within a bound, true.
    bool isOpen(VariableIndex variable);
    /// The modes that bear on an open variable: some law mentions the mode and the variable, or the mode and an open variable that
    /// laws connect with it through open variables.
    const std::set<VariableIndex>& bearing(VariableIndex variable);

    /// The finest groups of those among the variables that are open. Requires: no variable twice. Costs a propagation for each
    /// value that is tried, of which there is a bound for all groups together; those of few variables and values are found first.
    OpenGroups groups(const std::vector<VariableIndex>& variables);
    /// False when something so far could not be decided within a bound, and was taken to be open, or to depend on one another. What
    /// is `undecided` among groups does not count.
    bool exact() const { return exact_; }

private:
    std::vector<AtomIndex> openValues(VariableIndex variable) const;
    /// Those among the variables that may be open, as open clauses connect them, by the number of combinations at most.
    std::multimap<double, std::vector<VariableIndex>> parts(
        const std::vector<VariableIndex>& variables);
    bool canBeCompleted(const std::vector<VariableIndex>& variables);
    void noteValues(const std::vector<VariableIndex>& variables);
    bool collect(const std::vector<VariableIndex>& wanted, const std::vector<VariableIndex>& all,
                 Combination& chosen, std::set<Combination>& found);

    const Plant& plant_;
    Prediction labels_;
    std::vector<std::vector<VariableIndex>> connected_;
    std::map<VariableIndex, std::size_t> connectedOf_; ///< places in these
    std::map<VariableIndex, bool> known_;              ///< whether it is open
    std::map<VariableIndex, AtomIndex> seen_;          ///< a value that it can have
    std::vector<std::set<VariableIndex>> bearing_;
    std::map<VariableIndex, std::size_t>
        bearingOf_; ///< places in these: variables that are connected have the same
    std::size_t tried_ = 0;
    bool exact_ = true;
};

} // namespace monitor
