// One candidate of the search.
#pragma once

#include "model/State.h"
#include "model/keys.h"

/// A candidate: a copy of the step's state and what the search needs to go on from there.
///
/// The record owns its four containers, and its destructor releases them. It owns `state` too, with every
/// element in it, but only clear() releases that: a record is discarded by clear() and then delete, and one
/// that was returned as a solution stays whole until its holder does the same. The first record of a search
/// is made on the caller's own state, which is the record's from then on.
class ItmsRes {
public:
    State* state;           ///< the candidate's time step
    ElMap* already_changed; ///< elements decided on the way here: never flipped again below
    ElMap* focus;           ///< elements touched by the latest decision
    std::vector<TrajEl*>* retracted; ///< elements set back to "unknown": propagation resumes from them
    std::queue<Clause*>* constraints; ///< violated clauses still to be resolved, first in, first out

    /// A record on `st` itself, with empty containers.
    explicit ItmsRes(State* st);
    /// A record on a copy of `st`, with a copy of the queue. `already_changed` is null: the maker sets it.
    ItmsRes(State* st, std::queue<Clause*>* q);
    ~ItmsRes();
    ItmsRes(const ItmsRes&) = delete;
    ItmsRes& operator=(const ItmsRes&) = delete;

    /// Releases the state with its elements. Once per record; `state` is null afterwards.
    void clear();

private:
    friend class itms;
    /// The record of a child, on a copy of the parent's state that shares its distributions (State::branch),
    /// with a copy of the queue. `already_changed` is null.
    static ItmsRes* branch(const ItmsRes& parent);
    /// The same on the parent's very state, with its queue: the parent has neither afterwards.
    static ItmsRes* inherit(ItmsRes& parent);
    ItmsRes(State* own, std::queue<Clause*> open);
};
