// Operations on probabilities, and those of set-up.
#pragma once

#include "tests/reference/Bench.h"

template <class Engine> struct ProbabilityOperations {
    using B = Bench<Engine>;
    static constexpr auto all()
    {
        return std::to_array<void (*)(B&)>(
            {initStateProbas, sortPostProbs, computeObsCondRough, computeCondProbRough, reach,
             entropyOfVariable, entropyOfVariable, entropyOfAtom, predictedAtoms, probaCondObsAtom,
             intersectClauses, deadEndAtom, loadAtoms, idTransitions, initialize});
    }

    static void initStateProbas(B& b)
    {
        if (b.random.chance(50)) {
            b.engine.initStateProbas(b.state());
        } else {
            b.engine.initPb(b.state());
        }
        b.note("initStateProbas");
    }
    static void sortPostProbs(B& b)
    {
        b.engine.sortPostProbs(b.state());
        b.note("sortPostProbs");
    }
    static void computeObsCondRough(B& b)
    {
        b.engine.computeObsCondRough(b.state());
        b.note("computeObsCondRough");
    }
    static void computeCondProbRough(B& b)
    {
        if (b.model.transitions.empty()) {
            return;
        }
        TrajEl* el = b.element();
        ElMap els = b.elementMap();
        Transition* transition = b.random.pick(b.model.transitions);
        b.note("computeCondProbRough",
               text(b.engine.computeCondProbRough(el, transition, b.state(),
                                                  b.random.chance(50) ? &els : nullptr)));
    }
    static void reach(B& b)
    {
        StateFormula* formula = b.model.formula("and", b.random.below(3));
        Atom* atom = b.atom();
        std::string out = b.engine.checkInOpposites(atom, formula->getAtoms()) ? "1" : "0";
        out += b.engine.checkInImportedComps(atom, formula->getAtoms()) ? "1" : "0";
        b.note("checkInOpposites, checkInImportedComps", out);
    }
    static void entropyOfVariable(B& b)
    {
        StateVar* variable = b.variable();
        for (const Atom* atom : *variable->atomLinks) {
            b.engine.getElt(atom->getId(), b.state(), b.traj, b.time);
        }
        ElMap els = b.elementMap();
        b.note("entropy of a variable", text(b.engine.entropy(variable, b.state(), &els)));
    }
    static void entropyOfAtom(B& b)
    {
        Atom* atom = b.atom();
        const auto given = b.state()->condProbs->find(atom->getId());
        if (given == b.state()->condProbs->end() || given->second == nullptr) {
            return;
        }
        State copy(b.state(), true);
        b.note("entropy of an atom, on a copy", text(b.engine.entropy(atom, &copy, nullptr)));
        b.note("entropy of an atom", text(b.engine.entropy(atom, b.state(), nullptr)));
    }
    static void predictedAtoms(B& b)
    {
        std::vector<Atom*> accumulator = b.atoms();
        Atom* atom = b.atom();
        const auto* returned = b.engine.predictedAtoms(atom, &accumulator);
        b.note("predictedAtoms",
               std::string(returned == &accumulator ? "same " : "other ") + text(returned));
        const std::unique_ptr<std::vector<Atom*>> own(b.engine.predictedAtoms(atom, nullptr));
        b.note("predictedAtoms, own vector", text(own.get()));
    }
    static void probaCondObsAtom(B& b)
    {
        std::vector<Atom*> observed = b.atoms();
        b.note("probaCondObsAtom", text(b.engine.probaCondObsAtom(b.atom(), &observed)));
    }
    static void intersectClauses(B& b)
    {
        std::vector<Clause*> first = b.clauses();
        std::vector<Clause*> second = b.clauses();
        b.note("intersectClauses", b.engine.intersectClauses(&first, &second));
        std::vector<Atom*> atoms = b.atoms();
        b.note("intersectClauses of atoms", b.engine.intersectClauses(b.atom(), &atoms));
    }
    static void deadEndAtom(B& b)
    {
        Atom* atom = b.atom();
        atom->deadEnd = b.random.chance(20);
        b.engine.deadEndAtom(atom);
        b.note("deadEndAtom", atom->deadEnd);
    }
    static void loadAtoms(B& b)
    {
        std::vector<Clause*> clauses = b.clauses();
        const std::unique_ptr<AtomMap> atoms(b.engine.loadAtoms(&clauses));
        std::string out;
        for (const auto& [id, atom] : *atoms) {
            out += std::string(id) + "->" + atom->id + " ";
        }
        b.note("loadAtoms", out);
    }
    static void idTransitions(B& b)
    {
        int counter = b.random.between(0, 150);
        b.engine.idTransitions(b.random.pick(b.model.comps), counter);
        b.note("idTransitions", std::to_string(counter) + "\n" +
                                    snapshotRegistry(b.engine.stateVars) + snapshotModel(b.model));
    }
    static void initialize(B& b)
    {
        b.engine.compileTransitionsProb(b.atom());
        b.note("compileTransitionsProb", snapshotModel(b.model));
        b.engine.initialize();
        b.note("initialize", snapshotModel(b.model));
    }
};
