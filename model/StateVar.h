// A variable of a component: a mode, a condition, or (see CommandVar.h) a command.
#pragma once

#include "model/keys.h"

/// A variable with a finite set of values, one atom for each.
class StateVar {
public:
    std::string type;              ///< "Mode", "Cond" or "Command"
    std::string name;              ///< the variable's name within its component
    Comp* comp = nullptr;          ///< the component it belongs to
    std::vector<Atom*>* atomLinks; ///< its atoms, one per value
    std::vector<Clause*>* clauses; ///< its own clauses: exactly one value holds
    int guardsNumber = 0;          ///< guards of the variable's transitions, set by set-up
    bool commandBlocked = false;   ///< a command that cannot be given now
    Atom* initial = nullptr;       ///< its value in the initial assignment, or null

    StateVar() : atomLinks(new std::vector<Atom*>), clauses(new std::vector<Clause*>) {}
    ~StateVar()
    {
        delete atomLinks;
        delete clauses;
    }
    StateVar(const StateVar&) = delete;
    StateVar& operator=(const StateVar&) = delete;

    /// A copy of `type`.
    std::string getType() const { return type; }
    Comp* getComp() const { return comp; }
    std::vector<Atom*>* getAtomLinks() const { return atomLinks; }
    /// The name; valid while the variable lives and `name` is unchanged.
    const char* getCharName() const { return name.c_str(); }
};
