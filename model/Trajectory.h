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

    Trajectory() = default;
    /// Releases the committed states and the trajectory's own elements.
    ~Trajectory();
    Trajectory(const Trajectory&) = delete;
    Trajectory& operator=(const Trajectory&) = delete;

    /// The element of the atom in the committed state of step `time`; where there is none, an element of the
    /// trajectory's own, labelled with the atom's own label at every call and valid while the trajectory and
    /// the atom live. Null only for an identifier that the model does not have. The last argument is ignored.
    TrajEl* getElt(const char* id, int time, int n);

    /// Makes the elements of the component's atoms that the state lacks: label and lock as predicted for step
    /// `time`, else the atom's own label and lock 2. With `addFlag` true the component also joins the state's
    /// components, and those of its transitions that have no entry in `postProbs` get their probability there.
    /// `adding` tells whether propositions are being added; instantiation is the same either way.
    void addComp(Comp* comp, State* state, int time, bool addFlag, bool adding);

    /// The rank committed for the step that the state stands for.
    double getStateRank(State* state) const { return state->rank; }

    /// What an element of the atom starts with when step `time` instantiates it: a label ("true", "false",
    /// "unknown") and a lock (see TrajEl::lock). A later call for the same atom and step replaces it.
    void predict(int time, Atom* atom, const std::string& label, int lock);
    /// Drops the predictions for step `time`.
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
