// A component: its variables, its transitions, and the components it is connected to.
#pragma once

#include "model/CommandVar.h"
#include "model/keys.h"

/// One component of the plant. It owns its containers, never what they point to.
class Comp {
public:
    std::string name; ///< unique in the model; key of the component maps
    std::vector<CommandVar*>* commandVars =
        nullptr;                           ///< its command variables again; null when it has none
    std::vector<StateVar*>* stateVars;     ///< all of its variables, commands included
    std::vector<Transition*>* transitions; ///< its transitions, in their fixed order
    std::vector<Comp*>* importedComps;     ///< components whose variables its laws mention
    AtomMap* atoms;                        ///< its atoms by identifier; set-up refills it
    std::string altName;                   ///< its name as written in prime-implicate files

    Comp();
    ~Comp();
    Comp(const Comp&) = delete;
    Comp& operator=(const Comp&) = delete;

    /// `stateVars` itself, which stays the component's.
    std::vector<StateVar*>* getStateVariables() const { return stateVars; }

    /// Counts afresh how often the guards of this component's transitions use their variables and atoms.
    /// First `guardsNumber` of each transition's variable and atom, and of each atom in a guard, becomes 0.
    /// Then every transition that has a guard (one without atoms counts) adds 1 to its variable's count
    /// and 1 to that of each distinct atom in the guard. Returns the number of transitions with a guard.
    int getTransitionsGuards();
};
