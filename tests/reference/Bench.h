// Where single operations are tried: an engine over a random model, a random and often odd state, and random
// arguments for the operations.
#pragma once

#include "tests/reference/Run.h"

#include <array>
#include <memory>

template <class Engine> struct Bench {
    Run<Engine> run;
    Engine& engine = run.engine;
    RandomModel& model = run.model;
    Random& random = run.random;
    Trajectory* traj = run.model.trajectory.get();
    int time = 0;

    Bench(std::uint64_t seed, bool muted) : run(seed, muted)
    {
        run.setUp();
        time = random.between(0, 2);
        model.predict(time);
        renewState();
        if (random.chance(40)) { // a committed state, which the trajectory answers from
            traj->states.resize(static_cast<std::size_t>(time) + 1);
            traj->states.back() = randomState(model, time);
        }
    }

    State* state() { return state_.get(); }
    void renewState()
    {
        state_.reset(randomState(model, time));
        if (random.chance(60)) {
            disturb(model, state());
        }
        traj->currentRank = random.between(0, 1);
        engine.addingPropositions = random.chance(30);
    }

    void takeState(State* state) { state_.reset(state); }
    /// Hands the state over; another one has to be taken before anything else is tried.
    State* giveState() { return state_.release(); }
    /// Puts a state, or null, into the trajectory for this step.
    void commit(State* state)
    {
        const auto step = static_cast<std::size_t>(time);
        if (traj->states.size() <= step) traj->states.resize(step + 1);
        delete traj->states[step];
        traj->states[step] = state;
    }

    Clause* clause() { return random.pick(model.clauses); }
    Atom* atom() { return random.pick(model.atoms); }
    StateVar* variable() { return random.pick(model.variables); }
    TrajEl* element() { return engine.getElt(atom()->getId(), state(), traj, time); }
    /// Up to five of what `make` makes.
    template <class Make> auto some(Make make)
    {
        std::vector<decltype(make())> list;
        for (std::size_t i = random.below(6); i > 0; --i) {
            list.push_back(make());
        }
        return list;
    }
    std::vector<TrajEl*> elements()
    {
        return some([this] { return element(); });
    }
    std::vector<Atom*> atoms()
    {
        return some([this] { return atom(); });
    }
    std::vector<Clause*> clauses()
    {
        return some([this] { return clause(); });
    }
    ElMap elementMap()
    {
        ElMap els;
        for (TrajEl* el : elements()) {
            els[el->getId()] = el;
        }
        return els;
    }
    /// A clause whose atoms all have elements.
    Clause* presentClause()
    {
        Clause* chosen = clause();
        for (const auto& [negated, each] : *chosen->literals) {
            engine.getElt(each->getId(), state(), traj, time);
        }
        return chosen;
    }
    /// A clause with an element of the given label, or null when a few tries find none.
    Clause* clauseWith(const std::string& label)
    {
        for (int attempt = 0; attempt < 20; ++attempt) {
            Clause* chosen = presentClause();
            for (const auto& [negated, each] : *chosen->literals) {
                if ((*state()->elements)[each->getId()]->label == label) {
                    return chosen;
                }
            }
        }
        return nullptr;
    }
    /// A record on a copy of the state, with decisions, retracted elements and open conflicts.
    ItmsRes* record()
    {
        const std::vector<TrajEl*> decided = elements();
        const std::vector<TrajEl*> touched = elements();
        const std::vector<TrajEl*> retracted = elements();
        auto* made = new ItmsRes(new State(state(), true));
        auto own = [made](TrajEl* el) { return (*made->state->elements)[el->getId()]; };
        for (TrajEl* el : decided) {
            (*made->already_changed)[el->getId()] = own(el);
        }
        for (TrajEl* el : touched) {
            (*made->focus)[el->getId()] = own(el);
        }
        for (TrajEl* el : retracted) {
            made->retracted->push_back(own(el));
        }
        for (Clause* each : clauses()) {
            made->constraints->push(each);
        }
        return made;
    }

    std::string name(const Clause* chosen) const { return model.nameOf(chosen); }
    std::string name(TrajEl* el) { return text(el, state()); }
    std::string names(const std::vector<Clause*>& list) const
    {
        std::string out;
        for (const Clause* each : list) {
            out += name(each) + " ";
        }
        return out;
    }
    void note(const std::string& what, const std::string& result = "")
    {
        run.note(what, result, state());
    }
    void note(const std::string& what, bool result) { note(what, std::string(result ? "1" : "0")); }
    void note(const std::string& what, const char* result) { note(what, std::string(result)); }

private:
    std::unique_ptr<State> state_;
};
