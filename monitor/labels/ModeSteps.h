// What each mode variable may do in one step, and how probable that is.
//
// From value a, with the transitions whose guards hold or may hold: it follows the most probable nominal one, if there is one that is
// no less probable than staying, and stays otherwise; it may also take any other enabled transition, or stay,
// with what the enabled transitions leave of the probability. Where they leave nothing to staying and none of them is nominal,
// the most probable one is followed. A value that none of these reaches cannot be had at this step.
//
// From one step to the next only those modes are looked at that have another value, or a guard that reads something else than before,
// or that is open.
#pragma once

#include "monitor/labels/CommandValues.h"
#include "monitor/labels/LogSum.h"
#include "monitor/labels/Prediction.h"

#include <memory>

namespace monitor {

/// A value that a mode variable may have after the step.
struct ModeOption {
    AtomIndex value;
    double probability; ///< per step, above 0, at most 1 (if the model's add up to at most 1)
    bool fault;         ///< the value is a fault, and not the one that the variable had
    bool repair;        ///< a repair leads to it
    /// A nominal transition leads to it; or it is that of staying, and that no nominal transition can be taken explains that at
    /// least as well as that one was missed.
    bool nominal;

    friend bool operator==(const ModeOption&, const ModeOption&) = default;
};

/// The possibilities of one mode variable.
struct ModeStep {
    VariableIndex variable;
    AtomIndex before;
    AtomIndex predicted; ///< one of the options
    std::vector<ModeOption> options;
    /// Of the nominal transition that is predicted; null: none.
    const PlantChange::Alternative* followed = nullptr;
    bool exact = true; ///< the shares of open guards were counted, not estimated

    /// The option of that value; null when the variable cannot have it.
    const ModeOption* option(AtomIndex value) const;
    /// Whether it may deviate from what is predicted without a fault.
    bool deviatesFreely() const;

    friend bool operator==(const ModeStep&, const ModeStep&) = default;
};

/// The natural logarithm of the probability that the mode takes on no fault but its predicted value, whatever else it does, and
/// but one of these values.
double logCalmOf(const ModeStep& step, const std::vector<AtomIndex>& others);

/// The possibilities of every mode variable, in the plant's order of variables, with what they have in sum. Copied in constant time.
class ModeSteps {
public:
    /// Natural logarithms, added up over all modes: of what is predicted, and of logCalmOf() without others.
    const LogSum& logPredicted() const { return logPredicted_; }
    const LogSum& logCalm() const { return logCalm_; }
    /// Whether all of them are.
    bool exact() const { return inexact_ == 0; }
    /// The predicted value of each.
    const SharedArray<AtomIndex>& predicted() const { return predicted_; }
    /// The places of those that may well do something else: of which an option is the most probable one, or has this part of its
    /// probability, and is not predicted.
    static constexpr double notableRatio = 0.01;
    const std::vector<std::size_t>& notable() const { return places(notable_); }
    /// The places of those that had a fault before the step.
    const std::vector<std::size_t>& faulty() const { return places(faulty_); }
    /// The places of those that had a fault before the step, or are predicted to have one.
    const std::vector<std::size_t>& failing() const { return places(failing_); }

    std::size_t size() const { return steps_.size(); }
    const ModeStep& operator[](std::size_t place) const { return *steps_[place]; }

    using Iterator = plant::PlaceIterator<ModeSteps, ModeStep>;
    Iterator begin() const { return {*this, 0}; }
    Iterator end() const { return {*this, size()}; }

    friend bool operator==(const ModeSteps& a, const ModeSteps& b);

private:
    friend class ModeStepsWriter;
    using Places = std::shared_ptr<const std::vector<std::size_t>>; ///< sorted; null: none
    static const std::vector<std::size_t>& places(const Places& places)
    {
        static const std::vector<std::size_t> none;
        return places ? *places : none;
    }

    SharedArray<std::shared_ptr<const ModeStep>> steps_;
    SharedArray<AtomIndex> predicted_;
    LogSum logPredicted_;
    LogSum logCalm_;
    std::size_t inexact_ = 0;
    Places notable_;
    Places faulty_;
    Places open_; ///< a guard is neither known to hold nor not to
    Places failing_;
};

/// The possibilities of every mode variable. Guards are read in the modes and
/// conditions before the step and the commands of this step; an open one has its share (GuardShares.h). Requires: all conclusions
/// are drawn from `before`. Linear in the plant and in the changes that leave the values before the step, but for open guards.
ModeSteps modeSteps(const Plant& plant, const Prediction& before,
                    const SharedArray<AtomIndex>& commands);

/// The possibilities of the modes of a part of the plant, by its numbers. Costs the part.
ModeSteps stepsWithin(const PlantPart& part, const Plant& whole, const ModeSteps& steps);

/// What the modes may do after some labels and commands, from which that after others is found.
class KnownModeSteps {
public:
    /// The same as modeSteps(), and that from which it follows.
    KnownModeSteps(const Plant& plant, const Prediction& before,
                   const SharedArray<AtomIndex>& commands);
    /// The same as KnownModeSteps(plant, before, commands), from what was there before. Costs what is different, where both labels
    /// are shared.
    KnownModeSteps(const Plant& plant, const Prediction& before,
                   const SharedArray<AtomIndex>& commands, const KnownModeSteps& last);

    const Prediction& before() const { return before_; }
    const ModeSteps& steps() const { return steps_; }
    /// The values that the commands give.
    const CommandValues& given() const { return given_; }
    /// How many modes were looked at: a measure of the work.
    std::size_t lookedAt() const { return lookedAt_; }

private:
    void derive(const Plant& plant, const std::vector<VariableIndex>& modes);
    bool giveChanged(const Plant& plant, const SharedArray<AtomIndex>& last,
                     std::vector<AtomIndex>& changed);

    Prediction before_;
    SharedArray<AtomIndex> commands_;
    CommandValues given_;
    ModeSteps steps_;
    std::size_t lookedAt_ = 0;
};
using KnownModeStepsPointer = std::shared_ptr<const KnownModeSteps>;

} // namespace monitor
