#include "monitor/step/EngineExplanations.h"

namespace monitor {

EngineExplanations::EngineExplanations(itms& engine, std::uint64_t recordsBeforeSplit)
    : engine_([&engine]() -> itms& { return engine; }), recordsBeforeSplit_(recordsBeforeSplit)
{
}

EngineExplanations::EngineExplanations(plant::ActiveModel& model, std::uint64_t recordsBeforeSplit)
    : engine_([&model]() -> itms& { return model.engine(); }),
      recordsBeforeSplit_(recordsBeforeSplit)
{
}

Explanations EngineExplanations::search(const StepFrame& frame, int faultBudget,
                                        const SearchLimits& limits)
{
    FaultSearch search(engine_(), frame, limits, recordsBeforeSplit_);
    search.run(faultBudget);
    return {search.found(), search.complete(), search.limit(), search.work()};
}

} // namespace monitor
