#include "report/PageStory.h"

#include "plant/Names.h"
#include "report/Alike.h"

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
    return a.lost == b.lost && a.misread == b.misread && a.unexplained == b.unexplained &&
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
        componentNumbers_.emplace(component, number);
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
    takeCandidates(row, report);
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
void PageStory::takeCandidates(TimelineRow& row, const StepReport& report) const
{
    for (const ExplanationGroup& group : shownGroups(report, shown_)) {
        row.groups.push_back(group.members.size());
        for (const std::size_t member : group.members) {
            const TrackedExplanation& one = report.explanations[member];
            const auto known =
                std::find_if(before_.begin(), before_.end(), [&](const Believed& other) {
                    return sameExplanation(*other.explanation, one);
                });
            row.candidates.push_back({known != before_.end()
                                          ? known->explanation
                                          : std::make_shared<const TrackedExplanation>(one),
                                      one.probability});
        }
    }
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
    const auto end = row.candidates.begin() + static_cast<std::ptrdiff_t>(row.groups.front());
    std::vector<Believed> first(row.candidates.begin(), end);
    const auto same = [](const Believed& a, const Believed& b) {
        return a.explanation == b.explanation;
    };
    const bool sameFirst = std::is_permutation(first.begin(), first.end(), firstBefore_.begin(),
                                               firstBefore_.end(), same);
    if (statusBefore_ != row.status || !sameFirst) {
        events_.add({row.step, row.t, row.status, first});
    }
    firstBefore_ = std::move(first);
}

} // namespace report
