#include "tests/session/FollowedText.h"

#include "plant/Names.h"
#include "report/Tracking.h"
#include "telemetry/StepReader.h"
#include "tests/support/SimulatedRun.h"

#include <cmath>
#include <fmt/format.h>
#include <stdexcept>

namespace written {

namespace {

constexpr double tolerance = 1e-9;

// What is given from outside changes now and then.
void drawInputs(const plant::Plant& plant, const plant::Bindings& bindings, Random& random,
                simulate::SimulationInput& input)
{
    for (const plant::ChannelBinding& binding : bindings.channels) {
        if (binding.input && random.chance(25)) {
            input.observations.push_back(plant.indexOf(random.pick(*binding.variable->atomLinks)));
        }
    }
}

// Some readings are missing, and now and then all of a step.
SeenStep seen(const plant::Plant& plant, const std::vector<plant::AtomIndex>& commands,
              const std::vector<plant::AtomIndex>& observations, Random& random)
{
    SeenStep seen;
    for (const plant::AtomIndex command : commands) {
        seen.commands[plant::nameOf(*plant.atom(command)->stateVar)] = plant.atom(command)->value;
    }
    const bool silent = random.chance(5);
    for (const plant::AtomIndex observed : observations) {
        if (!silent && !random.chance(15)) {
            seen.observations[plant::nameOf(*plant.atom(observed)->stateVar)] =
                plant.atom(observed)->value;
        }
    }
    return seen;
}

Said said(const report::StepReport& report)
{
    Said said{monitor::name(report.status),
              report.complete,
              report.approximate,
              report.dropped,
              report.fault,
              {},
              report.components,
              {}};
    for (const report::TrackedExplanation& explanation : report.explanations) {
        Said::Hypothesis hypothesis{fmt::format("rank {}", explanation.faults)};
        for (const report::DeviatingMode& mode : explanation.modes) {
            hypothesis.insert(fmt::format("{}={} since {}", mode.variable, mode.value, mode.since));
        }
        for (const std::string& lost : explanation.lost) {
            hypothesis.insert("lost " + lost);
        }
        for (const std::string& reading : explanation.misread) {
            hypothesis.insert("misread " + reading);
        }
        for (const std::string& reading : explanation.unexplained) {
            hypothesis.insert("unexplained " + reading);
        }
        said.hypotheses[hypothesis] += explanation.probability;
    }
    for (const auto& [variable, values] : report.marginals) {
        for (const auto& [value, probability] : values) {
            said.marginals[variable + '=' + value] = probability;
        }
    }
    return said;
}

std::string objectJson(const std::map<std::string, std::string>& values, const Names& names)
{
    std::vector<std::string> members;
    for (const auto& [variable, value] : values) {
        members.push_back(
            fmt::format(R"("{}": "{}")", renamed(variable, names), renamed(value, names)));
    }
    return fmt::format("{{{}}}", fmt::join(members, ", "));
}

std::string text(const std::string& name)
{
    return name;
}

std::string text(const Said::Hypothesis& hypothesis)
{
    return fmt::format("[{}]", fmt::join(hypothesis, ", "));
}

template <class Key>
void compare(const char* what, const std::map<Key, double>& expected,
             const std::map<Key, double>& said, std::string& differences)
{
    const auto write = [&](const Key& key, double one, double other) {
        differences += fmt::format("  {} {}: {} became {}\n", what, text(key), one, other);
    };
    for (const auto& [key, probability] : expected) {
        const auto found = said.find(key);
        const double now = found == said.end() ? 0.0 : found->second;
        if (found == said.end() || std::abs(now - probability) > tolerance) {
            write(key, probability, now);
        }
    }
    for (const auto& [key, probability] : said) {
        if (!expected.contains(key)) write(key, 0.0, probability);
    }
}

} // namespace

std::vector<SeenStep> simulatedSteps(const language::ReadResult& read, int steps, Random& random)
{
    const plant::Plant plant(*read.model);
    std::vector<simulate::SimulationInput> inputs =
        simulate::randomCommands(plant, static_cast<std::size_t>(steps), random.next(), 0.3);
    for (simulate::SimulationInput& input : inputs) {
        drawInputs(plant, read.bindings, random, input);
    }
    simulate::injectRandomFaults(plant, read.bindings, inputs, random.below(3), random.next());
    const simulate::SimulatedRun run =
        simulate::simulate(plant, read.bindings, inputs, {random.next(), {}});
    std::vector<SeenStep> result;
    for (std::size_t i = 0; i < run.steps.size(); ++i) {
        result.push_back(seen(plant, inputs[i].commands, run.steps[i].observations, random));
    }
    return result;
}

std::vector<std::string> telemetryLines(const std::vector<SeenStep>& steps, const Names& names)
{
    std::vector<std::string> lines;
    for (const SeenStep& step : steps) {
        lines.push_back(fmt::format(R"({{"t": {}, "commands": {}, "observations": {}}})",
                                    lines.size() + 1, objectJson(step.commands, names),
                                    objectJson(step.observations, names)));
    }
    return lines;
}

std::vector<Said> followed(language::ReadResult read, const std::vector<SeenStep>& steps,
                           const session::Settings& settings, const Names& names)
{
    session::Session session = session::Session::open(std::move(read), settings);
    telemetry::StepReader reader(
        std::make_unique<telemetry::LineVector>(telemetryLines(steps, names)), session.model(),
        session.bindings());
    std::vector<Said> result;
    for (auto next = reader.next(); !std::holds_alternative<telemetry::End>(next);
         next = reader.next()) {
        if (const auto* mistake = std::get_if<telemetry::Mistake>(&next)) {
            throw std::runtime_error(mistake->error.format());
        }
        result.push_back(said(
            report::stepReport(session.plant(), session.advance(std::get<telemetry::Step>(next)))));
    }
    return result;
}

Said renamed(const Said& said, const Names& names)
{
    Said result = said;
    result.hypotheses.clear();
    result.components.clear();
    result.marginals.clear();
    for (const auto& [hypothesis, probability] : said.hypotheses) {
        Said::Hypothesis now;
        for (const std::string& item : hypothesis) {
            now.insert(renamed(item, names));
        }
        result.hypotheses[now] = probability;
    }
    for (const auto& [component, probability] : said.components) {
        result.components[renamed(component, names)] = probability;
    }
    for (const auto& [value, probability] : said.marginals) {
        result.marginals[renamed(value, names)] = probability;
    }
    return result;
}

std::string difference(const Said& expected, const Said& said)
{
    std::string differences;
    const auto compareOne = [&](const char* what, const auto& one, const auto& other) {
        if (one != other) differences += fmt::format("  {}: {} became {}\n", what, one, other);
    };
    compareOne("status", expected.status, said.status);
    compareOne("complete", expected.complete, said.complete);
    compareOne("approximate", expected.approximate, said.approximate);
    compareOne("dropped", expected.dropped, said.dropped);
    if (std::abs(expected.fault - said.fault) > tolerance) {
        compareOne("fault", expected.fault, said.fault);
    }
    compare("hypothesis", expected.hypotheses, said.hypotheses, differences);
    compare("component", expected.components, said.components, differences);
    compare("marginal", expected.marginals, said.marginals, differences);
    return differences;
}

} // namespace written
