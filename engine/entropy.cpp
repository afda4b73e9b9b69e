// Expected entropies, which order the search, and agreement with observations.
//
// With P(t) the state's probability of transition t and c(a, t) the rough probability of atom a given t:
//
//     Z(a) = sum over t of P(t) c(a, t)        p(t | a) = P(t) c(a, t) / Z(a)
//     H    = sum over the variable's atoms a of Z(a) * (- sum over t of p(t | a) ln p(t | a))
//
// Natural logarithms; the weights Z(a) are not normalised over the atoms; transitions of probability 0 are
// left out, and so are terms with p = 0. A value that no transition admits has Z = 0 and makes the result NaN.
// Example: two transitions of probability 1/2, one of which admits only a and the other only b, give H = 0:
// once the variable is known, nothing is left open. If both admit both values alike, each with 1/2, H is ln 2.
//
// Cost: a rating weighs every likely transition of the state's components once for each value of the variable.
//
// Source: minimal expected entropy as the choice of the next measurement, "Diagnosing multiple faults",
// Artificial Intelligence 32 (1987).
#include "engine/itms.h"

#include <cmath>

namespace {

struct LikelyTransition {
    const Transition* transition;
    double prior;
};

// The transitions of non-zero probability of the state's components, in their order. A transition without an
// entry in the state's distribution gets one, 0.
std::vector<LikelyTransition> likelyTransitions(State& state)
{
    std::vector<LikelyTransition> likely;
    for (const auto& [name, comp] : *state.comps) {
        for (const Transition* transition : *comp->transitions) {
            const double prior = (*state.postProbs)[transition->id];
            if (prior != 0.0) {
                likely.push_back({transition, prior});
            }
        }
    }
    return likely;
}

// A distribution being filled, transition by transition. Transitions that share an identifier share an entry,
// and the latest weight stands; the total counts them all.
class Conditioning {
public:
    Conditioning(ProbMap& distribution, std::size_t transitions) : distribution_(distribution)
    {
        entries_.reserve(transitions);
    }

    void add(int id, double weight)
    {
        double& entry = distribution_[id];
        entry = weight;
        entries_.push_back(&entry);
        total_ += weight;
    }

    double total() const { return total_; }

    void normalise()
    {
        for (auto& [id, probability] : distribution_) {
            probability /= total_;
        }
    }

    /// The sum of p ln p over the transitions added.
    double sumOfLogs() const
    {
        double sum = 0.0;
        for (const double* entry : entries_) {
            if (*entry != 0.0) {
                sum += std::log(*entry) * *entry;
            }
        }
        return sum;
    }

private:
    ProbMap& distribution_;
    std::vector<double*> entries_;
    double total_ = 0.0;
};

} // namespace

double itms::entropy(StateVar* variable, State* state, ElMap* /*elements*/)
{
    if (variable->atomLinks->empty()) {
        return 0.0; // nothing to look a transition up for
    }
    const std::vector<LikelyTransition> likely = likelyTransitions(*state);
    double expected = 0.0;
    for (Atom* atom : *variable->atomLinks) {
        // An atom that is not instantiated gets a null entry.
        const TrajEl* el = likely.empty() ? nullptr : (*state->elements)[atom->getId()];
        Conditioning given(*state->renewDistribution(atom->getId()), likely.size());
        for (const auto& [transition, prior] : likely) {
            given.add(transition->id, prior * roughProbability(el ? el->atom : atom, transition));
        }
        given.normalise();
        expected -= given.total() * given.sumOfLogs();
    }
    return expected;
}

double itms::entropy(Atom* atom, State* state, ElMap* /*elements*/)
{
    const std::vector<LikelyTransition> likely = likelyTransitions(*state);
    Conditioning given(*(*state->condProbs)[atom->getId()], likely.size());
    for (const auto& [transition, prior] : likely) {
        given.add(transition->id, prior);
    }
    given.normalise();
    return -given.sumOfLogs();
}

std::vector<Atom*>* itms::predictedAtoms(Atom* atom, std::vector<Atom*>* accumulator)
{
    if (!accumulator) {
        accumulator = new std::vector<Atom*>;
    }
    const auto add = [&](Atom* predicted) {
        if (!inVector(predicted, accumulator)) {
            accumulator->push_back(predicted);
        }
    };
    for (const Clause* clause : *atom->clauses) {
        const std::unique_ptr<std::vector<Atom*>> opposites(clause->getOpposites(atom));
        for (Atom* opposite : *opposites) {
            add(opposite);
        }
    }
    add(atom);
    return accumulator;
}

double itms::probaCondObsAtom(Atom* atom, std::vector<Atom*>* observed)
{
    const std::unique_ptr<std::vector<Atom*>> predicted(predictedAtoms(atom, nullptr));
    int count = 0;
    for (Atom* candidate : *predicted) {
        if (inVector(candidate, observed)) {
            ++count;
        }
    }
    return count / static_cast<double>(observed->size());
}
