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
/// matters to the caller, and can be taken back in reverse. Labels that are kept are shared: then a copy costs nothing, and a change
/// what is changed.
class Prediction {
public:
    static constexpr ClauseIndex assumed = -1;

    /// Everything is unknown. The plant outlives the prediction. Linear in the plant.
    explicit Prediction(const Plant& plant);

    /// Assumes the variable's value. Ensures that the atom is true and the variable's other atoms are false; or returns
    /// false, with nothing changed, when one of them has the opposite label already. Does not propagate.
    bool assume(AtomIndex value);
    /// Assumes that the variable does not have the value. Returns false, with nothing changed, when it has. Does not propagate.
    bool exclude(AtomIndex value);
    /// Draws all conclusions. Returns false when a clause is violated: the labels drawn so far stay, see violated(), and every
    /// further call returns false until they are undone. Visits each clause at most once for each of its atoms.
    bool propagate();

    /// Gives variables that were assumed other values: takes back what rested on the old ones, assumes the new ones,
    /// and draws all conclusions. Requires: all conclusions are drawn, none violated a clause, and each value's variable was
    /// assumed. Ensures: the labels are those of a prediction that assumes all of this afresh; the reasons may differ.
    /// Returns false as propagate() does. Visits the clauses of what changes; where the labels are not shared, one pass over them if
    /// anything does.
    bool reassume(const std::vector<AtomIndex>& values);

    /// The label of an atom. Constant time, as are the next two.
    Label label(AtomIndex atom) const
    {
        const auto place = static_cast<std::size_t>(atom);
        return shared_ ? known_[place].label() : labels_[place];
    }
    bool isTrue(AtomIndex atom) const { return label(atom) == Label::isTrue; }
    bool isKnown(AtomIndex atom) const { return label(atom) != Label::unknown; }
    /// The value of the variable that is true, if there is one.
    std::optional<AtomIndex> valueOf(const PlantVariable& variable) const;
    /// Whether a literal of the clause holds. Linear in the clause.
    bool satisfies(ClauseIndex clause) const;
    /// True when no atom is unknown.
    bool complete() const { return mark() == plant_->atomCount(); }
    /// The clause that propagate() found violated, -1 when it found none.
    ClauseIndex violated() const { return violated_; }

    /// How many atoms are labelled now. A mark can be returned to if nothing was labelled when it was taken, or all
    /// conclusions were drawn: the labels before it then imply no others.
    std::size_t mark() const { return settled_ + trail_.size(); }
    /// Takes back everything that was labelled after the mark. Requires: the labels before it were not taken back since.
    void undo(std::size_t mark);

    /// From now on copies share what none of them changes. Labels before the mark cannot be taken back any more but all together, or
    /// by reassume(). Linear where it was not so; reading a label becomes slower.
    void share(std::size_t mark);
    bool isShared() const { return shared_; }
    /// Calls with every atom of which the labels differ, by rising index. Requires: both are of the same plant. Costs what they do not
    /// share.
    template <typename Function>
    friend void forEachDifference(const Prediction& a, const Prediction& b, Function function)
    {
        const auto compare = [&](std::size_t place) {
            const auto atom = static_cast<AtomIndex>(place);
            if (a.label(atom) != b.label(atom)) {
                function(atom);
            }
        };
        if (a.shared_ && b.shared_) {
            forEachDifference(a.known_, b.known_, compare);
            return;
        }
        for (std::size_t place = 0; place < a.plant_->atomCount(); ++place) {
            compare(place);
        }
    }

    /// Chooses, among the clauses that would have given a label from what was labelled before it, the one whose
    /// environment is smallest, atom by atom in the order of labelling. Smaller environments make sharper conflicts.
    /// Costs the plant's literals times its modes over 64; does nothing in a plant of more than 4096 modes.
    void preferSmallEnvironments();

    /// The mode variables on which the labels of the atoms rest, sorted. Linear in the atoms visited.
    std::vector<VariableIndex> environment(const std::vector<AtomIndex>& atoms) const;
    /// All variables other than commands that were assumed, or read, and on which the labels rest, sorted. Linear in the same.
    std::vector<VariableIndex> assumptionsBehind(const std::vector<AtomIndex>& atoms) const;
    /// The atoms on whose labels those of the given ones rest, these included, in an order in which what a
    /// reason needs comes before what it gives: that of labelling, where they are not shared. One pass over the labels, or linear
    /// in what is returned.
    std::vector<AtomIndex> derivation(const std::vector<AtomIndex>& atoms) const;
    /// The clause that gave the label of an atom that has one, or `assumed`.
    ClauseIndex reason(AtomIndex atom) const
    {
        const auto place = static_cast<std::size_t>(atom);
        return shared_ ? known_[place].reason() : reasons_[place];
    }
    /// For every atom, whether its label rests on one of the variables marked. Linear in the plant.
    std::vector<bool> dependents(const std::vector<bool>& markedVariables) const;

private:
    // A label and its reason in one number.
    struct Known {
        std::int32_t both;

        static Known of(Label label, ClauseIndex reason)
        {
            return {reason * 4 + static_cast<std::int32_t>(label) + 1};
        }
        Label label() const { return static_cast<Label>((both & 3) - 1); }
        ClauseIndex reason() const { return both >> 2; }

        friend bool operator==(const Known&, const Known&) = default;
    };

    void set(AtomIndex atom, Label label, ClauseIndex reason);
    void enter(AtomIndex atom, Label label, ClauseIndex reason);
    void settle();
    class StillGiven;
    bool stays(AtomIndex atom, StillGiven& still);
    std::vector<AtomIndex> retract(const std::vector<AtomIndex>& values);
    void fetchAhead() const;
    bool visitAll(std::span<const ClauseIndex> clauses);
    template <typename LabelOf>
    bool visitAll(std::span<const ClauseIndex> clauses, LabelOf labelOf);
    template <typename LabelOf> bool visit(ClauseIndex clause, LabelOf labelOf);
    std::vector<AtomIndex> grounds(const std::vector<AtomIndex>& atoms) const;
    std::vector<AtomIndex> inOrder() const;
    std::vector<AtomIndex> behindTheirReasons(const std::vector<AtomIndex>& atoms) const;
    bool gives(ClauseIndex clause, AtomIndex atom, const std::vector<bool>& done) const;

    const Plant* plant_;
    bool shared_ = false;
    std::vector<Label> labels_; ///< where they are not shared
    std::vector<ClauseIndex> reasons_;
    SharedArray<Known> known_; ///< where they are
    /// So many labels are not on the trail any more. None where they are not shared.
    std::size_t settled_ = 0;
    std::vector<AtomIndex> trail_; ///< in the order of labelling: reasons come before what they give
    std::size_t next_ = 0;         ///< the first mark whose clauses were not visited
    ClauseIndex violated_ = -1;
};

/// The labels with all conclusions drawn; as they are where these contradict one another.
Prediction concluded(const Prediction& labels);
/// The same of these values, assumed in their order. Requires: at most one of each variable.
Prediction concludedFrom(const Plant& plant, const std::vector<AtomIndex>& values);

} // namespace monitor
