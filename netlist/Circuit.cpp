#include "netlist/Circuit.h"

#include "text/Wording.h"

namespace netlist {

std::string_view gateKindName(GateKind kind)
{
    for (const auto& [known, name] : gateKinds) {
        if (known == kind) return name;
    }
    return {};
}

std::optional<GateKind> gateKind(std::string_view name)
{
    std::string capitals(name.substr(0, 5));
    for (char& letter : capitals) {
        if (letter >= 'a' && letter <= 'z') letter = static_cast<char>(letter - 'a' + 'A');
    }
    if (capitals == "BUFF") return GateKind::bufGate;
    for (const auto& [kind, known] : gateKinds) {
        if (known == capitals) return kind;
    }
    return {};
}

std::string gateKindNames()
{
    std::vector<std::string_view> names;
    for (const auto& [kind, name] : gateKinds) {
        names.push_back(name);
    }
    return text::enumerated(names);
}

bool isUnary(GateKind kind)
{
    return kind == GateKind::notGate || kind == GateKind::bufGate;
}

bool isInverting(GateKind kind)
{
    return kind == GateKind::nandGate || kind == GateKind::norGate || kind == GateKind::xnorGate ||
           kind == GateKind::notGate;
}

std::optional<SignalIndex> Circuit::signal(const std::string& signalName) const
{
    const auto found = signalsByName.find(signalName);
    if (found == signalsByName.end()) return {};
    return found->second;
}

} // namespace netlist
