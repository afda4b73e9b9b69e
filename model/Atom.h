// One proposition of the form variable = value.
#pragma once

#include "model/StateVar.h"
#include "model/keys.h"

#include <cstdint>

/// A value of a state variable. The model side creates and owns it, and keeps it alive for as long as
/// anything refers to it: its identifier's characters are the key of every map that holds the atom or one
/// of its elements.
class Atom {
public:
    StateVar* stateVar = nullptr; ///< the variable of which this is a value; not owned
    std::string value;            ///< the value's own text, such as "open"
    std::string id;               ///< `COMPONENT.VARIABLE=VALUE`, unique in the model
    bool fail = false;            ///< the value is a fault
    /// Transitions whose precondition refers to this atom. Owned vector; the transitions are the model's.
    std::vector<Transition*>* outTransitions;
    /// Transitions that lead to this atom. Owned vector; the transitions are the model's.
    std::vector<Transition*>* transitions;
    Clause* support = nullptr; ///< printed by the `view` operations when not null; not owned
    /// The clauses in which the atom occurs. Owned vector; the clauses are the model's.
    std::vector<Clause*>* clauses;
    CompMap* comps;             ///< owning components by name, filled by set-up; owned map
    int initTrue = 0;           ///< 1 when the atom held at set-up, else 0
    double compiledProba = 0.0; ///< mean probability per step of `transitions`, 0..1; set by set-up
    unsigned int guardsNumber = 0; ///< guards that mention the atom, set by set-up
    bool deadEnd = false;          ///< nothing leaves this value on a command; set by set-up
    std::string label;             ///< the atom's own label: "true", "false" or "unknown"
    std::uint32_t number = 0;      ///< whoever made the atom gave it

    /// Ensures: the containers are empty, the label is "unknown".
    Atom();
    /// Ensures: the containers are null, the label is "unknown".
    explicit Atom(WithoutContainers);
    /// Releases the containers, and nothing that they refer to.
    ~Atom();
    Atom(const Atom&) = delete;
    Atom& operator=(const Atom&) = delete;

    /// The variable, which stays the model's; null before it is set.
    StateVar* getStateVar() const { return stateVar; }
    /// The identifier. The pointer stays valid, and the same, while the atom lives and `id` is unchanged.
    const char* getId() const { return id.c_str(); }
    /// A copy of the variable's type: "Mode", "Command" or "Cond".
    /// Requires: `stateVar` is set.
    std::string getVarType() const { return stateVar->type; }
    /// The component of the variable, which stays the model's; null when the variable has none.
    /// Requires: `stateVar` is set.
    Comp* getVarComp() const { return stateVar->comp; }

    /// True when the atom is its variable's value in the initial assignment; false without a variable.
    bool evalAtom() const;
    /// Ensures: the atom's own label is "true". The labels of the variable's other values stay as they are.
    void set();
    /// Ensures: the atom's own label is `newLabel`, which is not checked.
    void setLabel(const std::string& newLabel);
    /// Records that the transition refers to this atom in its precondition.
    /// Ensures: `transition` stands in `outTransitions`; no second entry is made. Linear in the entries.
    void addRefTransPre(Transition* transition);
    /// Prints `ID`, or `ID : LABEL` when `full` is true, and a newline to std::cout.
    void showAtom(bool full) const;
};
