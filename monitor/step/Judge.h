// Judging candidates: what their modes predict, and how probable they are.
#pragma once

#include "monitor/labels/StepAssumptions.h"
#include "monitor/step/Step.h"

#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>

namespace monitor {

/// What is left of the candidates that a search found.
struct Judgement {
    std::vector<Candidate> candidates; ///< most probable first
    bool sure =
        true; ///< false when one was dropped of which it could not be settled whether it explains anything
    SearchLimit limit = SearchLimit::none; ///< of the step, that kept some from being judged
};

/// Keeps those among `found` whose modes, predicted anew, agree with all observations and laws, and of these the
/// ones that contain no other. One prediction for each of which neither likelihood nor labels are known already; quadratic in those of
/// different size that share a mode.
Judgement judge(const StepFrame& frame, const std::set<Deviations>& found,
                const std::map<Deviations, double>& logLikelihoods = {},
                const std::map<Deviations, StepLabels>& labels = {});

/// Divides by the sum of their probabilities, and puts the most probable first. Equal ones are ordered as `idOf` their modes. Ensures:
/// the modes of each are in this order, too.
void normaliseAndRank(std::vector<Candidate>& candidates,
                      const std::function<std::string(AtomIndex)>& idOf);

/// What a step assumes under some deviations: its commands, then one value of each mode variable in the frame's order. Costs the
/// deviations.
StepAssumptions assumptionsOf(const StepFrame& frame, const Deviations& deviations);

/// Natural logarithm of the probability that no mode takes on a fault but those that deviate as given, whatever else they do. Costs
/// the deviations, as do the next two.
double logCalm(const StepFrame& frame, const Deviations& deviations);

/// That of the modes that are predicted: 0 where nothing else is possible.
double logPredicted(const StepFrame& frame);

/// The candidate with these modes: the transitions' probabilities and the likelihood, not normalised. Nothing
/// when a mode cannot be had at this step.
std::optional<Candidate> weigh(const StepFrame& frame, const Deviations& modes,
                               double logLikelihood);

} // namespace monitor
