#include "tests/reference/PlainEngine.h"

#include <ctime>
#include <iostream>

bool PlainEngine::blockedCommand(TrajEl* el)
{
    return el->getStateVar()->type == "Command" && el->getStateVar()->commandBlocked;
}

std::vector<ItmsRes*>* PlainEngine::addPropositions(SignedEls* props, ElMap* /*unusedEls*/,
                                                    State* state, std::vector<ItmsRes*>* results,
                                                    const bool& typeRules, const double& maxRank,
                                                    const double& /*unusedBound*/, Trajectory* traj,
                                                    const int& rank, const bool& adding)
{
    searchWork = SearchWork{};
    std::vector<const char*> ids;
    const std::clock_t start = std::clock();
    if (adding) {
        addingPropositions = true;
    }
    std::unique_ptr<std::vector<ItmsRes*>> own; // the caller's once this returns
    if (results == nullptr) {
        own = std::make_unique<std::vector<ItmsRes*>>();
        results = own.get();
    }
    if (!typeRules || state->computeProbas) {
        initPb(state);
    }
    auto record = std::make_unique<ItmsRes>(state);
    for (auto& entry : *props) {
        TrajEl* el = entry.second;
        ids.push_back(el->getId());
        if (!entry.first) {
            if (blockedCommand(el)) {
                abandonedRecords_.push_back(std::move(record));
                own.release();
                return results;
            }
            el->setLabel("false");
        } else {
            if (el->getLabel() == "false" && el->atom->fail) {
                const double r =
                    traj->currentRank - traj->getStateRank(state) + state->wkstRank + 1.0;
                if (r > maxRank) {
                    abandonedRecords_.push_back(std::move(record));
                    own.release();
                    return results;
                }
            }
            if (blockedCommand(el)) {
                abandonedRecords_.push_back(std::move(record));
                own.release();
                return results;
            }
            el->setLabel("true");
        }
        (*record->already_changed)[el->getId()] = el;
    }
    unitPropagate(record.release(), results, typeRules, maxRank, traj, rank);
    std::cout << "[addClause] --> res' size : " << results->size() << std::endl;
    const double seconds = static_cast<double>(std::clock() - start) / 1000000.0;
    addItmsBmkEntry(seconds, static_cast<unsigned int>(results->size()), &ids);
    addingPropositions = false;
    own.release();
    return results;
}

void PlainEngine::checkAround(ElMap* focus, ItmsRes* record, Trajectory* traj, const int& rank)
{
    checkForFocusedInternalConflicts(focus, record->constraints, record->state, traj, rank);
    checkForFocusedConflicts(focus, record->constraints, record->state, traj, rank);
}

// Propagates and resolves until the record, or the child that took its place, is complete; null when a conflict
// has no way out.
ItmsRes* PlainEngine::workOn(ItmsRes* record, std::stack<ItmsRes*>* agenda, const bool& typeRules,
                             const double& maxRank, Trajectory* traj, const int& rank)
{
    for (;;) {
        const bool waiting = !record->constraints->empty();
        Clause* unit = getFirstUnitClause(record->retracted, record->state, traj, rank);
        if (unit == nullptr && !waiting) {
            return record;
        }
        if (unit != nullptr) {
            propagateClause(unit, record->state, traj, rank);
        }
        while (!record->constraints->empty()) {
            Clause* clause = record->constraints->front();
            record->constraints->pop();
            if (testClause(clause, record->state, traj, rank)) {
                continue;
            }
            record =
                propagateThroughConflict(clause, record, agenda, typeRules, maxRank, traj, rank);
            if (record == nullptr) {
                return nullptr;
            }
        }
        checkAround(record->focus, record, traj, rank);
    }
}

void PlainEngine::unitPropagate(ItmsRes* res, std::vector<ItmsRes*>* results, const bool& typeRules,
                                const double& maxRank, Trajectory* traj, const int& rank)
try {
    live_.clear();
    live_.insert(res);
    std::stack<ItmsRes*> agenda;
    bool refocus = false;
    for (auto& entry : *res->already_changed) {
        resupportDependence(entry.second, res->focus, res->state, traj, rank);
    }
    checkAround(res->already_changed, res, traj, rank);
    agenda.push(res);
    std::cout << "a sol has been discarded...\n";
    while (!agenda.empty()) {
        if (refocus) {
            checkAround(agenda.top()->focus, agenda.top(), traj, rank);
            refocus = false;
        }
        ItmsRes* record = agenda.top();
        agenda.pop();
        record = workOn(record, &agenda, typeRules, maxRank, traj, rank);
        if (record == nullptr) {
            if (!agenda.empty()) {
                refocus = true;
            }
            std::cout << "a sol has been discarded...\n";
            continue;
        }
        sortPostProbs(record->state);
        results->push_back(record);
        ++searchWork.candidates;
        if (record->state->computeProbas) {
            computeObsCondRough(record->state);
        }
        std::cout << "sol added !\n";
        std::cout << "agenda's size : " << agenda.size() << std::endl;
        std::cout << "already_changed's size end : " << record->already_changed->size() << std::endl;
        refocus = true;
    }
} catch (const SearchTooLarge&) {
    std::erase_if(*results, [this](ItmsRes* record) { return live_.contains(record); });
    for (ItmsRes* record : live_) {
        record->clear();
        delete record;
    }
    live_.clear();
    throw;
}

void PlainEngine::release(ItmsRes* record)
{
    live_.erase(record);
    record->clear();
    delete record;
}
