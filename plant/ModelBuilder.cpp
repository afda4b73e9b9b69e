#include "plant/ModelBuilder.h"

#include <algorithm>
#include <cassert>
#include <cstdint>
#include <utility>

namespace plant {

namespace {

const char* typeName(VariableKind kind)
{
    switch (kind) {
    case VariableKind::mode: return "Mode";
    case VariableKind::condition: return "Cond";
    case VariableKind::command: return "Command";
    }
    return "";
}

} // namespace

std::size_t ModelBuilder::ClauseHash::operator()(const std::vector<std::uintptr_t>& key) const
{
    std::size_t hash = key.size();
    for (const std::uintptr_t literal : key) {
        hash = (hash ^ literal) * 0x9E3779B97F4A7C15U;
        hash ^= hash >> 29U;
    }
    return hash;
}

ModelBuilder::ModelBuilder(std::string name) : model_(new Model(std::move(name))) {}

Comp* ModelBuilder::component(const std::string& name)
{
    [[maybe_unused]] const bool isNew = componentNames_.insert(name).second;
    assert(isNew);
    Comp* made = model_->components_.emplace_back(std::make_unique<Comp>()).get();
    made->name = name;
    made->altName = name;
    return made;
}

StateVar* ModelBuilder::variable(Comp* component, const std::string& name, VariableKind kind,
                                 const std::vector<ValueDeclaration>& values,
                                 std::optional<std::size_t> initial)
{
    assert(!values.empty() && (!initial || *initial < values.size()));
    StateVar* made = nullptr;
    if (kind == VariableKind::command) {
        CommandVar* command = model_->commands_.emplace_back(std::make_unique<CommandVar>()).get();
        if (!component->commandVars) {
            component->commandVars = new std::vector<CommandVar*>;
        }
        component->commandVars->push_back(command);
        made = command;
    } else {
        made = model_->variables_.emplace_back(std::make_unique<StateVar>()).get();
    }
    made->type = typeName(kind);
    made->name = name;
    made->comp = component;
    component->stateVars->push_back(made);
    std::vector<Literal> someValue;
    for (const ValueDeclaration& declared : values) {
        Atom* atom = model_->atoms_.emplace_back(std::make_unique<Atom>()).get();
        // Set-up enters one component. A hundred buckets for it would be half of what a large plant takes.
        delete std::exchange(atom->comps, new CompMap(1));
        atom->stateVar = made;
        atom->value = declared.name;
        atom->fail = declared.fault;
        atom->id = component->name + "." + name + "=" + declared.name;
        made->atomLinks->push_back(atom);
        (*component->atoms)[atom->getId()] = atom;
        someValue.push_back({false, atom});
    }
    if (initial) {
        made->initial = (*made->atomLinks)[*initial];
    }
    made->clauses->push_back(addClause(someValue));
    for (std::size_t i = 0; i < someValue.size(); ++i) {
        for (std::size_t j = i + 1; j < someValue.size(); ++j) {
            made->clauses->push_back(
                addClause({{true, someValue[i].atom}, {true, someValue[j].atom}}));
        }
    }
    return made;
}

// A literal's key is its atom's address, with the lowest bit for the sign: sorted, the literals of an atom are
// neighbours.
Clause* ModelBuilder::law(Comp* owner, const std::vector<Literal>& literals)
{
    const auto keyOf = [](const Literal& literal) {
        return reinterpret_cast<std::uintptr_t>(literal.atom) | (literal.negated ? 1U : 0U);
    };
    std::vector<std::uintptr_t> key;
    for (const Literal& literal : literals) {
        key.push_back(keyOf(literal));
    }
    std::sort(key.begin(), key.end());
    key.erase(std::unique(key.begin(), key.end()), key.end());
    const bool holdsAlways =
        std::adjacent_find(key.begin(), key.end(), [](std::uintptr_t a, std::uintptr_t b) {
            return (a ^ b) == 1U;
        }) != key.end();
    if (holdsAlways) {
        return nullptr;
    }
    std::vector<Literal> kept = literals;
    if (key.size() < literals.size()) {
        std::unordered_set<std::uintptr_t> seen;
        std::erase_if(kept,
                      [&](const Literal& literal) { return !seen.insert(keyOf(literal)).second; });
    }
    if (!knownLaws_.insert(std::move(key)).second) {
        return nullptr;
    }
    Clause* clause = addClause(kept);
    model_->laws_.push_back(clause);
    model_->lawOwners_.push_back(owner);
    model_->lawLiterals_.add(kept);
    if (owner) {
        for (const Literal& literal : kept) {
            import(owner, literal.atom->getVarComp());
        }
    }
    return clause;
}

Transition* ModelBuilder::nominal(Atom* from, Atom* to,
                                  const std::vector<std::pair<bool, Atom*>>& guard, double proba)
{
    Transition* made = transition(from, to, guard, proba);
    made->name = "Nominal";
    made->type = "Nominal";
    return made;
}

Transition* ModelBuilder::fault(Atom* from, Atom* to, double proba,
                                const std::vector<std::pair<bool, Atom*>>& guard)
{
    Transition* made = transition(from, to, guard, proba);
    made->name = to->value;
    made->type = "Fail";
    return made;
}

Transition* ModelBuilder::repair(Atom* from, Atom* to, double proba,
                                 const std::vector<std::pair<bool, Atom*>>& guard)
{
    Transition* made = transition(from, to, guard, proba);
    made->name = "Repair";
    made->type = "Repair";
    return made;
}

Transition* ModelBuilder::idle(Atom* at, double proba,
                               const std::vector<std::pair<bool, Atom*>>& guard)
{
    Transition* made = transition(at, at, guard, proba);
    made->name = "idle";
    made->type = "Idle";
    made->idle = true;
    return made;
}

Transition* ModelBuilder::alternative(const std::vector<std::pair<bool, Atom*>>& guard)
{
    const Transition& last = *model_->transitions_.back();
    const std::size_t change = model_->changes_.back();
    Atom* from = model_->preconditions_[change].front().second;
    Transition* made = transition(from, last.atom, guard, last.proba);
    made->name = last.name;
    made->type = last.type;
    made->idle = last.idle;
    model_->changes_.back() = change;
    return made;
}

void ModelBuilder::import(Comp* importer, Comp* imported)
{
    if (importer != imported && knownImports_[importer].insert(imported).second) {
        importer->importedComps->push_back(imported);
    }
}

std::unique_ptr<Model> ModelBuilder::build()
{
    return std::move(model_);
}

Clause* ModelBuilder::addClause(const std::vector<Literal>& literals)
{
    Clause* clause = model_->clauses_.emplace_back(std::make_unique<Clause>()).get();
    for (const Literal& literal : literals) {
        clause->literals->insert({literal.negated, literal.atom});
        literal.atom->clauses->push_back(clause);
    }
    return clause;
}

StateFormula* ModelBuilder::formula(const std::vector<std::pair<bool, Atom*>>& atoms)
{
    StateFormula* made = model_->formulas_.emplace_back(std::make_unique<StateFormula>()).get();
    made->op = "and";
    made->atoms = new SignedAtoms;
    for (const auto& [polarity, atom] : atoms) {
        made->atoms->insert({polarity, atom});
    }
    return made;
}

// The guard holds the mode value that is left, too: together they are the transition's precondition.
Transition* ModelBuilder::transition(Atom* from, Atom* to,
                                     const std::vector<std::pair<bool, Atom*>>& guard, double proba)
{
    Transition* made = model_->transitions_.emplace_back(std::make_unique<Transition>()).get();
    made->stateVar = to->stateVar;
    made->atom = to;
    made->proba = proba;
    std::vector<std::pair<bool, Atom*>> precondition{{true, from}};
    precondition.insert(precondition.end(), guard.begin(), guard.end());
    made->guard = formula(precondition);
    model_->preconditions_.add(precondition);
    model_->changes_.push_back(model_->changes_.size());
    made->formula = formula({{true, to}});
    for (const auto& [polarity, atom] : precondition) {
        atom->addRefTransPre(made);
    }
    to->transitions->push_back(made);
    to->stateVar->comp->transitions->push_back(made);
    return made;
}

} // namespace plant
