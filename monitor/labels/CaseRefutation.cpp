// Each open variable is a level: its values are tried in order, and the grounds of the violations are united. A violation
// whose ground does not contain the value tried last refutes the whole level.
#include "monitor/labels/CaseRefutation.h"

#include "monitor/labels/Meter.h"

#include <algorithm>

namespace monitor {

namespace {

// What the violations of some cases rest on; of variables that were tried, apart.
struct Ground {
    CaseRefutation given;
    std::set<VariableIndex> tried;

    void unite(const Ground& other)
    {
        given.assumed.insert(other.given.assumed.begin(), other.given.assumed.end());
        given.clauses.insert(other.given.clauses.begin(), other.given.clauses.end());
        tried.insert(other.tried.begin(), other.tried.end());
    }
};

class Cases {
public:
    Cases(const Plant& plant, Prediction labels, std::size_t mostCases)
        : plant_(plant), labels_(std::move(labels)), left_(mostCases)
    {
    }

    // Of all values of the open variables from this one on. Nothing when one case is possible, or there are too many.
    std::optional<Ground> refuteFrom(VariableIndex variable)
    {
        const auto count = static_cast<VariableIndex>(plant_.variables().size());
        while (variable < count && !isOpen(variable)) {
            ++variable;
        }
        if (variable == count) {
            return std::nullopt;
        }
        tried_.insert(variable);
        std::optional<Ground> ground = refuteValues(variable);
        tried_.erase(variable);
        return ground;
    }

private:
    bool isOpen(VariableIndex variable) const
    {
        const plant::ValueRange values = plant_.variable(variable).values;
        return std::any_of(values.begin(), values.end(),
                           [this](AtomIndex value) { return !labels_.isKnown(value); });
    }

    std::optional<Ground> refuteValues(VariableIndex variable)
    {
        Ground all;
        addOwnClauses(variable, all);
        const std::size_t mark = labels_.mark();
        for (const AtomIndex value : plant_.variable(variable).values) {
            std::optional<Ground> one = refuteValue(variable, value);
            labels_.undo(mark);
            if (!one) {
                return one;
            }
            if (one->tried.erase(variable) == 0 && !labels_.isKnown(value)) {
                return one;
            }
            all.unite(*one);
        }
        return all;
    }

    std::optional<Ground> refuteValue(VariableIndex variable, AtomIndex value)
    {
        if (left_ == 0) {
            return std::nullopt;
        }
        --left_;
        Meter::spend(10);
        if (!labels_.assume(value)) {
            const auto other = labels_.valueOf(plant_.variable(variable));
            return groundOf({other.value_or(value)});
        }
        return labels_.propagate() ? refuteFrom(variable + 1) : groundOfViolated();
    }

    Ground groundOfViolated() const
    {
        std::vector<AtomIndex> atoms;
        for (const PlantLiteral& literal : plant_.clause(labels_.violated())) {
            atoms.push_back(literal.atom);
        }
        Ground ground = groundOf(atoms);
        ground.given.clauses.insert(labels_.violated());
        return ground;
    }

    Ground groundOf(const std::vector<AtomIndex>& atoms) const
    {
        Ground ground;
        for (const AtomIndex atom : labels_.derivation(atoms)) {
            const VariableIndex variable = plant_.variableOf(atom);
            if (labels_.reason(atom) != Prediction::assumed) {
                ground.given.clauses.insert(labels_.reason(atom));
            } else if (tried_.count(variable) != 0) {
                ground.tried.insert(variable);
            } else {
                ground.given.assumed.insert(atom);
            }
        }
        return ground;
    }

    // A variable's values are tried because it has exactly one of them.
    void addOwnClauses(VariableIndex variable, Ground& ground) const
    {
        for (const AtomIndex value : plant_.variable(variable).values) {
            for (const ClauseIndex clause : plant_.clausesOf(value)) {
                if (!plant_.isLaw(clause)) {
                    ground.given.clauses.insert(clause);
                }
            }
        }
    }

    const Plant& plant_;
    Prediction labels_;
    std::size_t left_;
    std::set<VariableIndex> tried_;
};

} // namespace

std::optional<CaseRefutation> refuteByCases(const Plant& plant, Prediction labels,
                                            std::size_t mostCases)
{
    auto ground = Cases(plant, std::move(labels), mostCases).refuteFrom(0);
    if (!ground) {
        return std::nullopt;
    }
    return std::move(ground->given);
}

} // namespace monitor
