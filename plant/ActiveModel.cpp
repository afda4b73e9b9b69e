#include "plant/ActiveModel.h"

#include "plant/Registration.h"

namespace plant {

ActiveModel::OwnRegistry::OwnRegistry(const Model& model)
{
    use();
    enter(model);
}

ActiveModel::ActiveModel(Model& model)
    : model_(model), registry_(model), implicates_(checkImplicates(model))
{
    engine_.rtInit();
    if (implicates_.found && implicates_.errors.empty()) engine_.readPI();
}

itms& ActiveModel::engine()
{
    registry_.use();
    return engine_;
}

} // namespace plant
