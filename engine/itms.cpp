// The engine object itself.
#include "engine/itms.h"

itms::itms() : stateVars(nullptr), addingPropositions(false), piTable(nullptr) {}

itms::~itms()
{
    delete stateVars;
    stateVars = nullptr;
}
