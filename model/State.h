// One time step: the labelled elements, and the probabilities of the transitions that explain them.
#pragma once

#include "model/TrajEl.h"
#include "model/keys.h"

#include <memory>
#include <unordered_map>

/// The elements of a time step and its distributions over transitions.
///
/// Owned by the state: its containers, the elements in `elements`, and every distribution in `condProbs`,
/// whoever put it there. A distribution that the engine replaced stays alive, out of the map, until the
/// state dies, so a pointer taken from `condProbs` is good as long as the state. The copy that the public
/// constructor makes shares nothing with the original.
///
/// During a search the copies are many and short-lived, and the distributions in them are large and are
/// never written again. There `branch` makes a copy whose distributions are shared, counted, with its
/// parent's; `detach` gives a state distributions of its own before anybody outside the search sees it.
class State {
public:
    ElMap* elements;                ///< by atom identifier; entries may be null; null after clear()
    double wkstRank = 0.0;          ///< faults that the search flipped on the way to this candidate
    double obsCondProba = 1.0;      ///< likelihood of the step's observations
    ProbMap* postProbs;             ///< transition identifier to probability, not normalised
    SortedProbMap* sortedPostProbs; ///< `postProbs` sorted, largest first; valid right after sorting
    CondProbMap* condProbs;     ///< per atom, a distribution over transitions; entries may be null
    CompMap* comps;             ///< the components that are part of the step, by name
    bool computeProbas = false; ///< recompute probabilities at every observation and candidate
    bool unknown = false;       ///< an "unknown" mode was given up on the way
    double rank = 0.0;          ///< the rank committed for the step that the state stands for

    State();
    /// Copies `other`: with `own` true every element is copied, null entries stay null, `dependents` are
    /// re-pointed at the copy's own elements by identifier (one that is not in `other` stays as it is), and
    /// every container iterates in the original's order. With `own` false the copy refers to `other`'s
    /// elements, which stay the other's: they must outlive it. Linear in the size of the state.
    State(State* other, bool own);
    ~State();
    State(const State&) = delete;
    State& operator=(const State&) = delete;

    void setUnknown() { unknown = true; }
    /// Releases every element, then the map, and sets `elements` to null. A cleared state stays as it is.
    void clear();

    /// Puts a new, empty distribution under the identifier and returns it; the state keeps the one it
    /// replaces until it dies.
    ProbMap* renewDistribution(const char* id);
    /// A copy for the search, with elements of its own, that shares `parent`'s distributions. It has no
    /// `postProbs` (null): the search gives it those of its decision. The caller owns it.
    static std::unique_ptr<State> branch(State* parent);
    /// Gives the state its own copy of every distribution that it shares.
    void detach();

private:
    struct Branch {};
    State(State* parent, Branch);
    void copyElementsOf(const State& other);
    void adoptDistributions();

    bool ownsElements_ = true;
    std::unordered_map<const ProbMap*, std::shared_ptr<ProbMap>> distributions_;
};
