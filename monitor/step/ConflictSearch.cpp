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

class Answer {
public:
    Answer(const CellNetwork& network, const NetworkQuestion& question)
        : network_(network), question_(question)
    {
    }

    Explanations made(const FlipSearch& search, SearchLimit cut)
    {
        Explanations answer;
        for (const FaultyCells& cells : search.found()) answer.found.insert(deviations(cells));
        answer.limit = cut != SearchLimit::none ? cut : search.limit();
        answer.complete = search.complete() && cut == SearchLimit::none;
        answer.work = search.work();
        try {
            addLikelihoods(search.found(), answer);
        } catch (const Meter::Cut&) {
            // The judgement has a part of the limits for itself, and does the rest.
        }
        return answer;
    }

private:
    Deviations deviations(const FaultyCells& cells) const
    {
        Deviations modes;
        for (const CellNumber cell : cells) modes.push_back(network_.cells()[cell].fault);
        std::sort(modes.begin(), modes.end());
        return modes;
    }

    // Sets of one size share the lanes. Those of more than 6 cells need more than there are.
    void addLikelihoods(const std::set<FaultyCells>& found, Explanations& answer)
    {
        constexpr std::size_t mostCells = 6;
        CellLanes lanes(network_, question_.sources);
        std::vector<std::vector<const FaultyCells*>> waiting(mostCells + 1);
        const auto count = [&](std::vector<const FaultyCells*>& sets) {
            const std::vector<int> numbers = outcomes(lanes, question_.seen, sets);
            for (std::size_t i = 0; i < sets.size(); ++i) {
                answer.logLikelihoods.emplace(deviations(*sets[i]), -std::log(numbers[i]));
            }
            sets.clear();
        };
        for (const FaultyCells& cells : found) {
            if (cells.size() > mostCells) continue;
            waiting[cells.size()].push_back(&cells);
            if (waiting[cells.size()].size() == laneCount >> cells.size()) {
                count(waiting[cells.size()]);
            }
        }
        for (auto& sets : waiting) {
            if (!sets.empty()) count(sets);
        }
    }

    const CellNetwork& network_;
    const NetworkQuestion& question_;
};

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
    SearchLimit cut = SearchLimit::none;
    try {
        search.run(faultBudget);
    } catch (const Meter::Cut& met) {
        cut = met.limit;
    }
    return Answer(*network_, *question).made(search, cut);
}

} // namespace monitor
