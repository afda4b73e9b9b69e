#include "monitor/step/ConflictSearch.h"

#include "monitor/labels/Meter.h"
#include "monitor/step/FlipSearch.h"

#include <algorithm>
#include <cmath>

namespace monitor {

namespace {

bool worksAsPredicted(const ModeStep& step, AtomIndex fault)
{
    return step.predicted != fault &&
           std::all_of(step.options.begin(), step.options.end(), [&](const ModeOption& option) {
               return option.value == step.predicted || (option.value == fault && option.fault);
           });
}

// The values of all sources, which are the inputs.
std::optional<std::vector<bool>> sourcesOf(const CellNetwork& network, const StepFrame& frame)
{
    std::vector<bool> values(network.sources(), false);
    std::vector<bool> given(network.sources(), false);
    for (std::size_t i = 0; i < frame.inputs; ++i) {
        const SignalValue input = network.valueOf(frame.plant, frame.observations[i]);
        if (input.signal >= network.sources()) return std::nullopt;
        values[input.signal] = input.value;
        given[input.signal] = true;
    }
    const bool all = std::all_of(given.begin(), given.end(), [](bool one) { return one; });
    return all ? std::optional(std::move(values)) : std::nullopt;
}

bool observesConditionsOnly(const StepFrame& frame)
{
    return std::none_of(frame.observations.begin(), frame.observations.end(), [&](AtomIndex value) {
        return frame.plant.variable(frame.plant.variableOf(value)).isMode;
    });
}

// Nothing where the question is not one about a network.
std::optional<NetworkQuestion> questionOf(const CellNetwork& network, const StepFrame& frame)
{
    if (!frame.commands.empty() || !observesConditionsOnly(frame)) return std::nullopt;
    std::optional<std::vector<bool>> sources = sourcesOf(network, frame);
    if (!sources) return std::nullopt;
    NetworkQuestion question{std::move(*sources), {}, {}};
    for (std::size_t i = frame.inputs; i < frame.observations.size(); ++i) {
        question.seen.push_back(network.valueOf(frame.plant, frame.observations[i]));
    }
    std::size_t modes = 0;
    for (const Cell& cell : network.cells()) {
        question.mayFail.push_back(false);
        if (cell.mode < 0) continue;
        ++modes;
        const ModeStep& step = frame.stepOf(cell.mode);
        if (!worksAsPredicted(step, cell.fault)) return std::nullopt;
        question.mayFail.back() = step.option(cell.fault) != nullptr;
    }
    // A mode without a law could deviate for no reason.
    return modes == frame.modes.size() ? std::optional(std::move(question)) : std::nullopt;
}

Deviations deviations(const CellNetwork& network, const FaultyCells& cells)
{
    Deviations modes;
    for (const CellNumber cell : cells) modes.push_back(network.cells()[cell].fault);
    std::sort(modes.begin(), modes.end());
    return modes;
}

Explanations explanations(const CellNetwork& network, const NetworkQuestion& question,
                          const FlipSearch& search)
{
    Explanations answer;
    for (const FaultyCells& cells : search.found()) answer.found.insert(deviations(network, cells));
    answer.complete = search.complete();
    answer.limit = search.limit();
    answer.work = search.work();
    try {
        countOutcomes(network, question, search.found(), [&](const FaultyCells& cells, int number) {
            answer.logLikelihoods.emplace(deviations(network, cells), -std::log(number));
        });
    } catch (const Meter::Cut&) {
        // The judgement has a part of the limits for itself, and does the rest.
    }
    return answer;
}

} // namespace

ConflictSearch::ConflictSearch(const Plant& plant, std::shared_ptr<ExplanationSearch> otherwise)
    : otherwise_(std::move(otherwise)), network_(CellNetwork::of(plant))
{
}

Explanations ConflictSearch::search(const StepFrame& frame, int faultBudget,
                                    const SearchLimits& limits)
{
    const std::optional<NetworkQuestion> question =
        network_ ? questionOf(*network_, frame) : std::nullopt;
    if (!question) return otherwise_->search(frame, faultBudget, limits);
    FlipSearch search(*network_, *question, limits);
    search.run(faultBudget);
    return explanations(*network_, *question, search);
}

} // namespace monitor
