#include "tests/support/HandMade.h"

#include <sstream>

using plant::VariableKind;

StateVar* HandMade::variable(const std::string& id, VariableKind kind,
                             const std::vector<std::string>& values)
{
    const std::string name = id.substr(0, id.find('.'));
    Comp*& comp = comps_[name];
    if (!comp) {
        comp = builder_.component(name);
    }
    std::vector<plant::ValueDeclaration> declared;
    for (const std::string& value : values) {
        const bool fault = value.back() == '!';
        declared.push_back({fault ? value.substr(0, value.size() - 1) : value, fault});
    }
    const std::optional<std::size_t> initial =
        kind == VariableKind::mode ? std::optional<std::size_t>(0) : std::nullopt;
    StateVar* made = builder_.variable(comp, id.substr(id.find('.') + 1), kind, declared, initial);
    for (Atom* atom : *made->atomLinks) {
        atoms_[atom->id] = atom;
    }
    return made;
}

StateVar* HandMade::mode(const std::string& id, const std::vector<std::string>& values)
{
    return variable(id, VariableKind::mode, values);
}

StateVar* HandMade::condition(const std::string& id, const std::vector<std::string>& values)
{
    return variable(id, VariableKind::condition, values);
}

StateVar* HandMade::command(const std::string& id, const std::vector<std::string>& values)
{
    return variable(id, VariableKind::command, values);
}

// `plain` is the key of a literal without "!".
std::vector<std::pair<bool, Atom*>> HandMade::literals(const std::string& text, bool plain) const
{
    std::vector<std::pair<bool, Atom*>> result;
    std::istringstream words(text);
    for (std::string word; words >> word;) {
        if (word != "|") {
            const bool marked = word.front() == '!';
            result.emplace_back(marked != plain, atom(marked ? word.substr(1) : word));
        }
    }
    return result;
}

bool HandMade::law(const std::string& text)
{
    std::vector<plant::Literal> clause;
    for (const auto& [negated, atom] : literals(text, false)) {
        clause.push_back({negated, atom});
    }
    return builder_.law(clause.empty() ? nullptr : clause.front().atom->getVarComp(), clause);
}

void HandMade::nominal(const std::string& from, const std::string& to, double proba,
                       const std::string& guard)
{
    builder_.nominal(atom(from), atom(to), literals(guard, true), proba);
}

void HandMade::fault(const std::string& from, const std::string& to, double proba,
                     const std::string& guard)
{
    builder_.fault(atom(from), atom(to), proba, literals(guard, true));
}

void HandMade::repair(const std::string& from, const std::string& to, double proba,
                      const std::string& guard)
{
    builder_.repair(atom(from), atom(to), proba, literals(guard, true));
}

void HandMade::follower(const std::string& name, const std::string& input)
{
    mode(name + ".mode", {"ok", "broken!"});
    condition(name + ".out", {"0", "1"});
    for (const std::string value : {"0", "1"}) {
        law("!" + name + ".mode=ok | !" + input + "=" + value + " | " + name + ".out=" + value);
    }
    law("!" + name + ".mode=broken | " + name + ".out=0");
    fault(name + ".mode=ok", name + ".mode=broken", 1.0 / 64);
}

std::unique_ptr<ActivePlant> HandMade::activate()
{
    return std::make_unique<ActivePlant>(builder_.build());
}

monitor::StepInput input(const ActivePlant& active, const std::vector<std::string>& commands,
                         const std::vector<std::string>& observations)
{
    monitor::StepInput result;
    for (const std::string& id : commands) {
        result.commands.push_back(active.index(id));
    }
    for (const std::string& id : observations) {
        result.observations.push_back(active.index(id));
    }
    return result;
}
