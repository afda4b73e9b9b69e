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
    ElMap* elements;           ///< by atom identifier; entries may be null; null after clear()
    double wkstRank = 0.0;     ///< faults that the search flipped on the way to this candidate
    double obsCondProba = 1.0; ///< likelihood of the step's observations, >= 0; not normalised
    ProbMap* postProbs; ///< transition identifier to probability, not normalised; may be null
    /// `postProbs` sorted, largest first; valid right after itms::sortPostProbs.
    SortedProbMap* sortedPostProbs;
    /// Per atom identifier, a distribution over transitions given that the atom holds; entries may be null.
    CondProbMap* condProbs;
    CompMap* comps;             ///< the components that are part of the step, by name
    bool computeProbas = false; ///< recompute probabilities at every observation and candidate
    bool unknown = false;       ///< an "unknown" mode was given up on the way
    double rank = 0.0;          ///< the rank committed for the step that the state stands for

    /// Ensures: a state with empty containers.
    State();
    /// A copy of `other`. Linear in the size of the state.
    ///
    /// Requires: `other` is not null; with `own` false it keeps its elements for as long as the copy lives.
    /// Ensures: every container iterates in the original's order, and the distributions are copies. With `own`
    /// true every element is copied, null entries stay null, and `dependents` point at the copy's own elements,
    /// by identifier (one that is not in `other` stays as it is). With `own` false the copy refers to `other`'s
    /// elements, which stay the other's.
    State(State* other, bool own);
    /// Releases all that the state owns.
    ~State();
    State(const State&) = delete;
    State& operator=(const State&) = delete;

    /// Ensures: `unknown` is true.
    void setUnknown() { unknown = true; }
    /// Releases every element that the state owns, then the map.
    /// Ensures: `elements` is null. A cleared state stays as it is.
    void clear();

    /// Puts a new, empty distribution under the identifier and returns it.
    /// Requires: the characters of `id` outlive the state, as those of Atom::getId do.
    /// Ensures: the distribution is the state's; the one that it replaces, if any, stays alive, out of the map,
    /// until the state dies.
    ProbMap* renewDistribution(const char* id);
    /// A copy for the search, with elements of its own, that shares `parent`'s distributions. Linear in the
    /// size of the state, without its distributions.
    /// Requires: `parent` is not null.
    /// Ensures: the copy is the caller's. Its `postProbs` is null: the search gives it those of its decision.
    static std::unique_ptr<State> branch(State* parent);
    /// Ensures: the state shares no distribution with another. Linear in the distributions that it shared.
    void detach();

private:
    struct Branch {};
    State(State* parent, Branch);
    void copyElementsOf(const State& other);
    void adoptDistributions();

    bool ownsElements_ = true;
    std::unordered_map<const ProbMap*, std::shared_ptr<ProbMap>> distributions_;
};
