// A variable of a component: a mode, a condition, or (see CommandVar.h) a command.
#pragma once

#include "model/keys.h"

/// A variable with a finite set of values, one atom for each.
class StateVar {
public:
    std::string type;              ///< "Mode", "Cond" or "Command"
    std::string name;              ///< the variable's name within its component
    Comp* comp = nullptr;          ///< the component it belongs to; not owned
    std::vector<Atom*>* atomLinks; ///< its atoms, one per value; owned vector, the atoms are the model's
    /// Its own clauses: exactly one value holds. Owned vector, the clauses are the model's.
    std::vector<Clause*>* clauses;
    int guardsNumber = 0;        ///< guards of the variable's transitions, set by set-up
    bool commandBlocked = false; ///< a command that cannot be given now
    Atom* initial = nullptr;     ///< its value in the initial assignment, or null

    /// Ensures: a variable without values and clauses.
    StateVar() : atomLinks(new std::vector<Atom*>), clauses(new std::vector<Clause*>) {}
    /// Ensures: a variable without values, whose `clauses` is null.
    explicit StateVar(WithoutContainers) : atomLinks(new std::vector<Atom*>), clauses(nullptr) {}
    /// Releases the two vectors, not the atoms and clauses.
    ~StateVar()
    {
        delete atomLinks;
        delete clauses;
    }
    StateVar(const StateVar&) = delete;
    StateVar& operator=(const StateVar&) = delete;

    /// A copy of `type`.
    std::string getType() const { return type; }
    /// The component, which stays the model's; may be null.
    Comp* getComp() const { return comp; }
    /// `atomLinks` itself, which stays the variable's.
    std::vector<Atom*>* getAtomLinks() const { return atomLinks; }
    /// The name. The pointer stays valid while the variable lives and `name` is unchanged.
    const char* getCharName() const { return name.c_str(); }
};
