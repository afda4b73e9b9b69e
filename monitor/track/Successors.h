// What may become of a hypothesis in one step.
//
// Without a contradiction it is what is predicted. Otherwise the step is searched for the smallest sets of deviating modes
// that explain it, once with all commands and readings and once for each set of those that may have been lost.
//
// The probability of a step under a hypothesis is the product, over the mode variables, of the transition taken (of
// staying: what the enabled transitions leave), times that of each command and reading to be lost or not, times the
// likelihood of the observations (monitor/step/Step.h). Along time the products multiply: the probability of a trajectory of
// a hidden Markov model whose states are the modes ("A tutorial on hidden Markov models and selected applications in speech
// recognition", Proceedings of the IEEE 77, 1989).
#pragma once

#include "monitor/step/Step.h"
#include "monitor/track/Losses.h"
#include "monitor/track/Twin.h"

#include <memory>
#include <optional>

namespace monitor {

/// The explanations of a step that one hypothesis leads to.
struct SuccessorSearch {
    std::vector<Hypothesis> found; ///< most probable first within the same losses
    /// No other explanation within the bound is as small. False as well where nothing was found, and with more than two
    /// losses something might have been: so many at once are not tried.
    bool complete = true;
    SearchLimit limit = SearchLimit::none;
    SearchWork work;
};

/// A hypothesis before a step, and what the step can do after it when nothing is lost: made once, and asked several times.
/// Hypothesis and input outlive it.
struct Prospect {
    const Hypothesis& parent;
    const TrackInput& input;
    StepFrame frame;
};

/// What the step can do after the parent, when these are lost. The parent outlives it.
StepFrame frameAfter(const Plant& plant, const Hypothesis& parent, const TrackInput& input,
                     const Losses& lost);

class Successors {
public:
    /// Records after which a search by the engine is taken apart (monitor/step/FaultSearch.h); the answer is the same with any
    /// number. Along time there are several hypotheses to search from, most of them with faults already, and conflicts of
    /// few modes: the engine's searches that end at all end early.
    static constexpr std::uint64_t recordsBeforeSplit = 100;

    /// For ever, as long as a fault counts that is over.
    static constexpr std::size_t always = static_cast<std::size_t>(-1);

    /// Searches with an engine that is set up over the plant. Both outlive it. A fault that is over counts for so many steps more.
    Successors(itms& engine, const Plant& plant, std::size_t window = always);
    /// Searches in a way of the caller's. The plant outlives it.
    Successors(std::shared_ptr<ExplanationSearch> search, const Plant& plant,
               std::size_t window = always)
        : search_(std::move(search)), plant_(plant), window_(window)
    {
    }

    /// The step as it is expected: every mode follows its nominal transition or stays, and nothing is lost. What
    /// contradicts that is listed as unexplained. The likelihood is that of the other observations; where something is
    /// unexplained it is left out, and so are the readings that it would remember, unless they are asked for.
    enum class Contradictions { areNot, areWeighed };
    Hypothesis predicted(const Prospect& prospect,
                         Contradictions despite = Contradictions::areNot) const;
    Hypothesis predicted(const Hypothesis& parent, const TrackInput& input) const
    {
        return predicted(prospect(parent, input));
    }
    /// Costs what the plant's modes and guards cost (monitor/labels/ModeSteps.h).
    Prospect prospect(const Hypothesis& parent, const TrackInput& input) const
    {
        return {parent, input, frame(parent, input, {})};
    }
    /// Natural logarithm of a bound of the probability of all that can happen but what is predicted: where something was not
    /// searched to its end, what is missing has no more.
    double logOthers(const Prospect& prospect) const;

    /// Whether what is predicted explains the step: nothing contradicts it, what it leaves open can have values, and it is
    /// not impossible (as where a command arrives that never does).
    /// Costs what is open around what changed at the step, if that has values in turn; else what is open in the plant.
    bool explains(Hypothesis& predicted) const;

    /// The step with other modes than expected. Nothing when they cannot be had, or do not explain the observations.
    std::optional<Hypothesis> deviating(const Hypothesis& parent, const TrackInput& input,
                                        const Deviations& deviations, const Losses& lost) const;

    /// Whatever else is at least so probable, compared with what is most probable, and explains the observations: other modes than
    /// expected, and losses, with at most so many faults and lost commands. `most` are tried, each of which is a record.
    SuccessorSearch probable(const Prospect& prospect, double leastRatio, int faultBudget,
                             std::size_t most, const SearchLimits& limits) const;

    /// The ways in which one of the parent's faults may have ended, where that explains the observations.
    std::vector<Hypothesis> recovered(const Prospect& prospect) const;

    /// How many more faults and lost commands there may be at a step after the parent, of so many at most: those of the parent are
    /// taken off that still count then, unless the step itself ends them. May be less than 0.
    int faultsLeft(const Hypothesis& parent, const TrackInput& input, int mostFaults) const;

    /// The smallest explanations with at most `faultBudget` more faults and lost commands. The limits are for all of it.
    SuccessorSearch search(const Prospect& prospect, int faultBudget, const SearchLimits& limits);

    /// frameAfter() of this plant.
    StepFrame frame(const Hypothesis& parent, const TrackInput& input, const Losses& lost) const
    {
        return frameAfter(plant_, parent, input, lost);
    }

    /// Made when it is asked for first, and then kept.
    const ConnectedVariables& connected() const;

private:
    /// The prospect's frame, or, where something is lost, that of the step without it.
    StepFrame frame(const Prospect& prospect, const Losses& lost) const
    {
        return lost.empty() ? prospect.frame : frame(prospect.parent, prospect.input, lost);
    }
    /// `labels` are those under the deviations, or of the parent.
    std::optional<Hypothesis> make(const Hypothesis& parent, const TrackInput& input,
                                   const StepFrame& frame, const Deviations& deviations,
                                   const Losses& lost, Contradictions despite,
                                   const StepLabels& labels) const;
    std::optional<Hypothesis> make(const Hypothesis& parent, const TrackInput& input,
                                   const StepFrame& frame, const Deviations& deviations,
                                   const Losses& lost, Contradictions despite) const
    {
        return make(parent, input, frame, deviations, lost, despite, parent.labels);
    }

    std::optional<Hypothesis> drawn(const Hypothesis& parent, const TrackInput& input,
                                    const StepFrame& frame, const Deviations& deviations,
                                    const Losses& lost, Contradictions despite,
                                    const StepLabels& labels) const;
    void noteFilling(Hypothesis& explained) const;

    std::shared_ptr<ExplanationSearch> search_;
    const Plant& plant_;
    std::size_t window_;
    mutable std::shared_ptr<const ConnectedVariables> connected_;
    // As many as the usual number of hypotheses, with a few faults each, leads to.
    mutable LastOpenAnswers openAnswers_{64};
    mutable LastTwins twins_{16};
};

/// The hypothesis before the first step: initial modes, and initial conditions where there are any.
Hypothesis initialHypothesis(const Plant& plant);

} // namespace monitor
