#include "model/State.h"

State::State()
    : elements(new ElMap), postProbs(new ProbMap), sortedPostProbs(new SortedProbMap),
      condProbs(new CondProbMap), comps(new CompMap)
{
}

State::State(State* other, bool own)
    : elements(nullptr), wkstRank(other->wkstRank), obsCondProba(other->obsCondProba),
      postProbs(other->postProbs ? new ProbMap(*other->postProbs) : nullptr),
      sortedPostProbs(new SortedProbMap(*other->sortedPostProbs)),
      condProbs(new CondProbMap(*other->condProbs)), comps(new CompMap(*other->comps)),
      computeProbas(other->computeProbas), unknown(other->unknown), rank(other->rank),
      ownsElements_(own)
{
    if (own) {
        copyElementsOf(*other);
    } else if (other->elements) {
        elements = new ElMap(*other->elements);
    }
    for (auto& [id, distribution] : *condProbs) {
        if (distribution) {
            auto copy = std::make_shared<ProbMap>(*distribution);
            distribution = copy.get();
            distributions_.emplace(copy.get(), copy);
        }
    }
}

State::State(State* parent, Branch)
    : elements(nullptr), wkstRank(parent->wkstRank), obsCondProba(parent->obsCondProba),
      postProbs(nullptr), sortedPostProbs(new SortedProbMap(*parent->sortedPostProbs)),
      condProbs(nullptr), comps(new CompMap(*parent->comps)), computeProbas(parent->computeProbas),
      unknown(parent->unknown), rank(parent->rank)
{
    copyElementsOf(*parent);
    parent->adoptDistributions();
    condProbs = new CondProbMap(*parent->condProbs);
    for (const auto& [id, distribution] : *condProbs) {
        if (distribution) {
            distributions_.emplace(distribution, parent->distributions_.at(distribution));
        }
    }
}

State::~State()
{
    clear();
    adoptDistributions();
    delete postProbs;
    delete sortedPostProbs;
    delete condProbs;
    delete comps;
}

void State::clear()
{
    if (!elements) {
        return;
    }
    if (ownsElements_) {
        for (auto& [id, el] : *elements) {
            delete el;
            el = nullptr;
        }
    }
    delete elements;
    elements = nullptr;
}

ProbMap* State::renewDistribution(const char* id)
{
    auto fresh = std::make_shared<ProbMap>();
    ProbMap*& slot = (*condProbs)[id];
    if (slot && !distributions_.contains(slot)) {
        distributions_.emplace(slot, std::shared_ptr<ProbMap>(slot));
    }
    slot = fresh.get();
    distributions_.emplace(slot, std::move(fresh));
    return slot;
}

std::unique_ptr<State> State::branch(State* parent)
{
    return std::unique_ptr<State>(new State(parent, Branch{}));
}

void State::detach()
{
    for (auto& [id, distribution] : *condProbs) {
        const auto held = distributions_.find(distribution);
        if (held != distributions_.end() && held->second.use_count() > 1) {
            auto copy = std::make_shared<ProbMap>(*distribution);
            distributions_.erase(held);
            distribution = copy.get();
            distributions_.emplace(copy.get(), std::move(copy));
        }
    }
}

// The map is copied whole first, which keeps its iteration order, and its values are replaced then.
void State::copyElementsOf(const State& other)
{
    if (!other.elements) {
        return;
    }
    elements = new ElMap(*other.elements);
    bool anyDependents = false;
    for (auto& [id, el] : *elements) {
        if (const TrajEl* from = el) {
            el = new TrajEl;
            el->atom = from->atom;
            el->transition = from->transition;
            el->label = from->label;
            el->support = from->support;
            *el->dependents = *from->dependents;
            el->propagationNumber = from->propagationNumber;
            el->lock = from->lock;
            anyDependents = anyDependents || !from->dependents->empty();
        }
    }
    if (!anyDependents) {
        return;
    }
    for (auto& [id, el] : *elements) {
        if (!el) {
            continue;
        }
        for (TrajEl*& dependent : *el->dependents) {
            const auto own = elements->find(dependent->getId());
            if (own != elements->end() && own->second) {
                dependent = own->second;
            }
        }
    }
}

// Takes every distribution that somebody else put into the map under the state's own counting.
void State::adoptDistributions()
{
    for (const auto& [id, distribution] : *condProbs) {
        if (distribution && !distributions_.contains(distribution)) {
            distributions_.emplace(distribution, std::shared_ptr<ProbMap>(distribution));
        }
    }
}
