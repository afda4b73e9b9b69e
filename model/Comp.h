// A component: its variables, its transitions, and the components it is connected to.
#pragma once

#include "model/CommandVar.h"
#include "model/keys.h"

/// One component of the plant. It owns its containers, never what they point to.
class Comp {
public:
    std::string name; ///< unique in the model; its characters are the key of the component maps
    /// Its command variables, which `stateVars` lists too; null when it has none.
    std::vector<CommandVar*>* commandVars = nullptr;
    std::vector<StateVar*>* stateVars;     ///< all of its variables, commands included
    std::vector<Transition*>* transitions; ///< its transitions, in their fixed order
    std::vector<Comp*>* importedComps;     ///< components whose variables its laws mention
    AtomMap* atoms;                        ///< its atoms by identifier; set-up refills it
    std::string altName;                   ///< its name as written in prime-implicate files

    /// Ensures: the containers are empty, `commandVars` is null.
    Comp();
    /// Ensures: `stateVars` and `importedComps` are empty, the other containers are null.
    explicit Comp(WithoutContainers);
    /// Releases the containers, `commandVars` included, and nothing that they refer to.
    ~Comp();
    Comp(const Comp&) = delete;
    Comp& operator=(const Comp&) = delete;

    /// `stateVars` itself, which stays the component's.
    std::vector<StateVar*>* getStateVariables() const { return stateVars; }

    /// Counts afresh how often the guards of this component's transitions use their variables and atoms,
    /// and returns the number of transitions with a guard. Linear in the transitions and their guards.
    ///
    /// Requires: no guard contains a null atom. A transition's own variable and atom may be null.
    /// Ensures: `guardsNumber` of each transition's variable and atom, and of each atom in a guard, was set
    /// to 0 first; then every transition that has a guard (one without atoms counts) added 1 to its
    /// variable's count and 1 to that of each distinct atom in the guard.
    int getTransitionsGuards();
};
