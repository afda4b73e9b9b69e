// Why the candidates of a step are believed: which conflicts each of them resolves, and what it leaves open.
//
// A conflict says that some modes cannot all be as they were assumed. A candidate resolves it where one of these modes
// deviates in it, since that step or an earlier one. Listed are the conflicts of the most probable hypothesis before each
// step; those of others are added where a candidate came from them and no listed one gives the reason.
#pragma once

#include "report/ConflictReport.h"
#include "report/Text.h"

namespace report {

/// A conflict that a candidate resolves.
struct Resolution {
    std::size_t conflict = 0; ///< its number
    std::string instead;      ///< the value that was assumed in it
};

/// A conflict that rests on a deviation which a candidate does not have.
struct Avoided {
    std::size_t conflict = 0;
    std::string variable;
    std::string value;
};

struct CandidateReasons {
    TrackedExplanation explanation;
    std::vector<std::vector<Resolution>> ofModes; ///< for each of the explanation's modes
    std::vector<std::vector<std::size_t>> ofLost; ///< for each lost command, the conflicts that rest on it
    std::vector<std::vector<std::size_t>> ofMisread; ///< the same for each wrong reading
    std::vector<std::vector<std::size_t>>
        ofUnexplained;            ///< for each such observation, the conflicts that stay
    std::vector<Avoided> avoided; ///< conflicts that none of its modes resolves, as it does not come to them
    /// Faults and lost commands of earlier steps for which nothing stands here any more.
    int over = 0;
};

struct StepExplanation {
    StepReport report;                        ///< of the step
    std::vector<CandidateReasons> candidates; ///< as many as are shown, most probable first
    std::vector<ExplainedConflict> conflicts; ///< by step
    std::vector<std::size_t>
        stepsOpen; ///< that contradicted it, too, and no conflict was found within its bound
    std::size_t stepsLeftOut = 0; ///< earlier steps that contradicted the most probable hypothesis
};

/// What a step is explained from.
/// Requires: the history and the answer are those of one session over the plant and the model. None of it is kept.
struct ExplainedRun {
    const plant::Plant& plant;
    const language::ReadResult& model;
    const monitor::ConflictHistory& history;
    const monitor::TrackAnswer& answer;
};

/// Derives and checks the conflicts. Costs a prediction of the plant for each of them, and one pass over its laws.
StepExplanation explainStep(const ExplainedRun& run, const Shown& shown);

/// One JSON object, ended by a newline; docs/output.md has its fields.
std::string explanationJson(const StepExplanation& explanation);

/// The same for people.
std::string explanationText(const StepExplanation& explanation, const Colours& colours);

} // namespace report
