// Operations that change labels, supports and dependents, the search among them.
#pragma once

#include "tests/reference/Bench.h"

template <class Engine> struct RepairOperations {
    using B = Bench<Engine>;
    static constexpr auto all()
    {
        return std::to_array<void (*)(B&)>(
            {setSupport, setSupport, setSupport, propagateClause, maxPropagationNumber,
             isResupportable, isResupportable, resupportDependence, resupportDependence,
             deleteClause, deleteClause, copiedRecord, propagateThroughConflict,
             propagateThroughConflict, propagateThroughConflict, unitPropagate, unitPropagate});
    }

    static void setSupport(B& b)
    {
        Clause* clause = b.presentClause();
        TrajEl* el = b.element();
        if (b.random.chance(80) && !clause->literals->empty()) {
            el = (*b.state()->elements)[clause->literals->begin()->second->getId()];
        }
        b.engine.setSupport(clause, el, b.state(), b.traj, b.time);
        b.note("setSupport");
    }
    static void propagateClause(B& b)
    {
        if (Clause* clause = b.clauseWith("unknown")) {
            b.engine.propagateClause(clause, b.state(), b.traj, b.time);
            b.note("propagateClause");
        }
    }
    static void maxPropagationNumber(B& b)
    {
        TrajEl* el = b.element();
        b.note("maxPropagationNumber", std::to_string(b.engine.maxPropagationNumber(
                                           b.clause(), el, b.state(), b.traj, b.time)));
    }
    static void isResupportable(B& b)
    {
        TrajEl* el = b.element();
        Clause* clause = b.clause();
        if (b.random.chance(70) && !el->atom->clauses->empty()) {
            clause = b.random.pick(*el->atom->clauses);
        }
        for (const bool sign : {false, true}) {
            b.note("isResupportable",
                   b.engine.isResupportable(el, clause, sign, b.state(), b.traj, b.time));
        }
    }
    static void resupportDependence(B& b)
    {
        TrajEl* el = b.element();
        ElMap focus = b.elementMap();
        State other(b.state(), true);
        for (const auto& [id, own] : *other.elements) {
            if (own != nullptr && b.random.chance(10)) {
                focus[id] = own; // an entry that is there already stays, whatever it holds
            }
        }
        b.engine.resupportDependence(el, &focus, b.state(), b.traj, b.time);
        b.note("resupportDependence", text(&focus, b.state()));
    }
    static void deleteClause(B& b)
    {
        TrajEl* el = b.element();
        std::vector<TrajEl*> out = b.elements();
        const auto* returned = b.engine.deleteClause(el, &out, b.state(), b.traj, b.time);
        b.note("deleteClause",
               std::string(returned == &out ? "same " : "other ") + text(out, b.state()));
    }
    static void copiedRecord(B& b)
    {
        ItmsRes* parent = b.record();
        ItmsRes* child = new ItmsRes(parent->state, parent->constraints);
        child->already_changed = b.engine.copyState(parent->already_changed, child->state);
        b.note("record", snapshot(parent, b.model));
        b.note("its copy", snapshot(child, b.model));
        discard(parent);
        discard(child);
    }
    static void propagateThroughConflict(B& b)
    {
        ItmsRes* parent = b.record();
        ItmsRes* open = b.record();
        std::stack<ItmsRes*> agenda;
        agenda.push(open);
        const bool typeRules = b.random.chance(30);
        const double maxRank = b.random.between(0, 3);
        Clause* conflict = b.clause();
        if (b.random.chance(25)) {
            giveImplicates(b, conflict);
        }
        ItmsRes* first = b.engine.propagateThroughConflict(conflict, parent, &agenda, typeRules,
                                                           maxRank, b.traj, b.time);
        b.note("propagateThroughConflict", first ? snapshot(first, b.model) : "null");
        for (; !agenda.empty(); agenda.pop()) {
            b.note("on the agenda",
                   std::string(agenda.top() == open ? "the open one\n" : "a child\n") +
                       snapshot(agenda.top(), b.model));
            discard(agenda.top());
        }
        if (first) {
            discard(first);
        }
    }
    // Implicates for every atom of the clause: where faults are among them, sets are rejected.
    static void giveImplicates(B& b, const Clause* clause)
    {
        if (b.engine.piTable == nullptr) {
            b.engine.piTable = DataManager::newPiTable();
        }
        for (const auto& [negated, atom] : *clause->literals) {
            b.engine.piTable->addPIAtom(atom, b.model.implicateSets());
        }
    }
    static void unitPropagate(B& b)
    {
        ItmsRes* record = b.record();
        Records found;
        const bool typeRules = b.random.chance(30);
        const double maxRank = b.random.between(0, 3);
        DataManager::searchWork = SearchWork{};
        b.engine.unitPropagate(record, &found.list, typeRules, maxRank, b.traj, b.time);
        b.note("unitPropagate", std::to_string(found.list.size()) + " " + searchWorkText());
        for (const ItmsRes* each : found.list) {
            b.note("found", snapshot(each, b.model));
        }
    }
};
