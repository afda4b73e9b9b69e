#include "plant/ActiveModel.h"

namespace plant {

ActiveModel::ActiveModel(Model& model)
    : model_(model), activated_(model), implicates_(checkImplicates(model))
{
    engine_.rtInit();
    if (implicates_.found && implicates_.errors.empty()) engine_.readPI();
}

} // namespace plant
