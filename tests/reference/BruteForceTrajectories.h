// What may have happened over several steps, by trying everything: at every step each set of commands that may be lost, and
// under it each assignment of values to the mode variables.
//
// Works on the objects of the active model and shares nothing with the monitor. The probability of a sequence is the
// product of the transitions taken (of staying: what the enabled ones leave), of the lossy commands that arrive or not,
// and of the likelihood of the observations. All sequences have the same steps, so all these products are
// whole numbers over one common denominator: they add up exactly.
#pragma once

#include "tests/reference/BruteForceDiagnosis.h"
#include "tests/reference/WholeNumber.h"

/// A given command that may be lost; its variable has the fallback then.
struct LossyAtom {
    const Atom* given;
    const Atom* fallback;
    double probability; ///< a multiple of 1/1024
};

/// What is given for a step.
struct TrajectoryStep {
    std::vector<const Atom*> commands;
    std::vector<const Atom*> observations;
    std::vector<LossyAtom> lossy;
};

class BruteForceTrajectories {
public:
    enum class Which {
        all,
        /// Those without a deviation or a loss that no contradiction called for: where what is expected explains a
        /// step, it is what happens, and otherwise no part of what happens would explain it as well.
        calledFor
    };
    using Modes = std::vector<const Atom*>; ///< by allVariables("Mode")

    /// Begins with the initial assignment of the active model. `maxFaults` bounds the faults and lost commands of each
    /// sequence.
    BruteForceTrajectories(Which which, int maxFaults);

    /// Continues every sequence by the step; those that it contradicts end.
    void advance(const TrajectoryStep& step);

    /// The probability of all sequences that end in the same modes, over the common denominator.
    const std::map<Modes, WholeNumber>& weights() const { return weights_; }
    /// Of all sequences.
    WholeNumber total() const;
    /// Natural logarithm of the common denominator.
    double logDenominator() const { return logDenominator_; }
    /// A guard was neither sure nor excluded by what follows, at this step or before. It was taken not to hold: from then on this
    /// is no reference.
    bool metOpenGuard() const { return metOpenGuard_; }

private:
    struct State {
        Modes modes;
        int faults;
        AtomLabels labels;
        WholeNumber weight;
    };
    /// What a set of modes and commands comes to at a step.
    struct Outcome {
        AtomLabels labels;
        std::uint32_t combinations; ///< of values of the observed variables: each is equally likely
    };
    struct Extension;

    std::vector<Extension> extensions(const State& from, const TrajectoryStep& step);
    void assign(std::size_t variable, Extension& extension, const State& from,
                const TrajectoryStep& step, std::vector<Extension>& all);
    const std::optional<Outcome>& outcome(const std::vector<const Atom*>& given,
                                          const TrajectoryStep& step);

    Which which_;
    int maxFaults_;
    std::vector<const StateVar*> variables_;
    std::vector<State> states_;
    std::map<Modes, WholeNumber> weights_;
    double logDenominator_ = 0.0;
    bool metOpenGuard_ = false;
    std::map<std::vector<const Atom*>, std::optional<Outcome>> outcomes_;
};
