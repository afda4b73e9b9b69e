// Adding propositions: the entry of one time step.
//
// Labels are written in the order of the propositions, before anything is propagated, so a later proposition
// sees the labels of the earlier ones. The search then starts from one record on the caller's own state. A
// proposition {(true, valve.position=stuck)} whose element is "false" counts as one fault towards the bound.
// Linear in the propositions, up to where the search begins.
#include "engine/itms.h"
#include "model/trace.h"

#include <ctime>

namespace {

bool blocked(const TrajEl& el)
{
    const StateVar& variable = *el.getStateVar();
    return variable.type == "Command" && variable.commandBlocked;
}

// A fault that is asserted although it was held false counts like one that the search would flip.
bool exceedsRank(const TrajEl& el, State& state, double maxRank, Trajectory& traj)
{
    return el.label == "false" && el.atom->fail &&
           traj.currentRank - traj.getStateRank(&state) + state.wkstRank + 1.0 > maxRank;
}

} // namespace

std::vector<ItmsRes*>* itms::addPropositions(SignedEls* props, ElMap* /*unusedEls*/, State* state,
                                             std::vector<ItmsRes*>* results, const bool& typeRules,
                                             const double& maxRank, const double& /*unusedBound*/,
                                             Trajectory* traj, const int& rank, const bool& adding)
{
    std::vector<const char*> ids;
    const std::clock_t start = std::clock();
    searchWork = SearchWork{};
    if (adding) {
        addingPropositions = true;
    }
    if (!results) {
        results = new std::vector<ItmsRes*>;
    }
    if (!typeRules || state->computeProbas) {
        initPb(state);
    }
    // On the early returns below only the record goes: its state stays with the caller.
    auto record = std::make_unique<ItmsRes>(state);
    for (const auto& [value, el] : *props) {
        ids.push_back(el->getId());
        if (value && exceedsRank(*el, *state, maxRank, *traj)) {
            return results;
        }
        if (blocked(*el)) {
            return results;
        }
        el->setLabel(value ? "true" : "false");
        (*record->already_changed)[el->getId()] = el;
    }
    unitPropagate(record.release(), results, typeRules, maxRank, traj, rank);
    std::cout << "[addClause] --> res' size : " << results->size() << std::endl;
    const double seconds = static_cast<double>(std::clock() - start) / 1000000.0;
    addItmsBmkEntry(seconds, static_cast<unsigned int>(results->size()), &ids);
    addingPropositions = false;
    return results;
}
