// The propagation driver: a depth-first loop over open candidate records.
//
// Within a record unit propagation and the resolution of violated clauses take turns until neither has anything
// left to do: then the record is a candidate. Where the violated clause (!ok | !a | y) can be resolved in three
// ways, the loop goes on with the first of the three records and leaves two on the agenda, a stack. The line that
// announces a discarded candidate is printed once at the start as well.
//
// Invariants: a record is on the agenda, being worked on, among the results, or released, and never in two of
// these places; its queue holds the clauses that were found violated on the way to it, and one that holds again
// when its turn comes is passed over.
//
// Cost: the number of records is bounded by nothing but the fault bound and DataManager::searchLimits. A limit is
// looked at where the next record would be taken up or expanded; everything still open is released then.
//
// Source: unit propagation is that of "A machine program for theorem-proving", Communications of the ACM 5
// (1962), except that an unknown element is set to "true" whatever its sign.
#include "engine/itms.h"
#include "model/trace.h"

void itms::unitPropagate(ItmsRes* res, std::vector<ItmsRes*>* results, const bool& typeRules,
                         const double& maxRank, Trajectory* traj, const int& rank)
{
    searchWork = SearchWork{};
    searchWork.begun = true;
    searchStart_ = std::chrono::steady_clock::now();
    Search search{*results, typeRules, maxRank, traj, rank, {}};
    for (const auto& [id, el] : *res->already_changed) {
        if (overspent(el->atom->clauses->size())) break;
        resupportDependence(el, res->focus, res->state, traj, rank);
    }
    checkAround(res->already_changed, res, search);
    search.agenda.push(res);
    std::cout << "a sol has been discarded...\n";
    bool refocus = false;
    while (!search.agenda.empty()) {
        if (limitReached()) {
            abandonAgenda(search);
            return;
        }
        ItmsRes* record = search.agenda.top();
        if (refocus) {
            checkAround(record->focus, record, search);
        }
        search.agenda.pop();
        record = complete(record, search);
        if (record) {
            accept(record, search);
        } else if (searchWork.partial) {
            abandonAgenda(search);
            return;
        } else {
            std::cout << "a sol has been discarded...\n";
        }
        refocus = true;
    }
}

void itms::checkAround(ElMap* focus, ItmsRes* record, const Search& search)
{
    if (overspent(focus->size())) return;
    checkForFocusedInternalConflicts(focus, record->constraints, record->state, search.traj,
                                     search.rank);
    checkForFocusedConflicts(focus, record->constraints, record->state, search.traj, search.rank);
}

// Works on a record, or on the first descendants of it, until nothing is left to propagate or to resolve.
// Null when no alternative is left, or when a limit was met.
ItmsRes* itms::complete(ItmsRes* record, Search& search)
{
    for (;;) {
        const bool conflictsOpen = !record->constraints->empty();
        Clause* unit =
            getFirstUnitClause(record->retracted, record->state, search.traj, search.rank);
        if (searchWork.partial) { // what was not looked at may be in conflict
            release(record);
            return nullptr;
        }
        if (!unit && !conflictsOpen) {
            return record;
        }
        if (unit) {
            propagateClause(unit, record->state, search.traj, search.rank);
        }
        record = resolveConflicts(record, search);
        if (!record) {
            return nullptr;
        }
        checkAround(record->focus, record, search);
    }
}

ItmsRes* itms::resolveConflicts(ItmsRes* record, Search& search)
{
    while (!record->constraints->empty()) {
        Clause* conflict = record->constraints->front();
        record->constraints->pop();
        if (testClause(conflict, record->state, search.traj, search.rank)) {
            continue;
        }
        if (limitReached()) {
            release(record);
            return nullptr;
        }
        Expansion expansion{conflict,       record,      search.typeRules,
                            search.maxRank, search.traj, search.rank};
        expand(expansion);
        for (ItmsRes* other : expansion.others) {
            search.agenda.push(other);
        }
        record = expansion.first;
        if (!record) {
            return nullptr;
        }
        if (searchWork.partial) {
            release(record);
            return nullptr;
        }
    }
    return record;
}

void itms::accept(ItmsRes* record, Search& search)
{
    // Candidates of a search that is watched go on sharing their distributions: copies of a large model's may be most of its memory.
    if (!searchLimits.watch) {
        record->state->detach();
    }
    sortPostProbs(record->state);
    search.results.push_back(record);
    ++searchWork.candidates;
    if (record->state->computeProbas) {
        computeObsCondRough(record->state);
    }
    std::cout << "sol added !\n";
    std::cout << "agenda's size : " << search.agenda.size() << std::endl;
    std::cout << "already_changed's size end : " << record->already_changed->size() << std::endl;
}

bool itms::limitReached()
{
    SearchLimit limit = SearchLimit::none;
    if (searchWork.records >= searchLimits.maxRecords) {
        limit = SearchLimit::records;
    } else if (searchWork.candidates >= searchLimits.maxCandidates) {
        limit = SearchLimit::candidates;
    } else if (searchLimits.stop && *searchLimits.stop) {
        limit = SearchLimit::stopped;
    } else if (searchLimits.maxSeconds != std::numeric_limits<double>::infinity()) {
        const std::chrono::duration<double> elapsed =
            std::chrono::steady_clock::now() - searchStart_;
        if (elapsed.count() >= searchLimits.maxSeconds) {
            limit = SearchLimit::seconds;
        }
    }
    if (limit == SearchLimit::none) {
        return overspent(1);
    }
    searchWork.partial = true;
    searchWork.limit = limit;
    return true;
}

// Within a record. What was begun is given up, as at the other limits.
bool itms::overspent(std::uint64_t work)
{
    const SearchLimit limit =
        searchLimits.watch ? searchLimits.watch->take(work) : SearchLimit::none;
    if (limit == SearchLimit::none) {
        return false;
    }
    searchWork.partial = true;
    searchWork.limit = limit;
    return true;
}

void itms::release(ItmsRes* record)
{
    record->clear();
    delete record;
}

void itms::abandonAgenda(Search& search)
{
    for (; !search.agenda.empty(); search.agenda.pop()) {
        release(search.agenda.top());
    }
}
