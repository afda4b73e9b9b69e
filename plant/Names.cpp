#include "plant/Names.h"

#include "model/Comp.h"

namespace plant {

std::string nameOf(const StateVar& variable)
{
    return variable.comp->name + "." + variable.name;
}

} // namespace plant
