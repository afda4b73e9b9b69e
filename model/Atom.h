// One proposition of the form variable = value.
#pragma once

#include "model/StateVar.h"
#include "model/keys.h"

/// A value of a state variable. The model side creates, owns and outlives it: its identifier's
/// characters are the key of every map that holds the atom or one of its elements.
class Atom {
public:
    StateVar* stateVar = nullptr;             ///< the variable of which this is a value
    std::string value;                        ///< the value's own text, such as "open"
    std::string id;                           ///< `COMPONENT.VARIABLE=VALUE`, unique in the model
    bool fail = false;                        ///< the value is a fault
    std::vector<Transition*>* outTransitions; ///< transitions whose precondition refers to this atom
    std::vector<Transition*>* transitions;    ///< transitions that lead to this atom
    Clause* support = nullptr;                ///< printed by the `view` operations when not null
    std::vector<Clause*>* clauses;            ///< the clauses in which the atom occurs
    CompMap* comps;                           ///< owning components by name, filled by set-up
    int initTrue = 0;                         ///< 1 when the atom held at set-up
    double compiledProba = 0.0;               ///< mean probability of `transitions`, set by set-up
    unsigned int guardsNumber = 0;            ///< guards that mention the atom, set by set-up
    bool deadEnd = false;                     ///< nothing leaves this value on a command
    std::string label;                        ///< the atom's own label: "true", "false", "unknown"

    Atom();
    ~Atom();
    Atom(const Atom&) = delete;
    Atom& operator=(const Atom&) = delete;

    StateVar* getStateVar() const { return stateVar; }
    /// The identifier; the pointer stays valid, and the same, while the atom lives and `id` is unchanged.
    const char* getId() const { return id.c_str(); }
    /// A copy of the variable's type: "Mode", "Command", "Cond".
    std::string getVarType() const { return stateVar->type; }
    Comp* getVarComp() const { return stateVar->comp; }

    /// True when the atom is its variable's value in the initial assignment.
    bool evalAtom() const;
    /// Makes the atom the current value of its variable: its own label becomes "true".
    void set();
    /// Writes the atom's own label.
    void setLabel(const std::string& newLabel);
    /// Records that the transition refers to this atom in its precondition; no entry is made twice.
    /// Linear in the entries there are.
    void addRefTransPre(Transition* transition);
    /// Prints `ID`, or `ID : LABEL` when `full` is true, and a newline.
    void showAtom(bool full) const;
};
