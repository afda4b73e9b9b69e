// What looks for the explanations of a step. The monitor asks one; the engine is behind the usual one (EngineExplanations.h).
//
//     class NoFaults final : public monitor::ExplanationSearch {                      // believes in the prediction alone
//         Explanations search(const StepFrame& frame, int, const SearchLimits&) override
//         {
//             Explanations answer;
//             const Scenario predicted(frame, {});
//             if (predicted.consistent() && predicted.discrepancies().empty()) answer.found.insert({});
//             return answer;
//         }
//     };
//     monitor::Tracker tracker(std::make_shared<NoFaults>(), plant, settings);
#pragma once

#include "model/SearchLimits.h"
#include "monitor/step/Scenario.h"

#include <map>
#include <set>

namespace monitor {

/// What a search found.
struct Explanations {
    /// Mode values other than predicted, each set sorted; the empty set is the prediction itself. They are judged afterwards: a set
    /// that contains another one may be among them, and one that the observations contradict.
    std::set<Deviations> found;
    /// Every explanation within the fault budget contains one of those found. False under a limit that cut the search.
    bool complete = true;
    SearchLimit limit = SearchLimit::none; ///< what cut it, if a limit did
    SearchWork work;
    /// The likelihood of what was observed, as its natural logarithm, for those of them that are known to contradict nothing: they are
    /// not predicted once more.
    std::map<Deviations, double> logLikelihoods = {};
    /// The labels under some of them, as StepLabels::take() gives them: they are not drawn once more.
    std::map<Deviations, StepLabels> labels = {};
};

class ExplanationSearch {
public:
    ExplanationSearch() = default;
    virtual ~ExplanationSearch() = default;
    ExplanationSearch(const ExplanationSearch&) = delete;
    ExplanationSearch& operator=(const ExplanationSearch&) = delete;

    /// Looks for sets of deviations with at most `faultBudget` faults under which nothing contradicts the frame's observations.
    /// Scenario(frame, {}) tells which observations contradict the prediction, and on which modes that rests. Ensures that no
    /// limit is exceeded by more than the piece of work in which it is met; a limit of 0 records asks for nothing but an incomplete answer.
    virtual Explanations search(const StepFrame& frame, int faultBudget,
                                const SearchLimits& limits) = 0;
};

} // namespace monitor
