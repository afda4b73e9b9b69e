// What follows from a set of assumptions: sound unit propagation over the plant's clauses.
//
// Assuming mode=ok and a=1, the clause (!mode=ok | !a=1 | out=0) gives out=0, and the clause is kept as the
// reason. From the reasons one gets the modes on which a label rests (its environment): when an observation
// contradicts the label, at least one of these modes is not as assumed. See J. de Kleer, "An
// assumption-based TMS", Artificial Intelligence 28 (1986), of which this keeps one environment a label.
#pragma once

#include "monitor/labels/Numbering.h"

#include <optional>

namespace monitor {

enum class Label : std::int8_t { isFalse = -1, unknown = 0, isTrue = 1 };

/// Labels of all atoms of a plant, with the reason of each. Assumptions are made one by one, in the order that
/// matters to the caller, and can be taken back in reverse.
class Prediction {
public:
    static constexpr ClauseIndex assumed = -1;

    explicit Prediction(const Plant& plant);

    /// Assumes the variable's value: the atom is true and the variable's other atoms are false. False, with
    /// nothing changed, when one of them has the opposite label already. Does not propagate.
    bool assume(AtomIndex value);
    /// Draws all conclusions. False when a clause is violated: the labels drawn so far stay, see violated(), and
    /// it is false again at every further call until they are undone. Every clause is visited at most once for
    /// each of its atoms.
    bool propagate();

    /// Gives variables that were assumed other values: takes back what rested on the old ones, assumes the new ones,
    /// and draws all conclusions. The labels are those of a prediction that assumes all of this afresh, the reasons may
    /// be others. False as for propagate(). Requires that all conclusions are drawn, none violated a clause, and each
    /// value's variable was assumed. Visits the clauses of what changes; one pass over the labels if anything does.
    bool reassume(const std::vector<AtomIndex>& values);

    Label label(AtomIndex atom) const { return labels_[static_cast<std::size_t>(atom)]; }
    bool isTrue(AtomIndex atom) const { return label(atom) == Label::isTrue; }
    bool isKnown(AtomIndex atom) const { return label(atom) != Label::unknown; }
    /// The value of the variable that is true, if there is one.
    std::optional<AtomIndex> valueOf(const PlantVariable& variable) const;
    /// True when no atom is unknown.
    bool complete() const { return trail_.size() == labels_.size(); }
    /// The clause that propagate() found violated, -1 when it found none.
    ClauseIndex violated() const { return violated_; }

    /// How many atoms are labelled now; undo(mark()) takes back everything labelled later. A mark is good when
    /// nothing was labelled yet or all conclusions were drawn: the labels before it then imply no others.
    std::size_t mark() const { return trail_.size(); }
    void undo(std::size_t mark);

    /// Chooses, among the clauses that would have given a label from what was labelled before it, the one whose
    /// environment is smallest, atom by atom in the order of labelling. Smaller environments make sharper conflicts.
    /// Costs the plant's literals times its modes over 64; does nothing in a plant of more than 4096 modes.
    void preferSmallEnvironments();

    /// The mode variables on which the labels of the atoms rest, sorted. Linear in the atoms visited.
    std::vector<VariableIndex> environment(const std::vector<AtomIndex>& atoms) const;
    /// The atoms on whose labels those of the given ones rest, these included, in the order of labelling: what a
    /// reason needs comes before what it gives. One pass over the labels.
    std::vector<AtomIndex> derivation(const std::vector<AtomIndex>& atoms) const;
    /// The clause that gave the label of an atom that has one, or `assumed`.
    ClauseIndex reason(AtomIndex atom) const { return reasons_[static_cast<std::size_t>(atom)]; }
    /// For every atom, whether its label rests on one of the variables marked. Linear in the plant.
    std::vector<bool> dependents(const std::vector<bool>& markedVariables) const;

private:
    void set(AtomIndex atom, Label label, ClauseIndex reason);
    std::vector<AtomIndex> retract(const std::vector<AtomIndex>& values);
    bool visitAll(const std::vector<ClauseIndex>& clauses);
    bool visit(ClauseIndex clause);
    std::vector<AtomIndex> grounds(const std::vector<AtomIndex>& atoms) const;
    bool gives(ClauseIndex clause, AtomIndex atom, const std::vector<bool>& done) const;

    const Plant* plant_;
    std::vector<Label> labels_;
    std::vector<ClauseIndex> reasons_;
    std::vector<AtomIndex> trail_; ///< in the order of labelling: reasons come before what they give
    std::size_t next_ = 0;         ///< the first of the trail whose clauses were not visited
    ClauseIndex violated_ = -1;
};

} // namespace monitor
