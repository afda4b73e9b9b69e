#include "plant/Registration.h"

#include "model/DataManager.h"

namespace plant {

void enter(const Model& model)
{
    DataManager::model_name = model.name();
    for (const auto& component : model.components()) {
        (*DataManager::active_comps)[component->name.c_str()] = component.get();
    }
    for (const auto& atom : model.atoms()) {
        (*DataManager::active_atoms)[atom->getId()] = atom.get();
    }
    *DataManager::cls = model.laws();
}

} // namespace plant
