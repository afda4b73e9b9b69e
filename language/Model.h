// A model that was built: all of its objects, and the one place that makes it the active one.
#pragma once

#include "model/Clause.h"
#include "model/Comp.h"
#include "model/StateFormula.h"
#include "model/Transition.h"
#include "model/keys.h"

#include "model/Atom.h"

#include <memory>
#include <string>
#include <vector>

namespace language {

/// Owns the components, variables, atoms, clauses, transitions and formulas of a model. Made by ModelBuilder.
/// Addresses stay the same while it lives, and it outlives every engine, state and trajectory over it.
class Model {
public:
    /// Takes itself out of the registry if it is the active model.
    ~Model();
    Model(const Model&) = delete;
    Model& operator=(const Model&) = delete;

    /// Resets the registry (DataManager::reset) and enters this model in it, ready for itms::rtInit. Linear.
    void activate();

    const std::string& name() const { return name_; }
    /// In the order of their making.
    const std::vector<std::unique_ptr<Comp>>& components() const { return components_; }
    const std::vector<std::unique_ptr<Atom>>& atoms() const { return atoms_; }
    /// The model-wide clauses; the clauses that make a variable have exactly one value are the variable's.
    const std::vector<Clause*>& laws() const { return laws_; }
    std::size_t clauseCount() const { return clauses_.size(); }

private:
    friend class ModelBuilder;
    explicit Model(std::string name) : name_(std::move(name)) {}

    std::string name_;
    std::vector<std::unique_ptr<Comp>> components_;
    std::vector<std::unique_ptr<StateVar>> variables_;
    std::vector<std::unique_ptr<CommandVar>> commands_;
    std::vector<std::unique_ptr<Atom>> atoms_;
    std::vector<std::unique_ptr<Clause>> clauses_;
    std::vector<std::unique_ptr<Transition>> transitions_;
    std::vector<std::unique_ptr<StateFormula>> formulas_;
    std::vector<Clause*> laws_;
};

} // namespace language
