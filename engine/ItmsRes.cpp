// Search records: making one on a state or on a copy of it, and discarding it.
#include "engine/ItmsRes.h"

#include <utility>

ItmsRes::ItmsRes(State* st)
    : state(st), already_changed(new ElMap), focus(new ElMap), retracted(new std::vector<TrajEl*>),
      constraints(new std::queue<Clause*>)
{
}

ItmsRes::ItmsRes(State* st, std::queue<Clause*>* q) : ItmsRes(new State(st, true), *q) {}

ItmsRes::ItmsRes(State* own, std::queue<Clause*> open)
    : state(own), already_changed(nullptr), focus(new ElMap), retracted(new std::vector<TrajEl*>),
      constraints(new std::queue<Clause*>(std::move(open)))
{
}

ItmsRes::~ItmsRes()
{
    delete already_changed;
    already_changed = nullptr;
    delete focus;
    focus = nullptr;
    delete retracted;
    retracted = nullptr;
    delete constraints;
    constraints = nullptr;
}

void ItmsRes::clear()
{
    state->clear();
    delete state;
    state = nullptr;
}

ItmsRes* ItmsRes::branch(const ItmsRes& parent)
{
    return new ItmsRes(State::branch(parent.state).release(), *parent.constraints);
}

ItmsRes* ItmsRes::inherit(ItmsRes& parent)
{
    auto* child = new ItmsRes(parent.state, std::move(*parent.constraints));
    parent.state = nullptr;
    return child;
}
