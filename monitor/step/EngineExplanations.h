// Explanations found by the engine, one FaultSearch for each question. The last questions are remembered with their answers: a plant
// that stays as it is, and unexplained, asks the same at every step.
#pragma once

#include "monitor/step/ExplanationSearch.h"
#include "monitor/step/FaultSearch.h"
#include "monitor/step/Requirements.h"
#include "plant/ActiveModel.h"

#include <deque>
#include <functional>

namespace monitor {

class EngineExplanations final : public ExplanationSearch {
public:
    /// The engine is set up over the plant of every frame, and outlives this. Requires that the registry in which it was set up
    /// is in use whenever something is searched. The answer is the same with any number of records.
    explicit EngineExplanations(
        itms& engine, std::uint64_t recordsBeforeSplit = FaultSearch::usualRecordsBeforeSplit);
    /// The same for a model that has its own registry, which is put in use for every question.
    explicit EngineExplanations(plant::ActiveModel& model, std::uint64_t recordsBeforeSplit =
                                                               FaultSearch::usualRecordsBeforeSplit);

    Explanations search(const StepFrame& frame, int faultBudget,
                        const SearchLimits& limits) override;

    /// From here on every question is searched anew: for whoever wants to see the engine at work.
    void rememberNothing() { remembers_ = false; }
    /// Searches the stretches (StretchSearch.h) in plants of more modes than that; the answer is the same with any number.
    void narrowAbove(std::size_t modes) { narrowsAbove_ = modes; }
    /// How many searches were begun, and not answered from memory.
    std::uint64_t searches() const { return searches_; }

private:
    struct Asked {
        SharedArray<AtomIndex> commands;
        std::vector<AtomIndex> observations;
        std::size_t inputs;
        ModeSteps modes;
        int faultBudget;
        Explanations answer;
        std::uint64_t cost; ///< by the meter
    };

    const Asked* known(const StepFrame& frame, int faultBudget, const SearchLimits& limits) const;
    Explanations searchAnew(const StepFrame& frame, int faultBudget, const SearchLimits& limits);

    /// Of which the answers are remembered: as many as hypotheses are kept, and some lost commands.
    static constexpr std::size_t mostRemembered = 32;

    std::function<itms&()> engine_;
    std::function<bool()> hasImplicates_; ///< which may lead the engine anywhere
    std::uint64_t recordsBeforeSplit_;
    std::deque<Asked> asked_; ///< oldest first
    bool remembers_ = true;
    std::uint64_t searches_ = 0;
    std::size_t narrowsAbove_ = fewToSearch;
};

} // namespace monitor
