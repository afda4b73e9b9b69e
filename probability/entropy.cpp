// Expected entropies, which order the search, and agreement with observations.
//
// With P(t) the state's probability of transition t and c(a, t) the rough probability of atom a given t:
//
//     Z(a) = sum over t of P(t) c(a, t)        p(t | a) = P(t) c(a, t) / Z(a)
//     H    = sum over the variable's atoms a of Z(a) * (- sum over t of p(t | a) ln p(t | a))
//
// Natural logarithms; the weights Z(a) are not normalised over the atoms; transitions of probability 0 are
// left out, and so are terms with p = 0. A value that no transition admits has Z = 0 and makes the result NaN.
// For minimal expected entropy as the choice of the next measurement: J. de Kleer and B. C. Williams,
// "Diagnosing multiple faults", Artificial Intelligence 32 (1987).
//
// A rating scans all transitions of the state's components three times for each value of the variable.
#include "engine/itms.h"

#include <cmath>

namespace {

/// Calls `visit` with every transition of non-zero probability of the state's components, in their order.
template <class Visit> void forEachLikelyTransition(State& state, Visit visit)
{
    for (const auto& [name, comp] : *state.comps) {
        for (Transition* transition : *comp->transitions) {
            const double prior = (*state.postProbs)[transition->id];
            if (prior != 0.0) {
                visit(*transition, prior);
            }
        }
    }
}

void normalise(ProbMap& distribution, double total)
{
    for (auto& [id, probability] : distribution) {
        probability /= total;
    }
}

// The sum of p ln p over the likely transitions.
double sumOfLogs(State& state, ProbMap& distribution)
{
    double sum = 0.0;
    forEachLikelyTransition(state, [&](const Transition& transition, double) {
        const double p = distribution[transition.id];
        if (p != 0.0) {
            sum += std::log(p) * p;
        }
    });
    return sum;
}

} // namespace

double itms::entropy(StateVar* variable, State* state, ElMap* /*elements*/)
{
    double expected = 0.0;
    for (Atom* atom : *variable->atomLinks) {
        double total = 0.0;
        ProbMap& given = *state->renewDistribution(atom->getId());
        forEachLikelyTransition(*state, [&](const Transition& transition, double prior) {
            // The look-up leaves a null entry for an atom that is not instantiated.
            const TrajEl* el = (*state->elements)[atom->getId()];
            double& entry = given[transition.id];
            entry = prior * roughProbability(el ? el->atom : atom, &transition);
            total += entry;
        });
        normalise(given, total);
        expected -= total * sumOfLogs(*state, given);
    }
    return expected;
}

double itms::entropy(Atom* atom, State* state, ElMap* /*elements*/)
{
    double total = 0.0;
    ProbMap& given = *(*state->condProbs)[atom->getId()];
    forEachLikelyTransition(*state, [&](const Transition& transition, double prior) {
        given[transition.id] = prior * 1.0;
        total += given[transition.id];
    });
    normalise(given, total);
    return -sumOfLogs(*state, given);
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
