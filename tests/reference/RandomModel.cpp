#include "tests/reference/RandomModel.h"

#include "model/DataManager.h"

#include <algorithm>

RandomModel::RandomModel(std::uint64_t seed, bool mustBeSound)
    : random(seed), sound(mustBeSound), trajectory(std::make_unique<Trajectory>())
{
    DataManager::reset();
    DataManager::model_name = "model" + std::to_string(seed);
    const std::vector<Labelling> labellings{
        Labelling::consistent, Labelling::consistent, Labelling::consistent, Labelling::consistent,
        Labelling::boolean,    Labelling::boolean,    Labelling::open,       Labelling::odd};
    labelling = sound ? Labelling::consistent : random.pick(labellings);
    wide = random.chance(45);
    lockPercent = wide ? random.between(0, 5) : random.pick(std::vector<int>{0, 0, 5, 10, 40});
    faultPercent_ = random.pick(std::vector<int>{0, 20, 20, 50});

    const int size = random.between(0, 19);
    const int compCount = size < 10 && !wide ? random.between(1, 4)
                          : size < 17        ? random.between(4, 8)
                                             : random.between(8, 12);
    for (int i = 0; i < compCount; ++i) {
        makeComp(static_cast<std::size_t>(i));
    }
    for (Comp* comp : comps) {
        for (int i = random.between(0, 2); i > 0; --i) {
            comp->importedComps->push_back(random.pick(comps));
        }
    }
    if (atoms.empty()) {
        return;
    }
    const bool domains = random.chance(wide ? 15 : 50);
    for (StateVar* variable : variables) {
        if (domains && !random.chance(5)) {
            makeDomainClauses(variable);
        }
    }
    const int perComp =
        random.pick(wide ? std::vector<int>{6, 8, 10, 14, 20} : std::vector<int>{2, 4, 8, 8, 14});
    for (int i = random.between(0, perComp * compCount + 2); i > 0; --i) {
        makeClause();
    }
    for (Comp* comp : comps) {
        const bool any = !comp->stateVars->empty() &&
                         std::any_of(comp->stateVars->begin(), comp->stateVars->end(),
                                     [](const StateVar* v) { return !v->atomLinks->empty(); });
        for (int i = any ? random.between(0, 4) : 0; i > 0; --i) {
            makeTransition(comp);
        }
    }
    for (Atom* atom : atoms) {
        if (!clauses.empty() && random.chance(20)) {
            atom->support = random.pick(clauses);
        }
    }
}

RandomModel::~RandomModel()
{
    trajectory.reset();
    DataManager::reset();
}

void RandomModel::makeComp(std::size_t index)
{
    ownComps_.push_back(std::make_unique<Comp>());
    Comp* comp = ownComps_.back().get();
    comps.push_back(comp);
    comp->name =
        random.pick(std::vector<std::string>{"valve", "tank", "p", "bus"}) + std::to_string(index);
    comp->altName = random.chance(50) ? comp->name : "other" + std::to_string(index);
    (*DataManager::active_comps)[comp->name.c_str()] = comp;
    const int count = random.chance(3) ? 0 : random.between(1, random.chance(30) ? 4 : 2);
    for (int i = 0; i < count; ++i) {
        makeVariable(comp, static_cast<std::size_t>(i));
    }
}

void RandomModel::makeVariable(Comp* comp, std::size_t index)
{
    const std::string type = random.pick(
        std::vector<std::string>{"Mode", "Mode", "Mode", "Cond", "Cond", "Cond", "Command"});
    StateVar* variable = nullptr;
    if (type == "Command") {
        ownCommands_.push_back(std::make_unique<CommandVar>());
        variable = ownCommands_.back().get();
        if (comp->commandVars == nullptr) {
            comp->commandVars = new std::vector<CommandVar*>;
        }
        comp->commandVars->push_back(ownCommands_.back().get());
        variable->commandBlocked = random.chance(wide ? 2 : 12);
    } else {
        ownVariables_.push_back(std::make_unique<StateVar>());
        variable = ownVariables_.back().get();
    }
    variable->type = type;
    variable->name = "x" + std::to_string(index);
    variable->comp = comp;
    comp->stateVars->push_back(variable);
    variables.push_back(variable);

    std::vector<std::string> values{"none", "unknown", "on", "off", "high", "low", "stuck"};
    const int count = random.chance(3) && !sound ? 0 : random.between(1, 4);
    for (int i = 0; i < count; ++i) {
        const std::size_t chosen = random.below(values.size());
        makeAtom(variable, values[chosen]);
        values.erase(values.begin() + static_cast<std::ptrdiff_t>(chosen));
    }
    if (variable->atomLinks->empty()) {
        return;
    }
    Atom* value = random.pick(*variable->atomLinks);
    if (value->fail && random.chance(80)) {
        value = variable->atomLinks->front();
    }
    assignment_[variable] = value;
    variable->initial = random.chance(80) ? value : nullptr;
    if (!sound && random.chance(5)) {
        variable->initial = random.pick(*variable->atomLinks);
    }
}

