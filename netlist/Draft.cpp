#include "netlist/Draft.h"

#include "text/NearestName.h"

#include <utility>

namespace netlist {

namespace {

text::Place placeOf(const Token& token, std::size_t line)
{
    return {line, token.offset + 1};
}

std::string lineText(const text::Place& place)
{
    return "line " + std::to_string(place.line);
}

// In any letter case.
bool isWord(std::string_view text, std::string_view word)
{
    return text::editDistance(text, word, 0) == 0;
}

} // namespace

void Draft::report(text::Place place, std::size_t length, text::Message message)
{
    errors_.error(0, text_.error(place, length, std::move(message)));
}

void Draft::add(const Statement& statement, std::size_t line)
{
    sawStatement_ = true;
    if (statement.isGate()) {
        addGate(statement, line);
    } else {
        declare(statement, line);
    }
}

// The line of a gate defines its output, whatever is wrong with the rest. Any other line may define every name on it.
void Draft::salvage(const LineError& error, std::size_t line)
{
    sawStatement_ = true;
    if (error.isWhole) {
        add(error.read, line);
    } else if (error.sawEquals) {
        signals_[signal(error.read.head.text)].excused = true;
        return;
    }
    mayLackOutputs_ = true;
    for (const Token& mention : error.mentions) {
        if (!error.isWhole || mention.offset >= error.offset) {
            signals_[signal(mention.text)].excused = true;
        }
    }
}

SignalIndex Draft::signal(std::string_view name)
{
    const auto [entry, isNew] = byName_.try_emplace(name, signals_.size());
    if (isNew) signals_.emplace_back().name = name;
    return entry->second;
}

void Draft::use(const Token& token, std::size_t line, bool byGate)
{
    DraftSignal& used = signals_[signal(token.text)];
    if (!used.use) used.use = placeOf(token, line);
    if (byGate) ++used.uses;
}

void Draft::declare(const Statement& statement, std::size_t line)
{
    const bool input = isWord(statement.head.text, "INPUT");
    if (!input && !isWord(statement.head.text, "OUTPUT")) {
        unknownDeclaration(statement, line);
        return;
    }
    if (statement.arguments.size() > 1) {
        const std::string word = input ? "INPUT" : "OUTPUT";
        const Token& second = statement.arguments[1];
        report(placeOf(second, line), second.text.size(),
               {word + " declares one signal, found " + std::to_string(statement.arguments.size()),
                "')' after the first", "write a line " + word + "(name) for each signal"});
    }
    for (const Token& name : statement.arguments) {
        if (input) {
            declareInput(name, placeOf(name, line));
        } else {
            declareOutput(name, placeOf(name, line));
        }
    }
}

void Draft::unknownDeclaration(const Statement& statement, std::size_t line)
{
    const Token& head = statement.head;
    if (gateKind(head.text)) {
        report(placeOf(head, line), head.text.size(),
               {"gate " + text::quoted(head.text) + " has no output", "y = gate(a, b, ...)",
                "name the signal that the gate drives, and '=', before it"});
        for (const Token& argument : statement.arguments) {
            use(argument, line, true);
        }
        return;
    }
    const std::string hint = text::didYouMean(head.text, {"INPUT", "OUTPUT"});
    report(placeOf(head, line), head.text.size(),
           {"unknown statement " + text::quoted(head.text),
            "INPUT(a), OUTPUT(a) or y = gate(a, b, ...)",
            hint.empty() ? "only INPUTs and OUTPUTs are declared" : hint});
    mayLackOutputs_ = true;
    for (const Token& argument : statement.arguments) {
        signals_[signal(argument.text)].excused = true;
    }
}

void Draft::declareInput(const Token& name, text::Place place)
{
    const SignalIndex index = signal(name.text);
    DraftSignal& declared = signals_[index];
    if (declared.input) {
        report(place, name.text.size(),
               {"INPUT " + text::quoted(name.text) + " is declared twice, first in " +
                    lineText(*declared.input),
                "each INPUT once", "remove one of the two, or rename it"});
    } else if (declared.driver) {
        report(place, name.text.size(),
               {text::quoted(name.text) + " is declared INPUT, but the gate in " +
                    lineText(*declared.driver) + " drives it",
                "an INPUT that no gate drives",
                "remove this INPUT, or rename the output of the gate"});
        declared.input = place;
    } else {
        declared.input = place;
        circuit_.inputs.push_back(index);
    }
}

void Draft::declareOutput(const Token& name, text::Place place)
{
    use(name, place.line, false);
    const SignalIndex index = signal(name.text);
    DraftSignal& declared = signals_[index];
    if (declared.output) {
        report(place, name.text.size(),
               {"OUTPUT " + text::quoted(name.text) + " is declared twice, first in " +
                    lineText(*declared.output),
                "each OUTPUT once", "remove one of the two, or rename it"});
        return;
    }
    declared.output = place;
    circuit_.outputs.push_back(index);
}

void Draft::addGate(const Statement& statement, std::size_t line)
{
    const text::Place place = placeOf(statement.head, line);
    const SignalIndex output = signal(statement.head.text);
    const bool isFirst = !signals_[output].driver;
    drive(output, statement.head, place);
    for (const Token& argument : statement.arguments) {
        use(argument, line, true);
    }
    const std::optional<GateKind> kind = gateKind(statement.kind.text);
    if (!kind) {
        unknownKind(statement.kind, line);
        return;
    }
    checkArity(*kind, statement, line);
    Gate& gate = circuit_.gates.emplace_back();
    gate.kind = *kind;
    gate.output = output;
    gate.place = place;
    for (const Token& argument : statement.arguments) {
        gate.inputs.push_back(signal(argument.text));
    }
    if (isFirst) signals_[output].gate = circuit_.gates.size() - 1;
}

void Draft::checkArity(GateKind kind, const Statement& statement, std::size_t line)
{
    if (!isUnary(kind) || statement.arguments.size() == 1) return;
    const Token& second = statement.arguments[1];
    report(placeOf(second, line), second.text.size(),
           {std::string(gateKindName(kind)) + " has one input, found " +
                std::to_string(statement.arguments.size()),
            "')' after the first",
            kind == GateKind::notGate ? "of several inputs, NAND and NOR are the inverting gates"
                                      : "of several inputs, AND and OR are the gates"});
}

void Draft::unknownKind(const Token& kind, std::size_t line)
{
    std::vector<std::string_view> names{"BUFF"};
    for (const auto& [known, name] : gateKinds) {
        names.push_back(name);
    }
    std::string hint = text::didYouMean(kind.text, names);
    if (hint.empty()) hint = "build it of gates of these kinds";
    for (const std::string_view stateful : {"DFF", "DFFSR", "LATCH"}) {
        if (isWord(kind.text, stateful)) {
            hint = "circuits with a memory are not read: cut them at their flip-flops, whose "
                   "outputs become "
                   "INPUTs and whose inputs become OUTPUTs";
        }
    }
    report(placeOf(kind, line), kind.text.size(),
           {"unknown kind of gate " + text::quoted(kind.text), gateKindNames(), hint});
}

void Draft::drive(SignalIndex driven, const Token& name, text::Place place)
{
    DraftSignal& signal = signals_[driven];
    if (signal.driver) {
        report(place, name.text.size(),
               {text::quoted(name.text) + " is driven twice, first by the gate in " +
                    lineText(*signal.driver),
                "one gate for each signal", "remove one of the two gates, or rename its output"});
        return;
    }
    if (signal.input) {
        report(place, name.text.size(),
               {text::quoted(name.text) + " is driven by a gate, but declared INPUT in " +
                    lineText(*signal.input),
                "a signal that is no INPUT", "remove the INPUT, or rename the output of the gate"});
    }
    signal.driver = place;
}

std::vector<std::size_t> Draft::drivers() const
{
    std::vector<std::size_t> result;
    result.reserve(signals_.size());
    for (const DraftSignal& signal : signals_) {
        result.push_back(signal.input ? noGate : signal.gate);
    }
    return result;
}

Circuit Draft::finish()
{
    circuit_.order = gateOrder(circuit_, drivers());
    circuit_.signals.reserve(signals_.size());
    circuit_.signalsByName.reserve(signals_.size());
    for (const DraftSignal& signal : signals_) {
        circuit_.signalsByName.emplace(signal.name, circuit_.signals.size());
        circuit_.signals.emplace_back(signal.name);
    }
    return std::move(circuit_);
}

} // namespace netlist
