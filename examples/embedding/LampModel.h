// A model made by hand, without the toolkit: a lamp is lit unless it is broken.
#pragma once

#include "engine/itms.h"

struct Lamp {
    enum { ok, broken, on, off };

    Comp comp;
    StateVar mode, light;
    Atom atoms[4];
    Clause laws[5];

    Lamp()
    {
        const char* const ids[] = {"lamp.mode=ok", "lamp.mode=broken", "lamp.light=on",
                                   "lamp.light=off"};
        mode.type = "Mode";
        light.type = "Cond";
        for (StateVar* variable : {&mode, &light}) {
            variable->comp = &comp;
            comp.stateVars->push_back(variable);
        }
        for (int i = 0; i < 4; ++i) {
            atoms[i].id = ids[i];
            atoms[i].stateVar = i < on ? &mode : &light;
            atoms[i].stateVar->atomLinks->push_back(&atoms[i]);
            (*comp.atoms)[atoms[i].getId()] = &atoms[i];
        }
        atoms[broken].fail = true;
        law(0, {{true, ok}, {false, on}}); // ok -> on: true is "not"
        law(1, {{false, ok}, {false, broken}});
        law(2, {{true, ok}, {true, broken}});
        law(3, {{false, on}, {false, off}});
        law(4, {{true, on}, {true, off}});
        (*DataManager::active_comps)["lamp"] = &comp;
    }

    void law(int number, const std::vector<std::pair<bool, int>>& literals)
    {
        for (const auto& [negated, atom] : literals) {
            laws[number].literals->insert({negated, &atoms[atom]});
            atoms[atom].clauses->push_back(&laws[number]);
        }
        DataManager::cls->push_back(&laws[number]);
    }
};
