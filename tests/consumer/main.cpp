// A small embedder: a lamp on a battery, a light that should be on and is not. Prints what explains it.
//
// The program owns the model: it makes the objects, enters them in the registry, and releases them at the
// end. The engine reads them and labels one state per time step.
#include "engine/itms.h"

#include <algorithm>
#include <iomanip>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

namespace {

/// Makes model objects and keeps them until the end of the program.
class Model {
public:
    ~Model() { DataManager::reset(); }

    Comp* comp(const std::string& name)
    {
        Comp* made = comps_.emplace_back(std::make_unique<Comp>()).get();
        made->name = name;
        (*DataManager::active_comps)[made->name.c_str()] = made;
        return made;
    }

    /// A variable whose first value is the initial one; exactly one of its values holds.
    std::vector<Atom*> variable(Comp* comp, const std::string& type, const std::string& name,
                                const std::vector<std::string>& values)
    {
        StateVar* made = variables_.emplace_back(std::make_unique<StateVar>()).get();
        made->type = type;
        made->name = name;
        made->comp = comp;
        comp->stateVars->push_back(made);
        for (const std::string& value : values) {
            Atom* atom = atoms_.emplace_back(std::make_unique<Atom>()).get();
            atom->stateVar = made;
            atom->value = value;
            atom->id = comp->name + "." + name + "=" + value;
            made->atomLinks->push_back(atom);
        }
        const std::vector<Atom*> links = *made->atomLinks;
        made->initial = links.front();
        std::vector<std::pair<bool, Atom*>> any;
        for (std::size_t i = 0; i < links.size(); ++i) {
            any.emplace_back(false, links[i]);
            for (std::size_t j = i + 1; j < links.size(); ++j) {
                made->clauses->push_back(clause({{true, links[i]}, {true, links[j]}}));
            }
        }
        made->clauses->push_back(clause(any));
        return links;
    }

    /// A law of the model; a literal that is true is negated.
    void law(const std::vector<std::pair<bool, Atom*>>& literals)
    {
        DataManager::cls->push_back(clause(literals));
    }

    void transition(const std::string& name, const std::string& type, Atom* to, double probability)
    {
        Transition* made = transitions_.emplace_back(std::make_unique<Transition>()).get();
        made->name = name;
        made->type = type;
        made->stateVar = to->stateVar;
        made->atom = to;
        made->proba = probability;
        made->idle = type != "Fail";
        made->formula = formulas_.emplace_back(std::make_unique<StateFormula>()).get();
        made->formula->op = "and";
        made->formula->atoms = new SignedAtoms{{true, to}};
        to->fail = type == "Fail";
        to->transitions->push_back(made);
        to->stateVar->comp->transitions->push_back(made);
    }

private:
    Clause* clause(const std::vector<std::pair<bool, Atom*>>& literals)
    {
        Clause* made = clauses_.emplace_back(std::make_unique<Clause>()).get();
        for (const auto& [negated, atom] : literals) {
            made->literals->insert({negated, atom});
            atom->clauses->push_back(made);
        }
        return made;
    }

    std::vector<std::unique_ptr<Comp>> comps_;
    std::vector<std::unique_ptr<StateVar>> variables_;
    std::vector<std::unique_ptr<Atom>> atoms_;
    std::vector<std::unique_ptr<Clause>> clauses_;
    std::vector<std::unique_ptr<StateFormula>> formulas_;
    std::vector<std::unique_ptr<Transition>> transitions_;
};

/// The faults that hold in the state, in the order of the alphabet.
std::string faultsOf(const State& state)
{
    std::vector<std::string> faults;
    for (const auto& [id, element] : *state.elements) {
        if (element && element->atom->fail && element->evalTrajEl()) {
            faults.push_back(element->atom->id);
        }
    }
    std::sort(faults.begin(), faults.end());
    std::string text;
    for (const std::string& fault : faults) {
        text += (text.empty() ? "" : ", ") + fault;
    }
    return text;
}

} // namespace

int main()
{
    Model model;
    Comp* battery = model.comp("battery");
    Comp* lamp = model.comp("lamp");
    lamp->importedComps->push_back(battery);
    const auto charge = model.variable(battery, "Mode", "charge", {"full", "empty"});
    const auto bulb = model.variable(lamp, "Mode", "bulb", {"whole", "blown"});
    const auto light = model.variable(lamp, "Cond", "light", {"on", "off"});
    model.law({{true, charge[0]}, {true, bulb[0]}, {false, light[0]}}); // full and whole: on
    model.law({{true, charge[1]}, {false, light[1]}});                  // empty: off
    model.law({{true, bulb[1]}, {false, light[1]}});                    // blown: off
    model.transition("Nominal", "", charge[0], 0.99);
    model.transition("runs out", "Fail", charge[1], 0.01);
    model.transition("Nominal", "", bulb[0], 0.999);
    model.transition("blows", "Fail", bulb[1], 0.001);

    // The engine traces to std::cout unless that stream is in a failed state.
    std::cout.setstate(std::ios::failbit);
    itms engine;
    engine.rtInit();

    // The light was on, as predicted, and is seen to be off.
    Trajectory trajectory;
    auto* state = new State;
    trajectory.addComp(lamp, state, 0, true, false);
    trajectory.addComp(battery, state, 0, true, false);
    SignedEls observed;
    TrajEl* off = state->elements->find(light[1]->getId())->second;
    observed.insert({true, off});
    const bool typeRules = true;
    const double maxRank = 2;
    std::vector<ItmsRes*>* found = engine.addPropositions(
        &observed, nullptr, state, nullptr, typeRules, maxRank, 0.0, &trajectory, 0, false);

    std::vector<std::string> explanations;
    for (ItmsRes* candidate : *found) {
        explanations.push_back(faultsOf(*candidate->state));
        candidate->clear();
        delete candidate;
    }
    delete found;
    std::cout.clear();

    std::sort(explanations.begin(), explanations.end());
    std::cout << light[1]->id << " is explained by\n";
    for (const std::string& explanation : explanations) {
        std::cout << "  " << explanation << '\n';
    }
}
