// Operations that look: elements, clauses, conflicts, formulas, printouts.
#pragma once

#include "tests/reference/Bench.h"

template <class Engine> struct EvaluationOperations {
    using B = Bench<Engine>;
    static constexpr auto all()
    {
        return std::to_array<void (*)(B&)>(
            {getElt, copyState, evalAtomOnLabels, testClause, unitClause, unitClauseOfAtom,
             unitClauseOfModel, unitClauseOfElements, getUnknown, getNotUnknown, getStateVars,
             membership, internalConflicts, focusedConflicts, allConflicts, formula, viewAtoms,
             viewConflicts});
    }

    static void getElt(B& b)
    {
        Atom* atom = b.atom();
        const bool add = b.random.chance(50);
        b.note("getElt", b.name(b.engine.getElt(atom->getId(), b.state(), b.traj, b.time, add)));
    }
    static void copyState(B& b)
    {
        State source(b.state(), true);
        ElMap from;
        for (Atom* atom : b.atoms()) {
            TrajEl* el = b.engine.getElt(atom->getId(), &source, b.traj, b.time);
            from[atom->getId()] = el;
        }
        const std::unique_ptr<ElMap> copy(b.engine.copyState(&from, b.state()));
        b.note("copyState", text(copy.get(), b.state()));
    }
    static void evalAtomOnLabels(B& b)
    {
        Clause* clause = b.clause();
        std::string out;
        for (auto it = clause->literals->begin(); it != clause->literals->end(); ++it) {
            out += b.engine.evalAtomOnLabels(it, b.state(), b.traj, b.time) + "; ";
        }
        b.note("evalAtomOnLabels", out);
    }
    static void testClause(B& b)
    {
        b.note("testClause", b.engine.testClause(b.clause(), b.state(), b.traj, b.time));
    }
    static void unitClause(B& b)
    {
        b.note("unitClause", b.name(b.engine.unitClause(b.clause(), b.state(), b.traj, b.time)));
    }
    static void unitClauseOfAtom(B& b)
    {
        b.note("getFirstUnitClause of an atom",
               b.name(b.engine.getFirstUnitClause(b.atom(), b.state(), b.traj, b.time)));
    }
    static void unitClauseOfModel(B& b)
    {
        b.note("getFirstUnitClause", b.name(b.engine.getFirstUnitClause(b.state(), b.traj, b.time)));
    }
    static void unitClauseOfElements(B& b)
    {
        std::vector<TrajEl*> els = b.elements();
        b.note("getFirstUnitClause of elements",
               b.name(b.engine.getFirstUnitClause(&els, b.state(), b.traj, b.time)));
    }
    static void getUnknown(B& b)
    {
        b.note("getUnknown", b.name(b.engine.getUnknown(b.clause(), b.state(), b.traj, b.time)));
    }
    static void getNotUnknown(B& b)
    {
        const std::unique_ptr<SignedEls> unknowns(
            b.engine.getNotUnknown(b.clause(), b.state(), b.traj, b.time));
        std::string out;
        for (const auto& [sign, el] : *unknowns) {
            out += std::string(sign ? "!" : "") + b.name(el) + " ";
        }
        b.note("getNotUnknown", out);
    }
    static void getStateVars(B& b)
    {
        std::vector<TrajEl*> els = b.elements();
        const std::unique_ptr<StateVarMap> variables(b.engine.getStateVars(&els));
        std::string out;
        for (const auto& [name, variable] : *variables) {
            out += std::string(name) + "->" + variable->comp->name + "." + variable->name + " ";
        }
        b.note("getStateVars", out);
    }
    static void membership(B& b)
    {
        std::vector<Atom*> atoms = b.atoms();
        std::vector<TrajEl*> els = b.elements();
        std::vector<Clause*> clauses = b.clauses();
        std::vector<StateVar*> variables = b.some([&] { return b.variable(); });
        std::vector<Transition*> transitions = b.model.transitions;
        std::vector<std::string> copies;
        std::vector<const char*> ids;
        for (const Atom* atom : atoms) {
            copies.push_back(atom->id);
        }
        for (const std::string& copy : copies) {
            ids.push_back(copy.c_str());
        }
        Atom* atom = b.atom();
        std::string out;
        out += b.engine.inVector(atom, &atoms) ? "1" : "0";
        out += b.engine.inVector(atom->getId(), &ids) ? "1" : "0";
        out += b.engine.inVector(b.element(), &els) ? "1" : "0";
        out += b.engine.inVectorClause(b.clause(), &clauses) ? "1" : "0";
        out += b.engine.inVectorStateVar(b.variable(), &variables) ? "1" : "0";
        out += b.engine.inMultimap(atom, b.clause()->literals) ? "1" : "0";
        if (!transitions.empty()) {
            Transition* transition = transitions.back();
            transitions.resize(b.random.below(transitions.size() + 1));
            out += b.engine.inVector(transition, &transitions) ? "1" : "0";
        }
        b.note("membership", out);
    }
    static void internalConflicts(B& b)
    {
        TrajEl* el = b.element();
        b.note("checkForInternalConflicts",
               b.name(b.engine.checkForInternalConflicts(el, b.state(), b.traj, b.time)));
    }
    static void focusedConflicts(B& b)
    {
        ElMap focus = b.elementMap();
        std::queue<Clause*> out;
        b.engine.checkForFocusedInternalConflicts(&focus, &out, b.state(), b.traj, b.time);
        b.note("checkForFocusedInternalConflicts", text(out, b.model));
        b.engine.checkForFocusedConflicts(&focus, &out, b.state(), b.traj, b.time);
        b.note("checkForFocusedConflicts", text(out, b.model));
    }
    static void allConflicts(B& b)
    {
        std::vector<Clause*> out = b.clauses();
        b.engine.checkForConflicts(b.random.chance(70) ? &out : nullptr, b.state(), b.traj, b.time);
        b.note("checkForConflicts", b.names(out));
    }
    static void formula(B& b)
    {
        const std::string op =
            b.random.pick(std::vector<std::string>{"and", "", "or", "or", "AND", "not", "and or"});
        StateFormula* made = b.model.formula(op, b.random.below(4));
        if (b.random.chance(15)) {
            delete made->atoms;
            made->atoms = nullptr;
        }
        const int step = b.random.between(0, 3);
        b.note("evalStateFormula '" + op + "'", b.engine.evalStateFormula(made, b.traj, step));
    }
    static void viewAtoms(B& b)
    {
        std::vector<Atom*> atoms = b.atoms();
        std::multimap<std::string, Atom*, eqstring> byName;
        AtomMap byId;
        for (Atom* atom : atoms) {
            byName.insert({b.random.pick(std::vector<std::string>{"b", "a", "c"}), atom});
            byId[atom->getId()] = atom;
        }
        b.engine.viewAtomVector(&atoms);
        b.note("viewAtomVector");
        b.engine.viewAtomVectorId(&atoms);
        b.note("viewAtomVectorId");
        b.engine.viewMultimapAtom(&byName);
        b.note("viewMultimapAtom");
        b.engine.viewHashMapAtom(&byId);
        b.note("viewHashMapAtom");
    }
    static void viewConflicts(B& b)
    {
        std::vector<Clause*> first = b.clauses();
        std::vector<Clause*> second = b.clauses();
        NumberMap<std::vector<Clause*>*> byStep;
        byStep[b.random.between(0, 300)] = &first;
        byStep[b.random.between(0, 300)] = nullptr;
        byStep[b.random.between(0, 300)] = &second;
        b.engine.viewTrajectoryConflicts(&byStep);
        b.note("viewTrajectoryConflicts");
        b.engine.viewClauseVector(&first);
        b.note("viewClauseVector");
    }
};
