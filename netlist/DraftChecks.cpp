#include "netlist/DraftChecks.h"

#include "text/NearestName.h"

#include <functional>
#include <utility>

namespace netlist {

namespace {

using Report = std::function<void(text::Place, std::size_t, text::Message)>;

// Looks for names near to one that is not known, up to a number of comparisons.
class Suggestions {
public:
    explicit Suggestions(const Draft& draft)
    {
        for (const DraftSignal& signal : draft.signals()) {
            if (signal.isDefined()) known_.push_back(signal.name);
        }
    }

    std::string hint(std::string_view name)
    {
        if (comparisons_ < known_.size()) return {};
        comparisons_ -= known_.size();
        return text::didYouMean(name, known_);
    }

private:
    std::vector<std::string_view> known_;
    std::size_t comparisons_ = 1'000'000;
};

void checkDefined(const Draft& draft, const Report& report)
{
    Suggestions suggestions(draft);
    for (const DraftSignal& signal : draft.signals()) {
        if (!signal.use || signal.isDefined()) continue;
        const bool isOutput = signal.output == signal.use;
        std::string message =
            (isOutput ? "OUTPUT " : "signal ") + text::quoted(signal.name) + " is not defined";
        if (signal.uses > (isOutput ? 0U : 1U)) {
            message += "; gates use it " + std::to_string(signal.uses) +
                       (signal.uses == 1 ? " time" : " times");
        }
        std::string hint = suggestions.hint(signal.name);
        if (hint.empty()) hint = "declare it INPUT, or add the gate that drives it";
        report(*signal.use, signal.name.size(),
               {std::move(message), "an INPUT or the output of a gate", std::move(hint)});
    }
}

// A long cycle is shown by its first and last gates.
std::string cycleText(const Circuit& circuit, const std::vector<DraftSignal>& signals,
                      const GateList& cycle)
{
    constexpr std::size_t shownAtEachEnd = 8;
    std::string text;
    for (std::size_t i = 0; i < cycle.size(); ++i) {
        if (cycle.size() > 2 * shownAtEachEnd + 1 && i == shownAtEachEnd) {
            const std::size_t hidden = cycle.size() - 2 * shownAtEachEnd;
            text += "(" + std::to_string(hidden) + " more) -> ";
            i += hidden;
        }
        const Gate& gate = circuit.gates[cycle[i]];
        text += text::quoted(signals[gate.output].name) + " (line " +
                std::to_string(gate.place.line) + ") -> ";
    }
    return text + text::quoted(signals[circuit.gates[cycle.front()].output].name);
}

void checkCycles(const Draft& draft, const Report& report)
{
    const Circuit& circuit = draft.circuit();
    const std::vector<std::size_t> drivers = draft.drivers();
    if (gateOrder(circuit, drivers).size() == circuit.gates.size()) return;
    for (const GateList& cycle : gateCycles(circuit, drivers)) {
        const Gate& first = circuit.gates[cycle.front()];
        const std::string_view name = draft.signals()[first.output].name;
        report(first.place, name.size(),
               {cycle.size() == 1 ? "gate " + text::quoted(name) + " has itself as an input"
                                  : "gates in a cycle: " + cycleText(circuit, draft.signals(), cycle),
                "gates that follow from the INPUTs, without a way back",
                "one of these inputs is wrong, or has to be cut and declared INPUT"});
    }
}

} // namespace

void checkDraft(const Draft& draft, const BenchText& text, text::Diagnostics& errors)
{
    const Report report = [&](text::Place place, std::size_t length, text::Message message) {
        errors.error(0, text.error(place, length, std::move(message)));
    };
    if (!draft.sawStatement()) {
        report({}, 0,
               {"there is no statement in the file", "INPUT(a), OUTPUT(a) and y = gate(a, b, ...)",
                "is it the right file, and complete?"});
        return;
    }
    checkDefined(draft, report);
    checkCycles(draft, report);
    if (draft.circuit().outputs.empty() && !draft.mayLackOutputs()) {
        report({}, 0,
               {"there is no OUTPUT",
                "one OUTPUT at least, since nothing of the circuit can be seen without",
                "add OUTPUT(name) for each signal that is seen outside"});
    }
}

} // namespace netlist
