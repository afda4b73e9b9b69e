// What may give the labels is collected backwards, all clauses and not only the reasons that are kept, up to what is given. From there
// the labels are drawn again, each with the clause that gives it first.
#include "monitor/step/NearConflict.h"

#include "monitor/labels/Meter.h"

#include <algorithm>
#include <deque>
#include <unordered_map>
#include <unordered_set>

namespace monitor {

namespace {

class Surroundings {
public:
    Surroundings(const Plant& plant, const StepLabels& labels)
        : plant_(plant), labels_(labels.prediction())
    {
        for (const AtomIndex value : labels.observations()) {
            if (labels_.isTrue(value)) {
                read_.insert(plant_.variableOf(value));
            }
        }
    }

    // What the labels of these rest on.
    void explore(const std::vector<AtomIndex>& atoms)
    {
        std::for_each(atoms.begin(), atoms.end(), [this](AtomIndex atom) { reach(atom); });
        for (std::size_t i = 0; i < reached_.size(); ++i) {
            const AtomIndex atom = reached_[i];
            if (isGiven(atom)) {
                continue;
            }
            for (const ClauseIndex clause : plant_.clausesOf(atom)) {
                Meter::spend(plant_.clause(clause).size());
                if (givenBy(clause) == atom) {
                    for (const PlantLiteral& literal : plant_.clause(clause)) {
                        reach(literal.atom);
                    }
                }
            }
        }
        draw();
    }

    // The modes behind a label, the one that is the fewest reasons away last. Nothing where there are at least so many.
    std::optional<std::vector<VariableIndex>> modesBehind(AtomIndex atom, std::size_t tooMany) const
    {
        std::vector<VariableIndex> modes;
        std::unordered_set<VariableIndex> known;
        std::unordered_set<AtomIndex> seen{atom};
        std::deque<AtomIndex> open{atom};
        while (!open.empty()) {
            const AtomIndex next = open.front();
            open.pop_front();
            if (isGiven(next)) {
                const VariableIndex variable = plant_.variableOf(next);
                if (plant_.variable(variable).isMode && !read_.contains(variable) &&
                    known.insert(variable).second) {
                    modes.push_back(variable);
                }
            } else {
                for (const PlantLiteral& literal : plant_.clause(reasons_.at(next))) {
                    if (seen.insert(literal.atom).second) {
                        open.push_back(literal.atom);
                    }
                }
            }
            if (modes.size() >= tooMany) {
                return std::nullopt;
            }
        }
        std::reverse(modes.begin(), modes.end());
        return modes;
    }

private:
    bool isGiven(AtomIndex atom) const
    {
        return labels_.reason(atom) == Prediction::assumed ||
               read_.contains(plant_.variableOf(atom));
    }

    void reach(AtomIndex atom)
    {
        if (seen_.insert(atom).second) {
            reached_.push_back(atom);
        }
    }

    // The atom to which the clause gives its label: that of the only literal that holds. Nothing: there are several.
    std::optional<AtomIndex> givenBy(ClauseIndex clause) const
    {
        std::optional<AtomIndex> only;
        for (const PlantLiteral& literal : plant_.clause(clause)) {
            const Label label = labels_.label(literal.atom);
            if (label == Label::unknown) {
                return std::nullopt;
            }
            if ((label == Label::isTrue) != literal.negated) {
                if (only) {
                    return std::nullopt;
                }
                only = literal.atom;
            }
        }
        return only;
    }

    // Breadth first, from what is given: so the order does not depend on that in which it was reached.
    void draw()
    {
        std::sort(reached_.begin(), reached_.end());
        std::vector<AtomIndex> drawn;
        for (const AtomIndex atom : reached_) {
            if (isGiven(atom)) {
                drawn.push_back(atom);
                continue;
            }
            const auto clauses = plant_.clausesOf(atom);
            const auto alone = std::find_if(clauses.begin(), clauses.end(), [&](ClauseIndex clause) {
                return plant_.clause(clause).size() == 1 && givenBy(clause) == atom;
            });
            if (alone != clauses.end()) {
                reasons_.emplace(atom, *alone);
                drawn.push_back(atom);
            }
        }
        for (std::size_t i = 0; i < drawn.size(); ++i) {
            for (const ClauseIndex clause : plant_.clausesOf(drawn[i])) {
                Meter::spend(plant_.clause(clause).size());
                const auto atom = givenBy(clause);
                if (atom && seen_.contains(*atom) && !isDrawn(*atom) && isReady(clause, *atom)) {
                    reasons_.emplace(*atom, clause);
                    drawn.push_back(*atom);
                }
            }
        }
    }

    bool isDrawn(AtomIndex atom) const { return reasons_.contains(atom) || isGiven(atom); }

    bool isReady(ClauseIndex clause, AtomIndex given) const
    {
        const std::span<const PlantLiteral> literals = plant_.clause(clause);
        return std::all_of(literals.begin(), literals.end(), [&](const PlantLiteral& literal) {
            return literal.atom == given || (seen_.contains(literal.atom) && isDrawn(literal.atom));
        });
    }

    const Plant& plant_;
    const Prediction& labels_;
    std::unordered_set<VariableIndex> read_; ///< and as predicted
    std::vector<AtomIndex> reached_;
    std::unordered_set<AtomIndex> seen_;
    std::unordered_map<AtomIndex, ClauseIndex> reasons_;
};

} // namespace

std::optional<std::vector<VariableIndex>> nearConflict(const Plant& plant, const StepLabels& labels)
{
    std::vector<AtomIndex> ruledOut = labels.contradicted();
    std::erase_if(ruledOut, [&](AtomIndex value) { return !labels.prediction().isKnown(value); });
    Surroundings surroundings(plant, labels);
    surroundings.explore(ruledOut);
    std::optional<std::vector<VariableIndex>> smallest;
    for (const AtomIndex value : ruledOut) {
        const std::size_t tooMany = smallest ? smallest->size() : plant.variables().size() + 1;
        if (auto conflict = surroundings.modesBehind(value, tooMany)) {
            smallest = std::move(conflict);
        }
    }
    return smallest;
}

} // namespace monitor
