#include "report/PageStory.h"

#include "plant/Names.h"

#include <algorithm>

namespace report {

namespace {

constexpr std::size_t mostEvents = 500;    // at each end
constexpr std::size_t mostConflicts = 150; // likewise

// A page of many channels has fewer points, so that it can be opened.
std::size_t pointsFor(std::size_t channels, std::size_t modes)
{
    constexpr std::size_t values = 1'000'000; // of all channels and modes together
    const std::size_t each = values / (channels + modes / 4 + 1);
    return std::clamp<std::size_t>(each, 128, 4000) / 2 * 2;
}

// How many faults count by now may differ: that is no other explanation.
bool sameExplanation(const TrackedExplanation& a, const TrackedExplanation& b)
{
    const auto sameMode = [](const DeviatingMode& x, const DeviatingMode& y) {
        return x.variable == y.variable && x.value == y.value && x.since == y.since;
    };
    return a.lost == b.lost && a.unexplained == b.unexplained &&
           std::equal(a.modes.begin(), a.modes.end(), b.modes.begin(), b.modes.end(), sameMode);
}

std::int16_t numberOf(const Atom* value)
{
    const std::vector<Atom*>& values = *value->stateVar->atomLinks;
    return static_cast<std::int16_t>(std::find(values.begin(), values.end(), value) - values.begin());
}

std::vector<plant::VariableIndex> modesOf(const plant::Plant& plant)
{
    std::vector<plant::VariableIndex> modes;
    for (std::size_t i = 0; i < plant.variables().size(); ++i) {
        if (plant.variables()[i].isMode) modes.push_back(static_cast<plant::VariableIndex>(i));
    }
    return modes;
}

} // namespace

PageStory::PageStory(const plant::Plant& plant, const language::ReadResult& model,
                     const Shown& shown)
    : plant_(plant), model_(model), shown_(shown), modes_(modesOf(plant)),
      timeline_(pointsFor(model.bindings.channels.size(), modes_.size())), events_(mostEvents),
      conflicts_(mostConflicts)
{
    for (const auto& component : model.model->components()) {
        const auto number = static_cast<std::uint32_t>(componentNumbers_.size());
        componentNumbers_.emplace(component.get(), number);
        componentsByName_.emplace(component->name, number);
    }
    for (std::size_t i = 0; i < plant.variables().size(); ++i) {
        variables_.emplace(plant.variables()[i].variable, static_cast<plant::VariableIndex>(i));
    }
    for (const plant::ChannelBinding& binding : model.bindings.channels) {
        // Of several channels of a variable the first one stands for all.
        if (channelNumbers_.emplace(binding.variable, channels_.size()).second)
            channels_.push_back({binding.variable, &binding});
    }
}

void PageStory::add(const PageStep& step)
{
    ++steps_;
    ++counts_[step.report.status];
    if (!step.answer.contradicted.empty()) explain(step);
    TimelineRow row = rowOf(step);
    note(row);
    before_ = row.candidates;
    statusBefore_ = row.status;
    timeline_.add(std::move(row));
}

TimelineRow PageStory::rowOf(const PageStep& step)
{
    const StepReport& report = step.report;
    TimelineRow row;
    row.step = report.step;
    row.t = report.t;
    row.gap = report.gap;
    row.status = report.status;
    row.complete = report.complete;
    row.approximate = report.approximate;
    row.limit = report.limit;
    row.fault = report.fault;
    row.missing = report.missing;
    row.silent = report.silent;
    row.kept = report.explanations.size();
    row.dropped = report.dropped;
    row.candidates = candidatesOf(report);
    for (const auto& [component, probability] : report.components) {
        row.components.emplace_back(componentsByName_.find(component)->second, probability);
    }
    const monitor::Hypothesis& best = *step.answer.hypotheses.front();
    for (const plant::AtomIndex mode : best.modes) {
        row.modes.push_back(numberOf(plant_.atom(mode)));
    }
    row.channels = channelsOf(step);
    return row;
}

// An explanation that was there a step ago is not kept again.
std::vector<Believed> PageStory::candidatesOf(const StepReport& report)
{
    std::vector<Believed> candidates;
    for (std::size_t i = 0; i < shownCount(report, shown_); ++i) {
        const TrackedExplanation& one = report.explanations[i];
        const auto known = std::find_if(before_.begin(), before_.end(), [&](const Believed& other) {
            return sameExplanation(*other.explanation, one);
        });
        candidates.push_back({known != before_.end()
                                  ? known->explanation
                                  : std::make_shared<const TrackedExplanation>(one),
                              one.probability});
    }
    return candidates;
}

std::vector<ChannelState> PageStory::channelsOf(const PageStep& step)
{
    std::vector<ChannelState> states(channels_.size());
    const auto stateOf = [&](const Atom* value) -> ChannelState& {
        const std::size_t channel = channelOf(value->stateVar);
        states.resize(channels_.size());
        states[channel].read = numberOf(value);
        return states[channel];
    };
    for (const telemetry::Observation& one : step.step.observations) {
        ChannelState& state = stateOf(one.value);
        state.held = one.held;
        if (one.number) state.low = state.high = *one.number;
    }
    for (const Atom* given : step.step.givenCommands) {
        stateOf(given);
    }
    const monitor::Prediction& labels = step.answer.hypotheses.front()->labels.prediction();
    for (std::size_t i = 0; i < channels_.size(); ++i) {
        const plant::PlantVariable& variable = plant_.variable(variables_.at(channels_[i].variable));
        if (const auto value = labels.valueOf(variable))
            states[i].believed = numberOf(plant_.atom(*value));
    }
    return states;
}

std::size_t PageStory::channelOf(const StateVar* variable)
{
    const auto [found, isNew] = channelNumbers_.emplace(variable, channels_.size());
    if (isNew) channels_.push_back({variable, nullptr});
    return found->second;
}

// The conflicts of this step alone: those of earlier ones are there already.
void PageStory::explain(const PageStep& step)
{
    monitor::ConflictHistory history(1);
    history.add(step.input, step.answer);
    StepExplanation explanation = explainStep({plant_, model_, history, step.answer}, shown_);
    for (ExplainedConflict& conflict : explanation.conflicts) {
        conflicts_.add(std::move(conflict));
    }
}

void PageStory::note(const TimelineRow& row)
{
    const auto what = [](const Believed& believed) { return believed.explanation.get(); };
    const bool sameFirst = !before_.empty() && what(before_.front()) == what(row.candidates.front());
    if (statusBefore_ == row.status && sameFirst) return;
    events_.add({row.step, row.t, row.status, row.candidates.front()});
}

} // namespace report
