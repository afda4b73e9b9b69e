#include "tests/session/DrawnFollower.h"

#include <algorithm>
#include <iterator>
#include <set>

using plant::AtomIndex;

namespace {

bool leavesDoubt(const report::StepReport& report)
{
    return std::any_of(report.components.begin(), report.components.end(),
                       [](const auto& one) { return one.second > 0.01 && one.second < 0.99; });
}

bool contains(const std::vector<plant::VariableIndex>& variables, plant::VariableIndex variable)
{
    return std::find(variables.begin(), variables.end(), variable) != variables.end();
}

} // namespace

DrawnFollower::DrawnFollower(language::ReadResult read, Outcome& outcome)
    : session_(session::Session::open(std::move(read))), beginning_(session_.checkpoint()),
      successors_(session_.engine(), session_.plant()), outcome_(outcome)
{
}

void DrawnFollower::run(std::uint64_t seed, std::size_t steps)
{
    session_.resume(beginning_);
    truth_ = monitor::initialHypothesis(session_.plant());
    DrawnRun run(session_.plant(), session_.bindings(), seed);
    const std::size_t drawn = 1 + simulate::Chance(seed + 3).below(steps);
    bool doubted = false;
    ++outcome_.runs;
    for (std::size_t number = 1; number <= steps; ++number) {
        const std::optional<DrawnStep> happened = run.next();
        if (!happened) return;
        const report::StepReport report = advance(*happened, number);
        ++outcome_.steps;
        outcome_.inconsistent += report.status == monitor::TrackStatus::inconsistent ? 1 : 0;
        if (!followTruth(*happened)) {
            ++outcome_.impossible;
            return;
        }
        const bool first = !doubted && leavesDoubt(report);
        doubted = doubted || first;
        if (first || number == drawn) compare(report);
    }
}

report::StepReport DrawnFollower::advance(const DrawnStep& happened, std::size_t number)
{
    const plant::Plant& plant = session_.plant();
    telemetry::Step step;
    step.number = number;
    step.t = static_cast<double>(number) * session_.bindings().stepSeconds;
    for (const plant::PlantVariable& variable : plant.variables()) {
        if (!variable.isCommand) continue;
        Atom* value = plant.atom(variable.values.front());
        for (const AtomIndex given : happened.commands) {
            if (plant.atom(given)->stateVar != variable.variable) continue;
            value = plant.atom(given);
            step.givenCommands.push_back(value);
        }
        step.commands.push_back(value);
    }
    for (const AtomIndex observed : happened.observations) {
        step.observations.push_back({plant.atom(observed), false});
    }
    return report::stepReport(plant, session_.advance(step));
}

// False where the monitor takes what happened to be impossible.
bool DrawnFollower::followTruth(const DrawnStep& happened)
{
    const monitor::TrackInput& input = session_.input();
    std::vector<monitor::Loss> lost;
    std::copy_if(input.lossy.begin(), input.lossy.end(), std::back_inserter(lost),
                 [&](const monitor::Loss& command) {
                     return contains(happened.lost, session_.plant().variableOf(command.given));
                 });
    monitor::Deviations deviations;
    const monitor::StepFrame frame = successors_.frame(*truth_, input, lost);
    for (std::size_t i = 0; i < frame.modes.size(); ++i) {
        if (!frame.modes[i].option(happened.modes[i])) return false;
        if (happened.modes[i] != frame.modes[i].predicted) deviations.push_back(happened.modes[i]);
    }
    std::sort(deviations.begin(), deviations.end());
    truth_ = successors_.deviating(*truth_, input, deviations, lost);
    return truth_.has_value();
}

void DrawnFollower::compare(const report::StepReport& report)
{
    std::set<std::string> components;
    std::set<std::string> values;
    for (const report::DeviatingMode& mode : report::deviatingModes(session_.plant(), *truth_)) {
        components.insert(mode.variable.substr(0, mode.variable.rfind('.')));
        values.insert(mode.variable + '=' + mode.value);
    }
    if (report.fault <= report.silent) {
        ++outcome_.sound;
        outcome_.silent += components.empty() ? 0 : 1;
    } else {
        outcome_.fault.add(report.fault, !components.empty());
    }
    for (const auto& [component, probability] : report.components) {
        if (probability > report.silent) {
            outcome_.components.add(probability, components.contains(component));
        }
    }
    for (const auto& [variable, ofValues] : report.marginals) {
        for (const auto& [value, probability] : ofValues) {
            if (probability > report.silent) {
                outcome_.values.add(probability, values.contains(variable + '=' + value));
            }
        }
    }
}
