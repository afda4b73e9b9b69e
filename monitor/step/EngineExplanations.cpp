#include "monitor/step/EngineExplanations.h"

#include "monitor/labels/Meter.h"
#include "monitor/step/LocalStep.h"
#include "monitor/step/StretchSearch.h"

#include <algorithm>

namespace monitor {

EngineExplanations::EngineExplanations(itms& engine, std::uint64_t recordsBeforeSplit)
    : engine_([&engine]() -> itms& { return engine; }),
      hasImplicates_([&engine] { return engine.piTable != nullptr; }),
      recordsBeforeSplit_(recordsBeforeSplit)
{
}

EngineExplanations::EngineExplanations(plant::ActiveModel& model, std::uint64_t recordsBeforeSplit)
    : engine_([&model]() -> itms& { return model.engine(); }),
      hasImplicates_([&model] { return model.implicates().found; }),
      recordsBeforeSplit_(recordsBeforeSplit)
{
}

// An answer that a limit cut may be another one next time.
Explanations EngineExplanations::search(const StepFrame& frame, int faultBudget,
                                        const SearchLimits& limits)
{
    if (const Asked* asked = known(frame, faultBudget, limits)) {
        Meter::spend(asked->cost);
        return asked->answer;
    }
    const std::uint64_t before = Meter::current() ? Meter::current()->spent() : 0;
    Explanations answer = searchAnew(frame, faultBudget, limits);
    std::map<Deviations, StepLabels> labels;
    labels.swap(answer.labels); // of this question only
    if (remembers_ && answer.limit == SearchLimit::none && answer.work.records > 0) {
        const std::uint64_t after = Meter::current() ? Meter::current()->spent() : 0;
        asked_.push_back({frame.commands, frame.observations, frame.inputs, frame.modes,
                          faultBudget, answer, after - before});
        if (asked_.size() > mostRemembered) {
            asked_.pop_front();
        }
    }
    answer.labels.swap(labels);
    return answer;
}

const EngineExplanations::Asked* EngineExplanations::known(const StepFrame& frame, int faultBudget,
                                                           const SearchLimits& limits) const
{
    const auto found = std::find_if(asked_.begin(), asked_.end(), [&](const Asked& asked) {
        return asked.faultBudget == faultBudget && asked.inputs == frame.inputs &&
               asked.observations == frame.observations && asked.commands == frame.commands &&
               asked.modes == frame.modes && asked.answer.work.records < limits.maxRecords &&
               asked.answer.work.candidates < limits.maxCandidates;
    });
    return found == asked_.end() ? nullptr : &*found;
}

Explanations EngineExplanations::searchAnew(const StepFrame& frame, int faultBudget,
                                            const SearchLimits& limits)
{
    ++searches_;
    Budget budget(limits);
    const std::optional<LocalStep> local = hasImplicates_() ? std::nullopt : LocalStep::of(frame);
    if (!hasImplicates_() && (local ? local->frame() : frame).modes.size() > narrowsAbove_) {
        if (auto explanations = searchStretches(frame, faultBudget, budget)) {
            return std::move(*explanations);
        }
    }
    FaultSearch search(engine_, local ? local->frame() : frame, budget.remaining(),
                       recordsBeforeSplit_);
    Explanations answer;
    try {
        search.run(faultBudget);
        answer.complete = search.complete();
        answer.limit = search.limit();
    } catch (const Meter::Cut& cut) {
        answer.complete = false;
        answer.limit = cut.limit;
    }
    for (const Deviations& found : search.found()) {
        answer.found.insert(local ? local->inWhole(found) : found);
    }
    budget.spend(search.work());
    answer.work = budget.work();
    return answer;
}

} // namespace monitor
