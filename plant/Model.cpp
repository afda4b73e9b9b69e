#include "plant/Model.h"

#include "model/DataManager.h"
#include "model/Registry.h"
#include "plant/EngineObjects.h"
#include "plant/Registration.h"

namespace plant {

Model::Model(std::string name) : name_(std::move(name)) {}

Model::~Model()
{
    if (!components_.empty()) {
        const std::string& first = components_.front()->name;
        const auto active = DataManager::active_comps->find(first.c_str());
        if (active != DataManager::active_comps->end() && active->second == components_.front()) {
            DataManager::reset();
        }
    }
}

void Model::activate()
{
    Registry::useFirst();
    DataManager::reset();
    enter(*this);
}

std::vector<Literal> Model::literalsOf(std::size_t law) const
{
    std::vector<Literal> literals;
    for (const SignedNumber literal : lawLiterals_[law]) {
        literals.push_back({(literal & 1U) != 0, atoms_[literal / 2]});
    }
    return literals;
}

std::vector<GuardLiteral> Model::preconditionOf(std::size_t transition) const
{
    std::vector<GuardLiteral> literals;
    for (const SignedNumber literal : preconditions_[transition]) {
        literals.emplace_back((literal & 1U) != 0, atoms_[literal / 2]);
    }
    return literals;
}

void Model::makeEngineObjects() const
{
    if (!engineObjects_) engineObjects_ = std::make_unique<const EngineObjects>(*this);
}

const std::vector<Clause*>& Model::laws() const
{
    makeEngineObjects();
    return engineObjects_->laws();
}

const std::vector<Transition*>& Model::transitions() const
{
    makeEngineObjects();
    return engineObjects_->transitions();
}

const std::string& nameOf(TransitionKind kind, const Atom& to)
{
    static const std::string nominal = "Nominal";
    static const std::string repair = "Repair";
    static const std::string idle = "idle";
    switch (kind) {
    case TransitionKind::nominal: return nominal;
    case TransitionKind::fault: return to.value;
    case TransitionKind::repair: return repair;
    case TransitionKind::idle: break;
    }
    return idle;
}

const std::string& typeOf(TransitionKind kind)
{
    static const std::string nominal = "Nominal";
    static const std::string fault = "Fail";
    static const std::string repair = "Repair";
    static const std::string idle = "Idle";
    switch (kind) {
    case TransitionKind::nominal: return nominal;
    case TransitionKind::fault: return fault;
    case TransitionKind::repair: return repair;
    case TransitionKind::idle: break;
    }
    return idle;
}

} // namespace plant
