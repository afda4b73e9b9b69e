// The lamp is predicted to be ok, and on. It is seen to be off: why?
#include "LampModel.h"

#include <iostream>

int main()
{
    Lamp lamp;
    std::cout.setstate(std::ios::failbit); // mutes the engine's trace
    itms engine;
    engine.rtInit();
    Trajectory trajectory;
    for (int i : {Lamp::ok, Lamp::on}) trajectory.predict(0, &lamp.atoms[i], "true", 2);
    for (int i : {Lamp::broken, Lamp::off}) trajectory.predict(0, &lamp.atoms[i], "false", 2);
    auto* step = new State; // the search takes it over
    trajectory.addComp(&lamp.comp, step, 0, true, false);
    SignedEls seen{{true, (*step->elements)["lamp.light=off"]},
                   {false, (*step->elements)["lamp.light=on"]}};
    std::vector<ItmsRes*> found;
    engine.addPropositions(&seen, nullptr, step, &found, false, 1.0, 0.0, &trajectory, 0, false);
    std::cout.clear();
    for (ItmsRes* candidate : found) {
        for (const Atom& atom : lamp.atoms)
            (*candidate->state->elements)[atom.getId()]->showAtom(false);
        candidate->clear();
        delete candidate;
    }
}