void RandomModel::makeAtom(StateVar* variable, const std::string& value)
{
    ownAtoms_.push_back(std::make_unique<Atom>());
    Atom* atom = ownAtoms_.back().get();
    atoms.push_back(atom);
    atom->stateVar = variable;
    atom->value = value;
    atom->id = variable->comp->name + "." + variable->name + "=" + value;
    atom->fail = random.chance(variable->type == "Mode" ? faultPercent_ : faultPercent_ / 8);
    if (random.chance(10)) {
        atom->label = random.chance(50) ? "true" : "false";
    }
    variable->atomLinks->push_back(atom);
    (*variable->comp->atoms)[atom->getId()] = atom;
    (*DataManager::active_atoms)[atom->getId()] = atom;
}

Clause* RandomModel::addClause(const std::vector<std::pair<bool, Atom*>>& literals, bool global)
{
    ownClauses_.push_back(std::make_unique<Clause>());
    Clause* clause = ownClauses_.back().get();
    numbers_[clause] = clauses.size();
    clauses.push_back(clause);
    for (const auto& literal : literals) {
        clause->literals->insert(literal);
        std::vector<Clause*>& of = *literal.second->clauses;
        if (std::find(of.begin(), of.end(), clause) == of.end()) {
            of.push_back(clause);
        }
    }
    if (global) {
        DataManager::cls->push_back(clause);
    }
    return clause;
}

void RandomModel::makeDomainClauses(StateVar* variable)
{
    const std::vector<Atom*>& values = *variable->atomLinks;
    if (values.empty()) {
        return;
    }
    const bool global = random.chance(50);
    std::vector<std::pair<bool, Atom*>> some;
    for (Atom* value : values) {
        some.emplace_back(false, value);
    }
    variable->clauses->push_back(addClause(some, global));
    for (std::size_t i = 0; i < values.size(); ++i) {
        for (std::size_t j = i + 1; j < values.size(); ++j) {
            variable->clauses->push_back(addClause({{true, values[i]}, {true, values[j]}}, global));
        }
    }
}

Atom* RandomModel::atomNear(Comp* comp)
{
    const bool near = random.chance(60);
    const std::size_t chosen = random.below(1000);
    if (near && !comp->stateVars->empty()) {
        const std::vector<Atom*>& values =
            *(*comp->stateVars)[chosen % comp->stateVars->size()]->atomLinks;
        if (!values.empty()) {
            return random.pick(values);
        }
    }
    return random.pick(atoms);
}

bool RandomModel::satisfied(const std::vector<std::pair<bool, Atom*>>& literals) const
{
    return std::any_of(literals.begin(), literals.end(), [this](const auto& literal) {
        return holds(literal.second) != literal.first;
    });
}

// Most clauses hold under the assignment, so that the search has something to restore.
void RandomModel::makeClause()
{
    Comp* comp = random.pick(comps);
    const int negatedPercent = random.pick(std::vector<int>{0, 50, 60, 100});
    const bool anyhow = !sound && random.chance(labelling == Labelling::consistent ? 8 : 40);
    std::vector<std::pair<bool, Atom*>> literals;
    for (int attempt = 0; attempt < 10; ++attempt) {
        literals.clear();
        const int least = random.chance(5) ? 0 : wide ? 2 : 1;
        for (int i = random.between(least, random.chance(wide ? 50 : 20) ? 4 : 3); i > 0; --i) {
            const bool negated = random.chance(negatedPercent);
            literals.emplace_back(negated, atomNear(comp));
        }
        if (!literals.empty() && random.chance(6)) { // an atom twice, maybe with both signs
            literals.emplace_back(random.chance(50), literals.front().second);
        }
        if (anyhow || satisfied(literals)) {
            break;
        }
    }
    if (sound && !satisfied(literals)) {
        return;
    }
    Clause* clause = addClause(literals, !random.chance(10));
    if (random.chance(8) && !literals.empty()) {
        literals.front().second->stateVar->clauses->push_back(clause);
    }
    if (random.chance(4)) {
        addClause(literals, true); // the same law again
    }
    if (random.chance(3)) {
        DataManager::cls->push_back(clause);
    }
}

StateFormula* RandomModel::formula(const std::string& op, std::size_t atomCount)
{
    ownFormulas_.push_back(std::make_unique<StateFormula>());
    StateFormula* made = ownFormulas_.back().get();
    made->op = op;
    made->atoms = new SignedAtoms;
    for (std::size_t i = 0; i < atomCount; ++i) {
        const bool positive = random.chance(70);
        made->atoms->insert({positive, random.pick(atoms)});
    }
    return made;
}

