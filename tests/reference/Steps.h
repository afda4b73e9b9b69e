// A run along some time steps: propositions in, candidates out, one of them committed.
#pragma once

#include "tests/reference/Run.h"

template <class Engine> class Steps {
public:
    explicit Steps(std::uint64_t seed, bool muted = false) : run_(seed, muted) {}

    Observed watch()
    {
        run_.setUp();
        for (int step = 0, count = run_.random.between(1, 2); step < count; ++step) {
            if (!oneStep(step)) {
                break;
            }
            queries(step);
        }
        return std::move(run_.observed);
    }

private:
    Run<Engine> run_;
    Records records_;

    // False when the step ended at once.
    bool oneStep(int step)
    {
        RandomModel& model = run_.model;
        Random& random = run_.random;
        Trajectory* traj = model.trajectory.get();
        model.predict(step);
        State* state = randomState(model, step);
        SignedEls props = randomPropositions(model, state);
        const bool typeRules = random.chance(model.wide ? 20 : 40);
        const double maxRank = random.pick(std::vector<double>{0.0, 1.0, 1.0, 2.0, 3.0, 3.0});
        const bool adding = random.chance(50);
        const std::size_t entries = DataManager::itmsBmkEntries.size();
        if (!random.chance(30)) {
            records_.clear(); // else what an earlier step found stays in the vector
        }
        const bool ownVector = records_.list.empty() && random.chance(30);
        std::vector<ItmsRes*>* returned =
            run_.engine.addPropositions(&props, nullptr, state, ownVector ? nullptr : &records_.list,
                                        typeRules, maxRank, 0.0, traj, step, adding);
        const bool sameVector = returned == &records_.list;
        const bool done = DataManager::itmsBmkEntries.size() > entries;
        if (!sameVector) {
            records_.list.swap(*returned);
            delete returned;
        }
        const std::string where = "step " + std::to_string(step);
        run_.note(where, std::string(done ? "done " : "ended at once ") +
                             (sameVector ? "same vector " : "other vector ") +
                             (run_.engine.addingPropositions ? "adding " : "") +
                             std::to_string(records_.list.size()) + " results\n" +
                             (done ? searchWorkText() : "") + "\n" +
                             snapshotRegistry(run_.engine.stateVars));
        for (std::size_t i = 0; i < records_.list.size(); ++i) {
            run_.note(where + " result " + std::to_string(i), snapshot(records_.list[i], model));
        }
        if (!done) {
            run_.note(where + " state", "", state);
            delete state;
            return false;
        }
        commit(step);
        return true;
    }

    void commit(int step)
    {
        if (records_.list.empty() || run_.random.chance(20)) {
            return;
        }
        Trajectory* traj = run_.model.trajectory.get();
        const ItmsRes* chosen = run_.random.pick(records_.list);
        traj->states.resize(static_cast<std::size_t>(step) + 1);
        traj->states.back() = new State(chosen->state, true);
        traj->states.back()->rank = chosen->state->wkstRank;
        traj->currentRank += chosen->state->wkstRank;
    }

    void queries(int step)
    {
        RandomModel& model = run_.model;
        for (int i = 0; i < 2 && !model.atoms.empty(); ++i) {
            const std::string op =
                run_.random.pick(std::vector<std::string>{"and", "", "or", "or", "AND", "not"});
            StateFormula* formula = model.formula(op, run_.random.below(4));
            const bool holds = run_.engine.evalStateFormula(formula, model.trajectory.get(), step);
            run_.note("formula '" + op + "'", holds ? "true" : "false");
        }
    }
};
