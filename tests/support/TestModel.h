// A small model made by hand, active in the registry while it lives.
//
//     TestModel model;
//     Comp* valve = model.comp("valve");
//     StateVar* mode = model.variable(valve, "mode", "Mode", {"ok", "stuck!"});    // `!` marks a fault
//     model.clause({{false, mode, "ok"}, ...});
#pragma once

#include "engine/itms.h"

#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

/// Owns the objects of a model and puts them into DataManager, which it resets when it dies.
class TestModel {
public:
    TestModel();
    ~TestModel();
    TestModel(const TestModel&) = delete;
    TestModel& operator=(const TestModel&) = delete;

    /// A component, entered among the active ones; its `altName` is its name.
    Comp* comp(const std::string& name);
    /// A variable with an atom per value, entered in the component (a "Command" as a CommandVar) and, by atom,
    /// in the component's `atoms` and the active atoms. `!` after a value marks a fault. The first value is the
    /// initial one.
    StateVar* variable(Comp* comp, const std::string& name, const std::string& type,
                       std::initializer_list<std::string_view> values);
    /// The two kinds of domain clauses of a variable: some value, and no two of them. They become the variable's
    /// own clauses and stand in its atoms' `clauses`.
    void domainClauses(StateVar* variable);
    /// The atom `COMPONENT.VARIABLE=VALUE`; ends the program when there is none.
    Atom* atom(const std::string& id);

    struct Literal {
        bool negated;
        Atom* atom;
    };
    /// A clause with the literals inserted in the given order; in each atom's `clauses` once, and in
    /// `DataManager::cls` when `global` is true.
    Clause* clause(std::initializer_list<Literal> literals, bool global = true);
    Clause* clause(const std::vector<Literal>& literals, bool global = true);
    /// The same from a text: "!a.mode=ok | b.out=1".
    Clause* clause(const std::string& text, bool global = true);

    /// A transition of the variable to `to`, named `name`, entered in the component and in the target's
    /// `transitions`; its formula is the target's atom, its guard has the given signed atoms (null: no guard).
    Transition* transition(Atom* to, const std::string& name, double proba,
                           const std::string& type = "");
    /// Gives the transition a guard; the atoms list it among their `outTransitions`.
    StateFormula* guard(Transition* transition, const std::vector<Literal>& mustHold);
    StateFormula* formula(const std::string& op, const std::vector<std::pair<bool, Atom*>>& atoms);

    /// A state with an element for every atom of the named components, labelled with the atoms' own labels, the
    /// components entered in it. The caller owns it.
    State* state(const std::vector<Comp*>& comps);

private:
    std::vector<std::unique_ptr<Comp>> comps_;
    std::vector<std::unique_ptr<StateVar>> variables_;
    std::vector<std::unique_ptr<CommandVar>> commands_;
    std::vector<std::unique_ptr<Atom>> atoms_;
    std::vector<std::unique_ptr<Clause>> clauses_;
    std::vector<std::unique_ptr<Transition>> transitions_;
    std::vector<std::unique_ptr<StateFormula>> formulas_;
};

/// Takes what goes to std::cout while it lives.
class CapturedTrace {
public:
    CapturedTrace();
    ~CapturedTrace();
    CapturedTrace(const CapturedTrace&) = delete;
    CapturedTrace& operator=(const CapturedTrace&) = delete;

    /// What was printed since construction, or since the last call.
    std::string take();

private:
    std::unique_ptr<std::stringbuf> buffer_;
    std::streambuf* previous_;
};

/// Keeps std::cout in a failed state while it lives.
class MutedTrace {
public:
    MutedTrace();
    ~MutedTrace();
    MutedTrace(const MutedTrace&) = delete;
    MutedTrace& operator=(const MutedTrace&) = delete;
};
