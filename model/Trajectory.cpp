#include "model/Trajectory.h"

#include "model/Comp.h"
#include "model/DataManager.h"
#include "model/Transition.h"

Trajectory::~Trajectory()
{
    for (State* state : states) {
        delete state;
    }
}

TrajEl* Trajectory::getElt(const char* id, int time, int /*n*/)
{
    if (time >= 0 && static_cast<std::size_t>(time) < states.size()) {
        const State* committed = states[static_cast<std::size_t>(time)];
        if (committed && committed->elements) {
            const auto found = committed->elements->find(id);
            if (found != committed->elements->end() && found->second) {
                return found->second;
            }
        }
    }
    Atom* atom = DataManager::findAtom(id);
    if (!atom) {
        return nullptr;
    }
    std::unique_ptr<TrajEl>& own = ownElements_[atom];
    if (!own) {
        own = std::make_unique<TrajEl>();
        own->atom = atom;
    }
    own->label = atom->label;
    return own.get();
}

void Trajectory::addComp(Comp* comp, State* state, int time, bool addFlag, bool /*adding*/)
{
    for (const auto& [id, atom] : *comp->atoms) {
        const auto present = state->elements->find(id);
        if (present != state->elements->end() && present->second) {
            continue;
        }
        auto* el = new TrajEl;
        el->atom = atom;
        const Prediction* predicted = predictionFor(time, atom);
        el->label = predicted ? predicted->label : atom->label;
        el->lock = predicted ? predicted->lock : 2;
        (*state->elements)[id] = el;
    }
    if (!addFlag) {
        return;
    }
    (*state->comps)[comp->name.c_str()] = comp;
    if (!state->postProbs) {
        return;
    }
    for (const Transition* transition : *comp->transitions) {
        if (state->postProbs->find(transition->id) == state->postProbs->end()) {
            (*state->postProbs)[transition->id] = transition->proba;
        }
    }
}

void Trajectory::predict(int time, Atom* atom, const std::string& label, int lock)
{
    predictions_[time][atom] = Prediction{label, lock};
}

void Trajectory::forgetPredictions(int time)
{
    predictions_.erase(time);
}

const Trajectory::Prediction* Trajectory::predictionFor(int time, const Atom* atom) const
{
    const auto step = predictions_.find(time);
    if (step == predictions_.end()) {
        return nullptr;
    }
    const auto found = step->second.find(atom);
    return found == step->second.end() ? nullptr : &found->second;
}
