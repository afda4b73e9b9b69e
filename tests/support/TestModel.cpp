#include "tests/support/TestModel.h"

#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <sstream>

TestModel::TestModel()
{
    DataManager::reset();
}

TestModel::~TestModel()
{
    DataManager::reset();
}

Comp* TestModel::comp(const std::string& name)
{
    comps_.push_back(std::make_unique<Comp>());
    Comp* made = comps_.back().get();
    made->name = name;
    made->altName = name;
    (*DataManager::active_comps)[made->name.c_str()] = made;
    return made;
}

StateVar* TestModel::variable(Comp* comp, const std::string& name, const std::string& type,
                              std::initializer_list<std::string_view> values)
{
    StateVar* made = nullptr;
    if (type == "Command") {
        commands_.push_back(std::make_unique<CommandVar>());
        if (!comp->commandVars) {
            comp->commandVars = new std::vector<CommandVar*>;
        }
        comp->commandVars->push_back(commands_.back().get());
        made = commands_.back().get();
    } else {
        variables_.push_back(std::make_unique<StateVar>());
        made = variables_.back().get();
    }
    made->name = name;
    made->type = type;
    made->comp = comp;
    comp->stateVars->push_back(made);
    for (std::string_view value : values) {
        atoms_.push_back(std::make_unique<Atom>());
        Atom* atom = atoms_.back().get();
        atom->fail = value.ends_with('!');
        if (atom->fail) {
            value.remove_suffix(1);
        }
        atom->value = value;
        atom->stateVar = made;
        atom->id = comp->name + "." + name + "=" + atom->value;
        made->atomLinks->push_back(atom);
        (*comp->atoms)[atom->getId()] = atom;
        (*DataManager::active_atoms)[atom->getId()] = atom;
    }
    made->initial = made->atomLinks->empty() ? nullptr : made->atomLinks->front();
    return made;
}

void TestModel::domainClauses(StateVar* variable)
{
    const std::vector<Atom*>& values = *variable->atomLinks;
    std::vector<Literal> some;
    for (Atom* value : values) {
        some.push_back({false, value});
    }
    variable->clauses->push_back(clause(some, false));
    for (std::size_t i = 0; i < values.size(); ++i) {
        for (std::size_t j = i + 1; j < values.size(); ++j) {
            variable->clauses->push_back(clause({{true, values[i]}, {true, values[j]}}, false));
        }
    }
}

Atom* TestModel::atom(const std::string& id)
{
    const auto found = std::find_if(atoms_.begin(), atoms_.end(),
                                    [&](const auto& atom) { return atom->id == id; });
    if (found == atoms_.end()) {
        std::cerr << "the test model has no atom " << id << std::endl;
        std::abort();
    }
    return found->get();
}

Clause* TestModel::clause(std::initializer_list<Literal> literals, bool global)
{
    return clause(std::vector<Literal>(literals), global);
}

Clause* TestModel::clause(const std::vector<Literal>& literals, bool global)
{
    clauses_.push_back(std::make_unique<Clause>());
    Clause* made = clauses_.back().get();
    for (const Literal& literal : literals) {
        made->literals->insert({literal.negated, literal.atom});
        std::vector<Clause*>& of = *literal.atom->clauses;
        if (std::find(of.begin(), of.end(), made) == of.end()) {
            of.push_back(made);
        }
    }
    if (global) {
        DataManager::cls->push_back(made);
    }
    return made;
}

Clause* TestModel::clause(const std::string& text, bool global)
{
    std::vector<Literal> literals;
    std::istringstream words(text);
    for (std::string word; words >> word;) {
        if (word != "|") {
            const bool negated = word.front() == '!';
            literals.push_back({negated, atom(negated ? word.substr(1) : word)});
        }
    }
    return clause(literals, global);
}

Transition* TestModel::transition(Atom* to, const std::string& name, double proba,
                                  const std::string& type)
{
    transitions_.push_back(std::make_unique<Transition>());
    Transition* made = transitions_.back().get();
    made->name = name;
    made->type = type;
    made->stateVar = to->stateVar;
    made->atom = to;
    made->proba = proba;
    made->formula = formula("and", {{true, to}});
    to->transitions->push_back(made);
    to->stateVar->comp->transitions->push_back(made);
    return made;
}

StateFormula* TestModel::guard(Transition* transition, const std::vector<Literal>& mustHold)
{
    std::vector<std::pair<bool, Atom*>> atoms;
    for (const Literal& literal : mustHold) {
        atoms.emplace_back(!literal.negated, literal.atom);
        literal.atom->addRefTransPre(transition);
    }
    transition->guard = formula("and", atoms);
    return transition->guard;
}

StateFormula* TestModel::formula(const std::string& op,
                                 const std::vector<std::pair<bool, Atom*>>& atoms)
{
    formulas_.push_back(std::make_unique<StateFormula>());
    StateFormula* made = formulas_.back().get();
    made->op = op;
    made->atoms = new SignedAtoms;
    for (const auto& [polarity, atom] : atoms) {
        made->atoms->insert({polarity, atom});
    }
    return made;
}

State* TestModel::state(const std::vector<Comp*>& comps)
{
    auto* made = new State;
    Trajectory trajectory;
    for (Comp* comp : comps) {
        trajectory.addComp(comp, made, 0, true, false);
    }
    return made;
}

CapturedTrace::CapturedTrace()
    : buffer_(std::make_unique<std::stringbuf>(std::ios::out)),
      previous_(std::cout.rdbuf(buffer_.get()))
{
}

CapturedTrace::~CapturedTrace()
{
    std::cout.rdbuf(previous_);
}

std::string CapturedTrace::take()
{
    std::string text = buffer_->str();
    buffer_->str("");
    return text;
}

MutedTrace::MutedTrace()
{
    std::cout.setstate(std::ios::failbit);
}

MutedTrace::~MutedTrace()
{
    std::cout.clear();
}
