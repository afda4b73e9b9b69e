// Operations on what an engine works on, from its making to its end: states, their distributions, the trajectory, records, the
// search with what comes of it, and set-up once more.
#pragma once

#include "tests/reference/Bench.h"

template <class Engine> struct LifeOperations {
    using B = Bench<Engine>;
    static constexpr auto all()
    {
        return std::to_array<void (*)(B&)>(
            {newState,     disturbState,  copyOfState, viewOfState, branchOfState,
             clearedState, distributions, commit,      uncommit,    elementOfTrajectory,
             predictSome,  forget,        addComp,     nextStep,    records,
             search,       search,        search,      setUpAgain,  implicates});
    }

    static void newState(B& b)
    {
        b.renewState();
        b.note("new state");
    }
    static void disturbState(B& b)
    {
        disturb(b.model, b.state());
        b.note("disturbed state");
    }
    // From here on the copy is worked on; the original is gone.
    static void copyOfState(B& b)
    {
        b.takeState(new State(b.state(), true));
        b.note("copy of the state");
    }
    static void viewOfState(B& b)
    {
        State view(b.state(), false);
        view.setUnknown();
        b.note("view of the state", snapshot(&view, b.model));
    }
    // Distributions are shared until the branch is detached, and outlive the state from which they came.
    static void branchOfState(B& b)
    {
        std::unique_ptr<State> branch = State::branch(b.state());
        b.note("branch", snapshot(branch.get(), b.model));
        branch->postProbs = new ProbMap(*b.state()->postProbs);
        if (b.random.chance(50)) {
            branch->detach();
            b.takeState(branch.release());
        } else {
            b.takeState(branch.release());
            b.state()->detach();
        }
        b.note("detached");
    }
    static void clearedState(B& b)
    {
        State copy(b.state(), b.random.chance(70));
        copy.clear();
        copy.clear();
        const State further(&copy, true);
        b.note("cleared", further.elements ? "has elements" : "none");
    }
    // A distribution that was replaced can still be read.
    static void distributions(B& b)
    {
        Atom* atom = b.atom();
        const ProbMap* before = b.state()->renewDistribution(atom->getId());
        ProbMap* after = b.state()->renewDistribution(atom->getId());
        for (int i = b.random.between(0, 3); i > 0; --i) {
            (*after)[b.random.between(0, 8)] = 0.25 * b.random.between(0, 4);
        }
        b.note("distributions", before->empty() ? "empty" : "not empty");
    }
    static void commit(B& b)
    {
        b.commit(new State(b.state(), true));
        b.note("committed");
    }
    static void uncommit(B& b)
    {
        b.commit(nullptr);
        b.note("uncommitted");
    }
    static void elementOfTrajectory(B& b)
    {
        const char* id = b.atom()->getId();
        std::string out;
        for (const int step : {-1, b.time, b.time + 5}) {
            const TrajEl* el = b.traj->getElt(id, step, 0);
            out += std::string(el->getId()) + " " + el->label + "; ";
        }
        out += b.traj->getElt("no.such=atom", b.time, 0) ? "?" : "none";
        b.note("element of the trajectory", out + " rank " + text(b.traj->getStateRank(b.state())));
    }
    static void predictSome(B& b)
    {
        for (Atom* atom : b.atoms()) {
            b.traj->predict(b.time, atom, b.model.label(atom), b.model.lock());
        }
        b.note("predicted");
    }
    static void forget(B& b)
    {
        b.traj->forgetPredictions(b.random.chance(70) ? b.time : b.time + 1);
        b.note("forgot predictions");
    }
    static void addComp(B& b)
    {
        b.traj->addComp(b.random.pick(b.model.comps), b.state(), b.time, b.random.chance(60),
                        b.random.chance(50));
        b.note("addComp");
    }
    static void nextStep(B& b)
    {
        ++b.time;
        if (b.random.chance(70)) b.model.predict(b.time);
        b.renewState();
        b.note("next step");
    }
    static void records(B& b)
    {
        ItmsRes* made = b.record();
        b.note("record", snapshot(made, b.model));
        auto* copy = new ItmsRes(made->state, made->constraints);
        copy->already_changed = new ElMap;
        discard(made);
        b.note("copy of a record", snapshot(copy, b.model));
        discard(copy);
    }
    // The state is the search's from here on. What it found is committed, or thrown away.
    static void search(B& b)
    {
        b.renewState();
        SignedEls props = randomPropositions(b.model, b.state());
        const bool typeRules = b.random.chance(40);
        const double maxRank = b.random.pick(std::vector<double>{0.0, 1.0, 2.0, 3.0});
        const bool adding = b.random.chance(50);
        const std::size_t entries = DataManager::itmsBmkEntries.size();
        State* state = b.giveState();
        Records found;
        std::vector<ItmsRes*>* returned = b.engine.addPropositions(
            &props, nullptr, state, &found.list, typeRules, maxRank, 0.0, b.traj, b.time, adding);
        const bool begun = DataManager::itmsBmkEntries.size() > entries;
        b.takeState(begun ? randomState(b.model, b.time) : state);
        b.note("addPropositions", std::string(begun ? "begun " : "ended at once ") +
                                      (returned == &found.list ? "same " : "other ") +
                                      std::to_string(found.list.size()) + " " +
                                      (begun ? searchWorkText() : ""));
        for (const ItmsRes* each : found.list) {
            b.note("found", snapshot(each, b.model));
        }
        if (found.list.empty() || b.random.chance(40)) return;
        const State* chosen = b.random.pick(found.list)->state;
        auto* committed = new State(const_cast<State*>(chosen), true);
        committed->rank = chosen->wkstRank;
        b.traj->currentRank += chosen->wkstRank;
        b.commit(committed);
    }
    static void setUpAgain(B& b)
    {
        b.engine.rtInit();
        b.note("set-up again", snapshotRegistry(b.engine.stateVars) + snapshotModel(b.model));
    }
    static void implicates(B& b)
    {
        if (b.random.chance(50)) {
            b.run.readImplicates();
            return;
        }
        b.engine.piTable = DataManager::newPiTable();
        for (Atom* atom : b.atoms()) {
            b.engine.piTable->addPIAtom(atom, b.model.implicateSets());
        }
        b.run.showImplicates("own table");
    }
};
