// Explanations found by the engine, one FaultSearch for each question.
#pragma once

#include "monitor/step/ExplanationSearch.h"
#include "monitor/step/FaultSearch.h"
#include "plant/ActiveModel.h"

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

private:
    std::function<itms&()> engine_;
    std::uint64_t recordsBeforeSplit_;
};

} // namespace monitor
