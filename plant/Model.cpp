#include "plant/Model.h"

#include "model/DataManager.h"
#include "model/Registry.h"
#include "plant/Registration.h"

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
    Registry::useFirst();
    DataManager::reset();
    enter(*this);
}

} // namespace plant
