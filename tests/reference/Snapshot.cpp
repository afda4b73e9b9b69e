#include "tests/reference/Snapshot.h"

#include "model/DataManager.h"

#include <array>
#include <cmath>
#include <cstdio>

std::string text(double number)
{
    if (std::isnan(number)) {
        return "nan";
    }
    std::array<char, 64> buffer{};
    std::snprintf(buffer.data(), buffer.size(), "%a", number);
    return buffer.data();
}

std::string text(TrajEl* el, const State* state)
{
    if (el == nullptr) {
        return "null";
    }
    const auto found = state->elements->find(el->getId());
    const bool own = found != state->elements->end() && found->second == el;
    return own ? el->getId() : std::string(el->getId()) + "(not the state's)";
}

std::string text(const ElMap* els, const State* state)
{
    if (els == nullptr) {
        return "null";
    }
    std::string out;
    for (const auto& [id, el] : *els) {
        out += std::string(id) + "->" + text(el, state) + " ";
    }
    return out;
}

std::string text(const std::vector<TrajEl*>& els, const State* state)
{
    std::string out;
    for (TrajEl* el : els) {
        out += text(el, state) + " ";
    }
    return out;
}

std::string text(std::queue<Clause*> clauses, const RandomModel& model)
{
    std::string out;
    for (; !clauses.empty(); clauses.pop()) {
        out += model.nameOf(clauses.front()) + " ";
    }
    return out;
}

std::string text(const std::vector<Atom*>* atoms)
{
    if (atoms == nullptr) {
        return "null";
    }
    std::string out;
    for (const Atom* atom : *atoms) {
        out += atom->id + " ";
    }
    return out;
}

namespace {

std::string distributionText(const ProbMap* distribution)
{
    if (distribution == nullptr) {
        return "null";
    }
    std::string out;
    for (const auto& [id, probability] : *distribution) {
        out += std::to_string(id) + ":" + text(probability) + " ";
    }
    return out;
}

std::string element(const char* id, TrajEl* el, const State* state, const RandomModel& model)
{
    std::string out = id;
    if (el == nullptr) {
        return out + " null\n";
    }
    out += el->getId() == id ? "" : std::string(" under another key than ") + el->getId();
    out += " '" + el->label + "' support " + model.nameOf(el->support) + " depth " +
           std::to_string(el->propagationNumber) + " lock " + std::to_string(el->lock);
    if (el->transition != nullptr) {
        out += " transition " + std::to_string(el->transition->id);
    }
    return out + " dependents " + text(*el->dependents, state) + "\n";
}

} // namespace

std::string snapshot(const State* state, const RandomModel& model)
{
    std::string out = "rank " + text(state->wkstRank) + " of " + text(state->rank) + " likelihood " +
                      text(state->obsCondProba) + (state->computeProbas ? " computeProbas" : "") +
                      (state->unknown ? " unknown" : "") + "\n";
    for (const auto& [id, el] : *state->elements) {
        out += element(id, el, state, model);
    }
    out += "postProbs " + distributionText(state->postProbs) + "\nsorted ";
    for (const auto& [probability, id] : *state->sortedPostProbs) {
        out += text(probability) + ":" + std::to_string(id) + " ";
    }
    out += "\n";
    for (const auto& [id, distribution] : *state->condProbs) {
        out += std::string("given ") + id + " " + distributionText(distribution) + "\n";
    }
    out += "comps ";
    for (const auto& [name, comp] : *state->comps) {
        out += std::string(name) + "->" + comp->name + " ";
    }
    return out + "\n";
}

std::string snapshot(const ItmsRes* record, const RandomModel& model)
{
    return snapshot(record->state, model) + "already_changed " +
           text(record->already_changed, record->state) + "\nfocus " +
           text(record->focus, record->state) + "\nretracted " +
           text(*record->retracted, record->state) + "\nconstraints " +
           text(*record->constraints, model) + "\n";
}

std::string snapshotRegistry(const std::vector<StateVar*>* stateVars)
{
    std::string out = "atoms ";
    for (const auto& [id, atom] : *DataManager::active_atoms) {
        out += std::string(id) + "->" + (atom == nullptr ? "null" : atom->id) + " ";
    }
    out += "\ntransitions ";
    for (const auto& [id, transition] : *DataManager::active_trans) {
        out += std::to_string(id) + "->" + std::to_string(transition->id) + " " +
               transition->stateVar->comp->name + transition->name + " ";
    }
    out += "\nvariables ";
    if (stateVars == nullptr) {
        out += "null";
    } else {
        for (const StateVar* variable : *stateVars) {
            out += variable->comp->name + "." + variable->name + " ";
        }
    }
    out += "\nentries " + std::to_string(DataManager::itmsBmkEntries.size());
    for (const ItmsBmkEntry& entry : DataManager::itmsBmkEntries) {
        out += " (" + std::to_string(entry.count);
        for (const std::string& id : entry.ids) {
            out += " " + id;
        }
        out += entry.seconds >= 0.0 ? ")" : " negative time)";
    }
    return out + "\n";
}

std::string snapshotModel(const RandomModel& model)
{
    std::string out;
    for (const Atom* atom : model.atoms) {
        out += atom->id + " '" + atom->label + "' initTrue " + std::to_string(atom->initTrue) +
               " proba " + text(atom->compiledProba) + " guards " +
               std::to_string(atom->guardsNumber) + (atom->deadEnd ? " deadEnd" : "") + " comps ";
        for (const auto& [name, comp] : *atom->comps) {
            out += std::string(name) + "->" + comp->name + " ";
        }
        out += "out ";
        for (const Transition* transition : *atom->outTransitions) {
            out += std::to_string(transition->id) + " ";
        }
        out += "\n";
    }
    for (const Transition* transition : model.transitions) {
        out += std::to_string(transition->id) + " " + transition->name + " weight " +
               text(transition->weight) + " guardProba " + text(transition->guardProba) +
               (transition->commanded ? " commanded" : "") + "\n";
    }
    for (const StateVar* variable : model.variables) {
        out += variable->comp->name + "." + variable->name + " guards " +
               std::to_string(variable->guardsNumber) + "\n";
    }
    for (const Comp* comp : model.comps) {
        out += comp->name + " atoms ";
        for (const auto& [id, atom] : *comp->atoms) {
            out += std::string(id) + "->" + atom->id + " ";
        }
        out += "\n";
    }
    return out;
}