void RandomModel::makeTransition(Comp* comp)
{
    std::vector<StateVar*> able;
    for (StateVar* variable : *comp->stateVars) {
        if (!variable->atomLinks->empty() && (variable->type == "Mode" || random.chance(15))) {
            able.push_back(variable);
        }
    }
    if (able.empty()) {
        return;
    }
    ownTransitions_.push_back(std::make_unique<Transition>());
    Transition* made = ownTransitions_.back().get();
    transitions.push_back(made);
    made->stateVar = random.pick(able);
    made->atom = random.pick(*made->stateVar->atomLinks);
    made->name = random.pick(std::vector<std::string>{"Nominal", "Nominal", "idle", "break"});
    made->idle = random.chance(made->name == "idle" ? 90 : 10);
    made->type = made->atom->fail || random.chance(10) ? "Fail" : "";
    made->proba = random.pick(std::vector<double>{0.0, 0.1, 0.3, 0.5, 0.5, 0.9, 0.001, 1.0});
    if (random.chance(20)) {
        made->proba = static_cast<double>(random.below(1000)) / 999.0;
    }
    guard(made);
    made->formula = formula("and", random.chance(85) ? 0 : random.below(3));
    if (!random.chance(6)) {
        made->formula->atoms->insert({true, made->atom});
    }
    made->atom->transitions->push_back(made);
    comp->transitions->push_back(made);
}

void RandomModel::guard(Transition* transition)
{
    random.pick(*transition->stateVar->atomLinks)->addRefTransPre(transition);
    if (!transition->idle && transition->type != "Fail" && random.chance(30)) {
        return;
    }
    transition->guard = formula("and", random.below(3));
    if (random.chance(10)) {
        delete transition->guard->atoms;
        transition->guard->atoms = nullptr;
        return;
    }
    for (const auto& [positive, atom] : *transition->guard->atoms) {
        atom->addRefTransPre(transition);
    }
}

std::string RandomModel::label(const Atom* atom)
{
    switch (labelling) {
    case Labelling::consistent: return holds(atom) ? "true" : "false";
    case Labelling::boolean: return random.chance(50) ? "true" : "false";
    case Labelling::open:
        return random.pick(std::vector<std::string>{"true", "false", "false", "unknown", "unknown"});
    case Labelling::odd: break;
    }
    return random.pick(
        std::vector<std::string>{"true", "false", "true", "false", "unknown", "none", ""});
}

int RandomModel::lock()
{
    return random.chance(lockPercent) ? random.pick(std::vector<int>{0, 1, 3, 4, 5, -1}) : 2;
}

std::string RandomModel::nameOf(const Clause* clause) const
{
    if (clause == nullptr) {
        return "null";
    }
    const auto found = numbers_.find(clause);
    if (found == numbers_.end()) {
        return "?";
    }
    return std::string("c").append(std::to_string(found->second));
}

void RandomModel::predict(int time)
{
    const bool all = sound || random.chance(60);
    for (Atom* atom : atoms) {
        if (all || random.chance(40)) {
            const std::string label_ = label(atom);
            trajectory->predict(time, atom, label_, lock());
        }
    }
}

std::vector<std::vector<Atom*>*>* RandomModel::implicateSets()
{
    auto* sets = new std::vector<std::vector<Atom*>*>;
    for (int i = random.between(0, 3); i > 0; --i) {
        sets->push_back(new std::vector<Atom*>);
        for (int j = random.between(0, 3); j > 0; --j) {
            Atom* member = random.pick(atoms);
            for (int tries = random.chance(40) ? 5 : 0; tries > 0 && !member->fail; --tries) {
                member = random.pick(atoms); // faults are what a set is rejected for
            }
            sets->back()->push_back(member);
        }
        if (random.chance(10) && !sets->back()->empty()) {
            sets->back()->push_back(sets->back()->front());
        }
    }
    return sets;
}

std::string RandomModel::implicateFile()
{
    std::string text;
    for (int line = random.between(0, 5); line > 0; --line) {
        text += random.chance(3) ? "nobody.x0=on" : random.pick(atoms)->id;
        text += random.chance(3) ? "" : ":";
        const int sets = random.chance(2) ? 60 : random.between(0, 3);
        for (int i = 0; i < sets; ++i) {
            text += i > 0 ? "," : "";
            for (int j = random.between(random.chance(3) ? 0 : 1, 3); j > 0; --j) {
                text += random.pick(atoms)->id;
                text += j > 1 ? " " : "";
            }
        }
        text += random.pick(std::vector<std::string>{"", "", "", "", "", "", "", "", "",  "",  "",
                                                     "", "", "", "", "", "", "", "", " ", "\r"});
        text += line == 1 && random.chance(20) ? "" : "\n";
    }
    return text;
}
