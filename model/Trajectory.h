// The sequence of time steps: what was committed for each, and what the next one is predicted to be.
#pragma once

#include "model/State.h"
#include "model/keys.h"

#include <memory>
#include <unordered_map>

/// Committed states by time step, predictions for the steps to come, and elements on demand.
///
/// A state that is handed to itms::addPropositions is not part of the trajectory: the search frees it. A
/// step is committed by putting a state of one's own into `states`; it is the trajectory's from then on.
class Trajectory {
public:
    double currentRank = 0.0;   ///< sum of the ranks committed for the trajectory's steps
    std::vector<State*> states; ///< committed states by time step, owned; entries may be null

    /// Ensures: a trajectory without committed states and predictions.
    Trajectory() = default;
    /// Releases the committed states and the trajectory's own elements.
    ~Trajectory();
    Trajectory(const Trajectory&) = delete;
    Trajectory& operator=(const Trajectory&) = delete;

    /// The element of the atom in the committed state of step `time`; where there is none, whatever `time`
    /// is, an element of the trajectory's own. Null only for an identifier that the model does not have. The
    /// last argument is ignored. Constant time on average for an active atom (see DataManager::findAtom).
    /// Ensures: an element of the trajectory's own has the atom's own label afresh at every call, and is valid
    /// while the trajectory and the atom live.
    TrajEl* getElt(const char* id, int time, int n);

    /// Makes the elements of the component's atoms that the state lacks. `adding` is ignored: instantiation is
    /// the same whether propositions are being added or not. Linear in the component's atoms and transitions.
    ///
    /// Requires: `comp` was set up (Comp::atoms is filled) and outlives the state; the state has its map of
    /// elements.
    /// Ensures: each new element has label and lock as predicted for step `time`, else the atom's own label and
    /// lock 2, and is the state's. With `addFlag` true the component is one of the state's components, and
    /// those of its transitions that had no entry in `postProbs` have their probability there.
    void addComp(Comp* comp, State* state, int time, bool addFlag, bool adding);

    /// The rank committed for the step that the state stands for.
    /// Requires: `state` is not null.
    double getStateRank(State* state) const { return state->rank; }

    /// Sets what an element of the atom starts with when step `time` instantiates it.
    /// Requires: `label` is "true", "false" or "unknown", and `lock` 0..4 (see TrajEl::lock); neither is checked.
    /// Ensures: a later call for the same atom and step replaces an earlier one; elements that exist already
    /// stay as they are.
    void predict(int time, Atom* atom, const std::string& label, int lock);
    /// Drops the predictions for step `time`, if there are any. Linear in them.
    void forgetPredictions(int time);

private:
    struct Prediction {
        std::string label;
        int lock;
    };
    using Predictions = std::unordered_map<const Atom*, Prediction>;

    const Prediction* predictionFor(int time, const Atom* atom) const;

    std::unordered_map<int, Predictions> predictions_;
    std::unordered_map<const Atom*, std::unique_ptr<TrajEl>> ownElements_;
};
