#include "plant/Registration.h"

#include "model/DataManager.h"

namespace plant {

void enter(const Model& model)
{
    model.makeEngineObjects();
    DataManager::model_name = model.name();
    for (Comp* component : model.components()) {
        (*DataManager::active_comps)[component->name.c_str()] = component;
    }
    for (Atom* atom : model.atoms()) {
        (*DataManager::active_atoms)[atom->getId()] = atom;
    }
    *DataManager::cls = model.laws();
}

} // namespace plant
