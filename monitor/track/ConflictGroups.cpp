// Propagation sees one contradiction and not another, as the laws are written, and values are tried only where it sees none. So the
// readings of each group with a contradiction are left out, and the rest is looked at again until nothing contradicts it: whether
// there is one in a group does not depend on other groups.
#include "monitor/track/ConflictGroups.h"

#include <algorithm>

namespace monitor {

namespace {

class Search {
public:
    Search(const StepFrame& frame, const ConnectedVariables& connected)
        : plant_(frame.plant), connected_(connected), rest_(frame)
    {
        seen_.groups.resize(plant_.variables().size(), false);
    }

    ConflictGroups run()
    {
        while (lookAgain()) {
            leaveOutReadings(rest_, [&](AtomIndex value) { return isSeen(value); });
        }
        return std::move(seen_);
    }

private:
    // Whether there may be others.
    bool lookAgain()
    {
        const Scenario scenario(rest_, {});
        std::optional<Conflict> conflict = scenario.modesInConflict();
        if (!conflict) {
            conflict = conflictByCases(scenario);
        }
        if (!conflict) {
            seen_.allSeen = !seen_.conflicts.empty();
            return false;
        }
        bool isNew = false;
        for (const AtomIndex value : scenario.discrepancies()) {
            isNew |= see(plant_.variableOf(value));
        }
        for (const VariableIndex variable : *conflict) {
            isNew |= see(variable);
        }
        seen_.conflicts.push_back(std::move(*conflict));
        seen_.allSeen = isNew && scenario.consistent() && !isOpenElsewhere(scenario.prediction());
        return isNew && !seen_.allSeen;
    }

    bool see(VariableIndex variable)
    {
        const auto group = static_cast<std::size_t>(connected_.groupOf(variable));
        const bool isNew = !seen_.groups[group];
        seen_.groups[group] = true;
        return isNew;
    }

    bool isSeen(AtomIndex value) const
    {
        return seen_.isIn(connected_.groupOf(plant_.variableOf(value)));
    }

    // Whether something is open in a group without a contradiction: only there can trying values show one.
    bool isOpenElsewhere(const Prediction& labels) const
    {
        for (std::size_t i = 0; i < plant_.atomCount(); ++i) {
            const auto atom = static_cast<AtomIndex>(i);
            if (!labels.isKnown(atom) && !isSeen(atom)) {
                return true;
            }
        }
        return false;
    }

    const Plant& plant_;
    const ConnectedVariables& connected_;
    StepFrame rest_;
    ConflictGroups seen_;
};

} // namespace

ConflictGroups conflictGroupsOf(const StepFrame& frame, const ConnectedVariables& connected)
{
    return Search(frame, connected).run();
}

} // namespace monitor
