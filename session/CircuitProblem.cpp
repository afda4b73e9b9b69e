#include "session/CircuitProblem.h"

#include "text/NearestName.h"
#include "text/Wording.h"

#include <algorithm>
#include <fmt/format.h>

namespace session {

namespace {

using netlist::SignalIndex;

const std::vector<SignalIndex>& declared(const netlist::Circuit& circuit, Side side)
{
    return side == Side::input ? circuit.inputs : circuit.outputs;
}

bool isDeclared(const netlist::Circuit& circuit, Side side, SignalIndex signal)
{
    const std::vector<SignalIndex>& all = declared(circuit, side);
    return std::find(all.begin(), all.end(), signal) != all.end();
}

std::string nameOf(Side side)
{
    return side == Side::input ? "input" : "output";
}

std::vector<std::string_view> namesOf(const netlist::Circuit& circuit,
                                      const std::vector<SignalIndex>& signals)
{
    std::vector<std::string_view> names;
    for (const SignalIndex signal : signals) {
        names.emplace_back(circuit.signals[signal]);
    }
    return names;
}

// The names of some signals: all of a few, else the first ones and how many there are.
std::string some(const netlist::Circuit& circuit, const std::vector<SignalIndex>& signals)
{
    constexpr std::size_t shown = 8;
    return text::enumerated(namesOf(circuit, signals), shown, text::Rest::total);
}

} // namespace

CircuitProblemBuilder::CircuitProblemBuilder(const netlist::Circuit& circuit) : circuit_(circuit)
{
    for (auto& values : values_) {
        values.resize(circuit.signals.size());
    }
}

std::optional<text::Message> CircuitProblemBuilder::add(Side side, std::string_view signal,
                                                        bool value)
{
    const std::vector<SignalIndex>& own = declared(circuit_, side);
    const Side otherSide = side == Side::input ? Side::output : Side::input;
    const std::string expected =
        fmt::format("an {} of {}: {}", nameOf(side), circuit_.name, some(circuit_, own));
    const std::optional<SignalIndex> index = circuit_.signal(std::string(signal));
    if (!index) {
        return text::Message{fmt::format("{} has no signal {}", circuit_.name, text::quoted(signal)),
                             expected, text::didYouMean(signal, namesOf(circuit_, own))};
    }
    if (!isDeclared(circuit_, side, *index)) {
        const bool other = isDeclared(circuit_, otherSide, *index);
        return text::Message{
            fmt::format("{} is {}, not an {}", text::quoted(signal),
                        other ? "an " + nameOf(otherSide) : "a signal inside the circuit",
                        nameOf(side)),
            expected, other ? fmt::format("give it among the {}s", nameOf(otherSide)) : ""};
    }
    std::optional<bool>& slot = values_[static_cast<std::size_t>(side)][*index];
    if (slot) {
        return text::Message{fmt::format("{} {} is given twice", nameOf(side), text::quoted(signal)),
                             fmt::format("each {} once", nameOf(side)), ""};
    }
    slot = value;
    return std::nullopt;
}

std::optional<text::Message> CircuitProblemBuilder::missing(Side side) const
{
    const std::vector<std::optional<bool>>& values = values_[static_cast<std::size_t>(side)];
    std::vector<SignalIndex> absent;
    for (const SignalIndex signal : declared(circuit_, side)) {
        if (!values[signal]) absent.push_back(signal);
    }
    if (side == Side::output) {
        if (absent.size() < circuit_.outputs.size()) return std::nullopt;
        return text::Message{"no output is given", "one output at least: " + some(circuit_, absent),
                             ""};
    }
    if (absent.empty()) return std::nullopt;
    const std::string names = text::enumerated(namesOf(circuit_, absent), absent.size());
    return text::Message{
        fmt::format("{} of {} {} missing: {}", absent.size() == 1 ? "input" : "inputs",
                    circuit_.name, absent.size() == 1 ? "is" : "are", names),
        fmt::format("a value for every input ({} of {} given)",
                    circuit_.inputs.size() - absent.size(), circuit_.inputs.size()),
        ""};
}

CircuitProblem CircuitProblemBuilder::finish() const
{
    CircuitProblem problem;
    const auto gather = [&](Side side, std::vector<Reading>& readings) {
        for (const SignalIndex signal : declared(circuit_, side)) {
            const std::optional<bool>& value = values_[static_cast<std::size_t>(side)][signal];
            if (value) readings.emplace_back(signal, *value);
        }
    };
    gather(Side::input, problem.inputs);
    gather(Side::output, problem.outputs);
    return problem;
}

} // namespace session
