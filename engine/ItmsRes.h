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
    ElMap* already_changed; ///< elements decided on the way here: no candidates below
    ElMap* focus;           ///< elements touched by the latest decision
    /// Elements set back to "unknown": propagation resumes from them.
    std::vector<TrajEl*>* retracted;
    /// Violated clauses still to be resolved, first in, first out.
    std::queue<Clause*>* constraints;

    /// A record on `st` itself, with empty containers.
    /// Ensures: the record has taken `st` over; see clear().
    explicit ItmsRes(State* st);
    /// A record on a copy of `st`, with a copy of the queue. Linear in the state.
    /// Requires: neither is null.
    /// Ensures: `already_changed` is null, and the maker sets it; `st` and `q` stay with the caller.
    ItmsRes(State* st, std::queue<Clause*>* q);
    /// Releases the four containers, not the state.
    ~ItmsRes();
    ItmsRes(const ItmsRes&) = delete;
    ItmsRes& operator=(const ItmsRes&) = delete;

    /// Releases the state with its elements. Linear in the state.
    /// Requires: `state` is not null: once per record.
    /// Ensures: `state` is null. Elements that other members refer to are gone.
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
