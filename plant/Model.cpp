#include "plant/Model.h"

#include "model/DataManager.h"

namespace plant {

Model::~Model()
{
    if (!components_.empty()) {
        const std::string& first = components_.front()->name;
        const auto active = DataManager::active_comps->find(first.c_str());
        if (active != DataManager::active_comps->end() &&
            active->second == components_.front().get()) {
            DataManager::reset();
        }
    }
}

void Model::activate()
{
    DataManager::reset();
    DataManager::model_name = name_;
    for (const auto& component : components_) {
        (*DataManager::active_comps)[component->name.c_str()] = component.get();
    }
    for (const auto& atom : atoms_) {
        (*DataManager::active_atoms)[atom->getId()] = atom.get();
    }
    *DataManager::cls = laws_;
}

} // namespace plant
