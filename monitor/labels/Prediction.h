// What follows from a set of assumptions: sound unit propagation over the plant's clauses.
//
// Assuming mode=ok and a=1, the clause (!mode=ok | !a=1 | out=0) gives out=0, and the clause is kept as the
// reason. The reasons lead to the modes on which a label rests, its environment: when an observation
// contradicts the label, at least one of these modes is not as assumed. See "An assumption-based TMS",
// Artificial Intelligence 28 (1986); this keeps one environment for each label.
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

    /// Everything is unknown. The plant outlives the prediction. Linear in the plant.
    explicit Prediction(const Plant& plant);

    /// Assumes the variable's value. Ensures that the atom is true and the variable's other atoms are false; or returns
    /// false, with nothing changed, when one of them has the opposite label already. Does not propagate.
    bool assume(AtomIndex value);
    /// Draws all conclusions. Returns false when a clause is violated: the labels drawn so far stay, see violated(), and every
    /// further call returns false until they are undone. Visits each clause at most once for each of its atoms.
    bool propagate();

    /// Gives variables that were assumed other values: takes back what rested on the old ones, assumes the new ones,
    /// and draws all conclusions. Requires: all conclusions are drawn, none violated a clause, and each value's variable was
    /// assumed. Ensures: the labels are those of a prediction that assumes all of this afresh; the reasons may differ.
    /// Returns false as propagate() does. Visits the clauses of what changes; one pass over the labels if anything does.
    bool reassume(const std::vector<AtomIndex>& values);

    /// The label of an atom. Constant time, as are the next two.
    Label label(AtomIndex atom) const { return labels_[static_cast<std::size_t>(atom)]; }
    bool isTrue(AtomIndex atom) const { return label(atom) == Label::isTrue; }
    bool isKnown(AtomIndex atom) const { return label(atom) != Label::unknown; }
    /// The value of the variable that is true, if there is one.
    std::optional<AtomIndex> valueOf(const PlantVariable& variable) const;
    /// Whether a literal of the clause holds. Linear in the clause.
    bool satisfies(ClauseIndex clause) const;
    /// True when no atom is unknown.
    bool complete() const { return trail_.size() == labels_.size(); }
    /// The clause that propagate() found violated, -1 when it found none.
    ClauseIndex violated() const { return violated_; }

    /// How many atoms are labelled now. A mark can be returned to if nothing was labelled when it was taken, or all
    /// conclusions were drawn: the labels before it then imply no others.
    std::size_t mark() const { return trail_.size(); }
    /// Takes back everything that was labelled after the mark. Requires: the labels before it were not taken back since.
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

/// The labels with all conclusions drawn; as they are where these contradict one another.
Prediction concluded(const Prediction& labels);
/// The same of these values, assumed in their order. Requires: at most one of each variable.
Prediction concludedFrom(const Plant& plant, const std::vector<AtomIndex>& values);

} // namespace monitor
