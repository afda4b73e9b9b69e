#include "report/Tracking.h"

#include "plant/Names.h"
#include "report/Text.h"
#include "text/Wording.h"

#include <algorithm>
#include <fmt/format.h>
#include <set>

namespace report {

namespace {

std::vector<std::string> identifiers(const plant::Plant& plant,
                                     const std::vector<plant::AtomIndex>& atoms)
{
    std::vector<std::string> ids;
    ids.reserve(atoms.size());
    for (const plant::AtomIndex atom : atoms) {
        ids.push_back(plant.atom(atom)->id);
    }
    return ids;
}

TrackedExplanation explanation(const plant::Plant& plant, const monitor::Hypothesis& hypothesis)
{
    TrackedExplanation result;
    result.faults = hypothesis.faultCount();
    result.modes = deviatingModes(plant, hypothesis);
    for (const plant::AtomIndex lost : hypothesis.lost) {
        const bool isCommand = plant.variable(plant.variableOf(lost)).isCommand;
        (isCommand ? result.lost : result.misread).push_back(plant.atom(lost)->id);
    }
    result.unexplained = identifiers(plant, hypothesis.unexplained);
    return result;
}

std::string withSince(const DeviatingMode& mode)
{
    return fmt::format("{}{}={}{} {}", mode.variable, unbreakable, unbreakable, mode.value,
                       sinceInWords(mode.since));
}

} // namespace

std::vector<DeviatingMode> deviatingModes(const plant::Plant& plant,
                                          const monitor::Hypothesis& hypothesis)
{
    std::vector<DeviatingMode> modes;
    for (const auto& [variable, since] : hypothesis.since) {
        modes.push_back({plant::nameOf(*plant.variable(variable).variable),
                         plant.atom(since.value)->value, since.step});
    }
    std::sort(modes.begin(), modes.end(), [](const DeviatingMode& a, const DeviatingMode& b) {
        return a.variable < b.variable;
    });
    return modes;
}

StepReport stepReport(const plant::Plant& plant, const monitor::TrackAnswer& answer)
{
    StepReport report;
    report.step = answer.step;
    report.t = answer.t;
    report.status = answer.status;
    report.complete = answer.complete;
    report.limit = answer.limit;
    report.approximate = answer.approximate;
    report.dropped = answer.dropped;
    report.missing = answer.missing;
    report.silent = answer.silent;
    report.wentBack = answer.wentBack;
    report.work = answer.work;
    for (std::size_t i = 0; i < answer.hypotheses.size(); ++i) {
        TrackedExplanation one = explanation(plant, *answer.hypotheses[i]);
        one.probability = answer.probabilities[i];
        std::set<std::string> components;
        for (const DeviatingMode& mode : one.modes) {
            report.marginals[mode.variable][mode.value] += one.probability;
            components.insert(mode.variable.substr(0, mode.variable.rfind('.')));
        }
        for (const std::string& component : components) {
            report.components[component] += one.probability;
        }
        report.fault += one.modes.empty() ? 0.0 : one.probability;
        report.explanations.push_back(std::move(one));
    }
    return report;
}

std::string sinceInWords(std::size_t step)
{
    return step == 0 ? "from the beginning"
                     : fmt::format("since{}step{}{}", unbreakable, unbreakable, step);
}

std::string inWords(const TrackedExplanation& explanation, const std::string& first)
{
    std::vector<std::string> items;
    if (!first.empty()) {
        items.push_back(first);
    }
    for (const DeviatingMode& mode : explanation.modes) {
        items.push_back(withSince(mode));
    }
    for (const std::string& command : explanation.lost) {
        items.push_back(command + " did not arrive");
    }
    for (const std::string& reading : explanation.misread) {
        items.push_back(reading + " was misread");
    }
    std::string text =
        items.empty() ? "nothing is wrong" : fmt::format("{}", fmt::join(items, "; "));
    if (!explanation.unexplained.empty()) {
        text += "; does not explain " + text::listed(explanation.unexplained);
    }
    return text;
}

std::size_t shownCount(const StepReport& report, const Shown& shown)
{
    constexpr double rounding = 1e-12;
    const std::size_t all = report.explanations.size();
    const std::size_t most = shown.most == 0 ? all : std::min(shown.most, all);
    double mass = 0.0;
    std::size_t count = 0;
    while (count < most && (count == 0 || mass < shown.mass - rounding)) {
        mass += report.explanations[count++].probability;
    }
    return count;
}

} // namespace report
