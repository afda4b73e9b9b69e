#include "plant/ModelBuilder.h"

#include <algorithm>
#include <cassert>

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

ModelBuilder::ModelBuilder(std::string name) : model_(new Model(std::move(name))) {}

Comp* ModelBuilder::component(const std::string& name)
{
    Comp* made = model_->components_.make(WithoutContainers());
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
        CommandVar* command = model_->commands_.make(WithoutContainers());
        if (!component->commandVars) {
            component->commandVars = new std::vector<CommandVar*>;
        }
        component->commandVars->push_back(command);
        made = command;
    } else {
        made = model_->variables_.make(WithoutContainers());
    }
    made->type = typeName(kind);
    made->name = name;
    made->comp = component;
    component->stateVars->push_back(made);
    made->atomLinks->reserve(values.size());
    for (const ValueDeclaration& declared : values) {
        const auto number = static_cast<std::uint32_t>(model_->atoms_.size());
        Atom* atom = model_->atoms_.make(WithoutContainers());
        atom->number = number;
        atom->stateVar = made;
        atom->value = declared.name;
        atom->fail = declared.fault;
        atom->id.reserve(component->name.size() + name.size() + declared.name.size() + 2);
        atom->id.append(component->name).append(".").append(name).append("=").append(declared.name);
        made->atomLinks->push_back(atom);
    }
    if (initial) {
        made->initial = (*made->atomLinks)[*initial];
    }
    model_->domainClauses_ += 1 + values.size() * (values.size() - 1) / 2;
    return made;
}

// Sorted, the literals of an atom are neighbours.
bool ModelBuilder::law(Comp* owner, const std::vector<Literal>& literals)
{
    const auto signedNumberOf = [](const Literal& literal) {
        return signedNumber(literal.atom->number, literal.negated);
    };
    sorted_.clear();
    for (const Literal& literal : literals) {
        sorted_.push_back(signedNumberOf(literal));
    }
    std::sort(sorted_.begin(), sorted_.end());
    sorted_.erase(std::unique(sorted_.begin(), sorted_.end()), sorted_.end());
    const bool holdsAlways =
        std::adjacent_find(sorted_.begin(), sorted_.end(), [](SignedNumber a, SignedNumber b) {
            return (a ^ b) == 1U;
        }) != sorted_.end();
    if (holdsAlways || !knownLaws_.add(sorted_)) {
        return false;
    }
    std::unordered_set<SignedNumber> seen;
    for (const Literal& literal : literals) {
        const SignedNumber kept = signedNumberOf(literal);
        if (sorted_.size() < literals.size() && !seen.insert(kept).second) continue;
        model_->lawLiterals_.push(kept);
        if (owner) import(owner, literal.atom->getVarComp());
    }
    model_->lawLiterals_.end();
    model_->lawOwners_.push_back(owner);
    return true;
}

void ModelBuilder::nominal(Atom* from, Atom* to, const std::vector<GuardLiteral>& guard,
                           double proba)
{
    add(TransitionKind::nominal, from, to, proba, guard);
}

void ModelBuilder::fault(Atom* from, Atom* to, double proba, const std::vector<GuardLiteral>& guard)
{
    add(TransitionKind::fault, from, to, proba, guard);
}

void ModelBuilder::repair(Atom* from, Atom* to, double proba, const std::vector<GuardLiteral>& guard)
{
    add(TransitionKind::repair, from, to, proba, guard);
}

void ModelBuilder::idle(Atom* at, double proba, const std::vector<GuardLiteral>& guard)
{
    add(TransitionKind::idle, at, at, proba, guard);
}

void ModelBuilder::alternative(const std::vector<GuardLiteral>& guard)
{
    const GivenTransition last = model_->transitions_.back();
    const SignedNumber from = model_->preconditions_[last.change].front();
    add(last.kind, model_->atoms_[from / 2], model_->atoms_[last.to], last.probability, guard);
    model_->transitions_.back().change = last.change;
}

void ModelBuilder::import(Comp* importer, Comp* imported)
{
    if (importer != imported && knownImports_[importer].insert(imported).second) {
        importer->importedComps->push_back(imported);
    }
}

std::unique_ptr<Model> ModelBuilder::build()
{
    knownLaws_ = {};
    knownImports_.clear();
    model_->lawLiterals_.shrink();
    model_->lawOwners_.shrink_to_fit();
    model_->transitions_.shrink_to_fit();
    model_->preconditions_.shrink();
    return std::move(model_);
}

void ModelBuilder::add(TransitionKind kind, Atom* from, Atom* to, double proba,
                       const std::vector<GuardLiteral>& guard)
{
    const auto number = static_cast<std::uint32_t>(model_->transitions_.size());
    model_->transitions_.push_back({proba, to->number, number, kind});
    model_->preconditions_.push(signedNumber(from->number, true));
    for (const auto& [holds, atom] : guard) {
        model_->preconditions_.push(signedNumber(atom->number, holds));
    }
    model_->preconditions_.end();
}

} // namespace plant
