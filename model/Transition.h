// A change of a component's mode: nominal, by a fault, by a repair, or the idle one that keeps a mode as it is.
#pragma once

#include "model/StateFormula.h"
#include "model/keys.h"

/// A transition of a mode variable. Guard and formula are model objects of their own, not owned here.
class Transition {
public:
    int id = 0;       ///< given by set-up, >= 0; key of `active_trans` and of the probability maps
    std::string name; ///< "Nominal" marks the nominal transition
    StateVar* stateVar = nullptr;    ///< the variable whose value it changes; not owned
    Atom* atom = nullptr;            ///< the value that it leads to; not owned
    double proba = 0.0;              ///< its probability per step, 0..1
    double weight = 0.0;             ///< `proba` over the number of the component's transitions
    double guardProba = 0.0;         ///< `proba` over the number of the variable's guards
    StateFormula* guard = nullptr;   ///< what must hold before; null: always
    StateFormula* formula = nullptr; ///< what holds after it fired; null: nothing that is known
    bool idle = false;               ///< fires without a command
    bool commanded = true;           ///< set-up clears it when no command can cause the transition
    std::string type;                ///< "Fail" for a fault, "Repair" for what mends one

    /// Ensures: a transition of nothing, with probability 0.
    Transition() = default;
    Transition(const Transition&) = delete;
    Transition& operator=(const Transition&) = delete;

    /// A copy of `type`.
    std::string getType() const { return type; }
    /// Prints `transition ID VARIABLE: NAME (PROBA)` and a newline to std::cout; VARIABLE is empty when the
    /// transition has none.
    void showTransition() const;
};
