#include "plant/ActiveModel.h"

#include "plant/Registration.h"

namespace plant {

ActiveModel::OwnRegistry::OwnRegistry(const Model& model)
{
    use();
    enter(model);
}

ActiveModel::ActiveModel(Model& model, SetUp setUp)
    : model_(model), implicates_(checkImplicates(model))
{
    if (setUp == SetUp::now || implicates_.found) engine();
}

itms& ActiveModel::engine()
{
    if (work_) {
        work_->registry.use();
        return work_->engine;
    }
    work_ = std::make_unique<Work>(model_);
    work_->engine.rtInit();
    if (implicates_.found && implicates_.errors.empty()) work_->engine.readPI();
    return work_->engine;
}

} // namespace plant
